#include "platform/system/items/ItemTransfer.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/NewFile.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/FolderDescent.h"
#include "platform/system/items/ItemRemoval.h"
#include "platform/system/items/TreeCopy.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace mac {

namespace {

using Transferred = Result<void, TransferProblem>;

Transferred notDone(SystemError error) { return TransferProblem{.error = std::move(error)}; }

Transferred transferred(Result<void> const& result) {
    return result.isDone() ? Transferred() : notDone(result.problem());
}

SystemError nameTaken(std::string const& name) { return {.code = EEXIST, .operation = "rename", .item = name}; }

Transferred place(ItemTransfer const& transfer, PlaceItem const& step) {
    return transfer.placing ? transfer.placing(step) : step();
}

Result<void> removeOne(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
    if (::unlinkat(folder.number(), name.c_str(), place.isFolder ? AT_REMOVEDIR : 0) == 0) return {};
    return lastSystemError("unlink", name);
}

// A complete copy under a temporary name, and whether a sidecar belongs to it.
struct CompleteCopy {
    std::string name{};
    bool hasSidecar{false};
};

// EEXIST if there is a stray sidecar of the name, which would be taken for the item's own.
Result<void> confirmNoSidecar(FileDescriptor const& folder, std::string const& name) {
    Result<std::optional<OpenSidecar>> const stray = sidecarBeside(folder, name);
    if (!stray.hasValue()) return stray.problem();
    return stray.value() ? nameTaken(stray.value()->name) : Result<void>();
}

// Gives a complete copy its name. Its sidecar belongs to it by that name, so both get theirs or neither does.
Result<void> nameCopy(FileDescriptor const& folder, CompleteCopy const& copy, std::string const& to) {
    if (!copy.hasSidecar) {
        Result<void> const isFree = confirmNoSidecar(folder, to);
        return isFree.isDone() ? renameWithoutReplacing(folder, copy.name, folder, to) : isFree;
    }
    std::string const sidecar = AppleDoubleSidecar::nameFor(copy.name);
    std::string const newSidecar = AppleDoubleSidecar::nameFor(to);
    Result<void> const followed = renameWithoutReplacing(folder, sidecar, folder, newSidecar);
    if (!followed.isDone()) return followed;
    Result<void> renamed = renameWithoutReplacing(folder, copy.name, folder, to);
    // If the sidecar cannot go back either, removeCopy() does not find it, and it stays.
    if (!renamed.isDone()) static_cast<void>(renameWithoutReplacing(folder, newSidecar, folder, sidecar));
    return renamed;
}

// Removes what there is of a copy, as far as possible.
void removeCopy(FileDescriptor const& folder, std::string const& name) {
    ::unlinkat(folder.number(), AppleDoubleSidecar::nameFor(name).c_str(), 0);
    Result<ItemPlace> const place = placeOf(folder, name);
    if (!place.hasValue()) return;
    static_cast<void>(descend(folder, name, place.value().identity, {.makesAccessible = true}, removeOne));
}

// The item's sidecar, as an item; nullopt if there is none.
Result<std::optional<OpenItem>> sidecarItem(OpenItem const& item) {
    Result<std::optional<OpenSidecar>> sidecar = sidecarBeside(item.folder, item.name);
    if (!sidecar.hasValue()) return sidecar.problem();
    if (!sidecar.value()) return std::optional<OpenItem>();
    FileDescriptor folder(::openat(item.folder.number(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen()) return lastSystemError("open", item.name);
    OpenSidecar& found = *sidecar.value();
    return std::optional(
        OpenItem{.folder = std::move(folder), .item = std::move(found.file), .name = std::move(found.name)});
}

// Copies the item and its sidecar to a temporary name in the folder and flushes the volume.
Result<CompleteCopy> copyToTemporary(ItemTransfer const& transfer, std::string const& temporary, CopiedItems& copied) {
    std::function<bool()> const always = [] { return true; };
    std::function<bool()> const& shouldContinue = transfer.shouldContinue ? transfer.shouldContinue : always;
    Result<FileDescriptor> const listed = readableFolder(transfer.folder);
    if (!listed.hasValue()) return listed.problem();
    Result<std::optional<OpenItem>> const sidecar = sidecarItem(transfer.item);
    if (!sidecar.hasValue()) return sidecar.problem();
    // The sidecar comes first, so that attributes which the volume cannot hold join those that it holds.
    if (sidecar.value()) {
        Result<void> const done = TreeCopy(shouldContinue, copied)
                                      .run(*sidecar.value(), transfer.folder, AppleDoubleSidecar::nameFor(temporary));
        if (!done.isDone()) return done.problem();
    }
    Result<void> const done = TreeCopy(shouldContinue, copied).run(transfer.item, transfer.folder, temporary);
    if (!done.isDone()) return done.problem();
    if (::syncfs(listed.value().number()) != 0) return lastSystemError("syncfs", transfer.name);
    if (sidecar.value()) return CompleteCopy{.name = temporary, .hasSidecar = true};
    // Attributes that the volume cannot hold have made a sidecar.
    Result<std::optional<OpenSidecar>> const made = sidecarBeside(transfer.folder, temporary);
    if (!made.hasValue()) return made.problem();
    return CompleteCopy{.name = temporary, .hasSidecar = made.value().has_value()};
}

// EEXIST if an item has the name, or a stray sidecar the sidecar's.
Result<void> confirmNameIsFree(ItemTransfer const& transfer) {
    if (placeOf(transfer.folder, transfer.name).hasValue()) return nameTaken(transfer.name);
    return confirmNoSidecar(transfer.folder, transfer.name);
}

Transferred copyAs(ItemTransfer const& transfer, CopiedItems& copied) {
    Result<ItemPlace> const item = placeOf(transfer.item.item);
    if (!item.hasValue()) return notDone(item.problem());
    if (item.value().isFolder && mayLieIn(transfer.folder, item.value().identity))
        return notDone({.code = EINVAL, .operation = "copy", .item = transfer.name});
    Result<void> const isFree = transfer.placing ? Result<void>() : confirmNameIsFree(transfer);
    if (!isFree.isDone()) return notDone(isFree.problem());
    Result<std::string> const temporary = unguessableName();
    if (!temporary.hasValue()) return notDone(temporary.problem());
    Result<CompleteCopy> const copy = copyToTemporary(transfer, temporary.value(), copied);
    Transferred done =
        copy.hasValue()
            ? place(transfer, [&] { return transferred(nameCopy(transfer.folder, copy.value(), transfer.name)); })
            : notDone(copy.problem());
    if (!done.isDone()) removeCopy(transfer.folder, temporary.value());
    return done;
}

// Removes an item that was copied, if it is as it was then. The removal of a name changes the file that its other names
// lead to.
Result<void> removeCopied(FileDescriptor const& folder, std::string const& name, ItemPlace const& place,
                          CopiedItems& copied) {
    auto const known = copied.find(place.identity);
    bool const isCopied = known != copied.end() && (place.isFolder || known->second == changeTime(folder, name));
    if (!isCopied) return SystemError{.code = ESTALE, .operation = "unlink", .item = name};
    FileDescriptor const file(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!file.isOpen()) return lastSystemError("open", name);
    if (Result<void> const removed = removeUnlessLocked(folder, name, place.isFolder); !removed.isDone())
        return removed;
    known->second = changeTime(file, "");
    return {};
}

Result<void> removeOriginal(OpenItem const& item, CopiedItems& copied) {
    Result<ItemPlace> const place = placeOf(item.item);
    if (!place.hasValue()) return place.problem();
    return descend(item.folder, item.name, place.value().identity, {.makesAccessible = true},
                   [&](FileDescriptor const& folder, std::string const& name, ItemPlace const& found) {
                       return removeCopied(folder, name, found, copied);
                   });
}

// EXDEV if the folders lie on two mounts. This is found out first: until the item is copied, nothing has to make room
// for it.
Result<void> confirmSameMount(FileDescriptor const& from, FileDescriptor const& to, std::string const& name) {
    Result<ItemPlace> const fromPlace = placeOf(from);
    if (!fromPlace.hasValue()) return fromPlace.problem();
    Result<ItemPlace> const toPlace = placeOf(to);
    if (!toPlace.hasValue()) return toPlace.problem();
    if (fromPlace.value().mount == toPlace.value().mount) return {};
    return SystemError{.code = EXDEV, .operation = "rename", .item = name};
}

Transferred problemOf(Result<void, RenameProblem> const& renamed) {
    if (renamed.isDone()) return {};
    using enum TransferProblem::Kind;
    return TransferProblem{.kind = renamed.problem().movedWrongItem ? MovedWrongItem : NotDone,
                           .error = renamed.problem().error};
}

// Renames the item and its sidecar within a volume, or neither.
Transferred renameWithSidecar(ItemTransfer const& transfer) {
    OpenItem const& item = transfer.item;
    if (Result<void> const same = confirmSameMount(item.folder, transfer.folder, item.name); !same.isDone())
        return notDone(same.problem());
    Result<std::optional<OpenSidecar>> const found = sidecarBeside(item.folder, item.name);
    if (!found.hasValue()) return notDone(found.problem());
    std::optional<OpenSidecar> const& sidecar = found.value();
    std::string const newSidecar = AppleDoubleSidecar::nameFor(transfer.name);
    // "._x" may become "x".
    bool const isTheSidecar = confirmItemInFolder(transfer.folder, newSidecar, item.item).isDone();
    if (!sidecar && !isTheSidecar) {
        Result<void> const isFree = confirmNoSidecar(transfer.folder, transfer.name);
        if (!isFree.isDone()) return notDone(isFree.problem());
    }
    NameInFolder const oldPlace{item.folder, item.name};
    NameInFolder const newPlace{transfer.folder, transfer.name};
    Transferred const moved = problemOf(renameItem(item.item, oldPlace, newPlace, transfer.steps));
    if (!moved.isDone() || !sidecar) return moved;
    Result<void, RenameProblem> const followed =
        renameItem(sidecar->file, {item.folder, sidecar->name}, {transfer.folder, newSidecar}, transfer.steps);
    // A sidecar that another process has removed meanwhile need not follow.
    if (followed.isDone() || (!followed.problem().movedWrongItem && followed.problem().error.is(ENOENT))) return {};
    if (renameItem(item.item, newPlace, oldPlace, transfer.steps).isDone()) return notDone(followed.problem().error);
    // The item itself has the new name, so nothing is to make room for it.
    return TransferProblem{.kind = TransferProblem::Kind::MovedWrongItem,
                           .error = {.code = ESTALE, .operation = "rename", .item = item.name}};
}

Result<void> removeOriginals(ItemTransfer const& transfer, std::optional<OpenItem> const& sidecar,
                             CopiedItems& copied) {
    // The copy's name must be on the disk before the original goes.
    if (Result<void> const flushed = flushFolder(transfer.folder); !flushed.isDone()) return flushed;
    Result<void> const removed = removeOriginal(transfer.item, copied);
    return removed.isDone() && sidecar ? removeOriginal(*sidecar, copied) : removed;
}

} // namespace

bool mayLieIn(FileDescriptor const& folder, ItemIdentity const& item) {
    Result<std::vector<ItemIdentity>> const above = folderAndThoseAbove(folder);
    return !above.hasValue() || std::ranges::find(above.value(), item) != above.value().end();
}

Result<void, TransferProblem> copyItem(ItemTransfer const& transfer) {
    CopiedItems copied;
    Transferred done = copyAs(transfer, copied);
    // The copy is complete also if its name cannot be flushed.
    if (done.isDone()) static_cast<void>(flushFolder(transfer.folder));
    return done;
}

Result<void, TransferProblem> moveItem(ItemTransfer const& transfer) {
    Transferred const renamed = place(transfer, [&] { return renameWithSidecar(transfer); });
    if (renamed.isDone()) return renamed;
    TransferProblem const& problem = renamed.problem();
    if (problem.kind != TransferProblem::Kind::NotDone || !problem.error.is(EXDEV)) return renamed;
    // What could not be removed afterwards would be in both places.
    if (Result<void> const removable = confirmRemovable(transfer.item); !removable.isDone())
        return notDone(removable.problem());
    CopiedItems copied;
    Result<std::optional<OpenItem>> const sidecar = sidecarItem(transfer.item);
    if (!sidecar.hasValue()) return notDone(sidecar.problem());
    Transferred done = copyAs(transfer, copied);
    if (!done.isDone()) return done;
    Result<void> const removed = removeOriginals(transfer, sidecar.value(), copied);
    if (removed.isDone()) return {};
    return TransferProblem{.kind = TransferProblem::Kind::OriginalStays, .error = removed.problem()};
}

} // namespace mac
