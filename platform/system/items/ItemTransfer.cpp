#include "platform/system/items/ItemTransfer.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/OpenItems.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/FolderDescent.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/ItemRemoval.h"
#include "platform/system/items/Leftovers.h"
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

void tell(ItemTransfer const& transfer, CopyStep step) {
    if (transfer.copySteps) transfer.copySteps(step);
}

// EEXIST if there is a stray sidecar of the name, which would be taken for the item's own.
Result<void> confirmNoSidecar(FileDescriptor const& folder, std::string const& name) {
    Result<std::optional<OpenSidecar>> const stray = sidecarBeside(folder, name);
    if (!stray.hasValue()) return stray.problem();
    return stray.value() ? nameTaken(stray.value()->name) : Result<void>();
}

// Gives the sidecar of a copy its name as well, so that it can still be told whose it is if this process is killed; or
// instead, where files cannot have two names.
enum class SidecarNames { Both, NewOnly };
Result<SidecarNames> nameSidecar(FileDescriptor const& folder, std::string const& from, std::string const& to) {
    if (::linkat(folder.number(), from.c_str(), folder.number(), to.c_str(), 0) == 0) return SidecarNames::Both;
    SystemError error = lastSystemError("link", from);
    if (error.is(EEXIST)) return error;
    Result<void> const renamed = renameWithoutReplacing(folder, from, folder, to);
    if (!renamed.isDone()) return renamed.problem();
    return SidecarNames::NewOnly;
}

// Removes a file by a name that no other process knows. Tries again where the system was interrupted.
void removeTemporaryName(FileDescriptor const& folder, std::string const& name) {
    constexpr int mostAttempts = 3;
    for (int attempt = 0; attempt < mostAttempts; ++attempt)
        if (::unlinkat(folder.number(), name.c_str(), 0) == 0 || errno == ENOENT) return;
}

// Gives a complete copy its name. Its sidecar belongs to it by that name, so both get theirs or neither does: the
// sidecar first, once no item has the name that it could be taken to belong to, so that the item is complete when it
// appears.
Result<void> nameCopy(ItemTransfer const& transfer, std::string const& from) {
    FileDescriptor const& folder = transfer.folder;
    std::string const& to = transfer.name;
    Result<ItemPlace> const taken = placeOf(folder, to);
    if (taken.hasValue()) return nameTaken(to);
    if (!taken.problem().is(ENOENT)) return taken.problem();
    std::string const sidecar = AppleDoubleSidecar::nameFor(from);
    std::string const newSidecar = AppleDoubleSidecar::nameFor(to);
    // Whatever has this name is the copy's.
    Result<ItemPlace> const own = placeOf(folder, sidecar);
    if (!own.hasValue() && !own.problem().is(ENOENT)) return own.problem();
    // A stray sidecar of that name would be taken for the item's own.
    SidecarNames names = SidecarNames::NewOnly;
    if (!own.hasValue()) {
        if (Result<void> const isFree = confirmNoSidecar(folder, to); !isFree.isDone()) return isFree;
    } else {
        Result<SidecarNames> const named = nameSidecar(folder, sidecar, newSidecar);
        if (!named.hasValue()) return named.problem();
        names = named.value();
        tell(transfer, CopyStep::SidecarNamed);
    }
    Result<void> renamed = renameWithoutReplacing(folder, from, folder, to);
    if (renamed.isDone()) tell(transfer, CopyStep::Named);
    if (!own.hasValue()) return renamed;
    // The sidecar keeps one of its names. If it cannot go back, removeCopy() does not find it, and it stays.
    if (renamed.isDone()) {
        if (names == SidecarNames::Both) removeTemporaryName(folder, sidecar);
    } else if (names == SidecarNames::Both) {
        static_cast<void>(removeTree(folder, newSidecar, own.value().identity));
    } else {
        static_cast<void>(renameWithoutReplacing(folder, newSidecar, folder, sidecar));
    }
    return renamed;
}

// What was made under a temporary name, complete or not.
struct MadeCopy {
    std::optional<ItemIdentity> item{};
    std::optional<ItemIdentity> sidecar{};
};

// Removes what there is of a copy under its temporary name, as far as possible, and no item that has taken its place.
void removeCopy(FileDescriptor const& folder, std::string const& name, MadeCopy const& made) {
    RemovalRules const rules{.makesAccessible = true};
    if (made.sidecar) static_cast<void>(removeTree(folder, AppleDoubleSidecar::nameFor(name), *made.sidecar, rules));
    if (made.item) static_cast<void>(removeTree(folder, name, *made.item, rules));
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

// EEXIST if an item has the name, or a stray sidecar the sidecar's.
Result<void> confirmNameIsFree(ItemTransfer const& transfer) {
    if (placeOf(transfer.folder, transfer.name).hasValue()) return nameTaken(transfer.name);
    return confirmNoSidecar(transfer.folder, transfer.name);
}

Result<void> flushVolume(FileDescriptor const& folder) {
    Result<FileDescriptor> const listed = readableFolder(folder);
    if (!listed.hasValue()) return listed.problem();
    if (::syncfs(listed.value().number()) != 0) return lastSystemError("syncfs");
    return {};
}

// Copies the item and its sidecar to a temporary name in the folder; flushes the volume for a move.
Result<void> copyToTemporary(ItemTransfer const& transfer, std::string const& temporary, CopyPurpose purpose,
                             CopiedItems& copied, MadeCopy& made) {
    std::function<bool()> const always = [] { return true; };
    std::function<bool()> const& shouldContinue = transfer.shouldContinue ? transfer.shouldContinue : always;
    // The sidecar comes first, so that attributes which the volume cannot hold join those that it holds.
    Result<std::optional<OpenItem>> const sidecar = sidecarItem(transfer.item);
    if (!sidecar.hasValue()) return sidecar.problem();
    if (sidecar.value()) {
        TreeCopy copy(purpose, shouldContinue, transfer.copySteps, copied);
        Result<void> const done = copy.run(*sidecar.value(), transfer.folder, AppleDoubleSidecar::nameFor(temporary));
        made.sidecar = copy.made();
        if (!done.isDone()) return done;
    }
    TreeCopy copy(purpose, shouldContinue, transfer.copySteps, copied);
    Result<void> const done = copy.run(transfer.item, transfer.folder, temporary);
    made.item = copy.made();
    // Attributes that the volume cannot hold have made a sidecar, or another one.
    Result<ItemPlace> const besides = placeOf(transfer.folder, AppleDoubleSidecar::nameFor(temporary));
    if (besides.hasValue()) made.sidecar = besides.value().identity;
    if (!done.isDone()) return done;
    // The original of a copy stays, so a copy need not wait until everything written to the volume is on the disk.
    Result<void> const flushed = purpose == CopyPurpose::Move ? flushVolume(transfer.folder) : Result<void>();
    if (flushed.isDone()) tell(transfer, CopyStep::Complete);
    return flushed;
}

void cleanUp(ItemTransfer const& transfer, FileDescriptor const& folder) {
    // A leftover that is the item to copy must not be removed.
    if (parseTemporaryName(transfer.item.name)) return;
    for (std::string const& name : removeLeftovers(folder)) {
        if (transfer.leftoverInDoubt) transfer.leftoverInDoubt(name);
    }
}

Transferred copyAs(ItemTransfer const& transfer, CopyPurpose purpose, CopiedItems& copied) {
    Result<ItemPlace> const item = placeOf(transfer.item.item);
    if (!item.hasValue()) return notDone(item.problem());
    if (item.value().isFolder && mayLieIn(transfer.folder, item.value().identity))
        return notDone({.code = EINVAL, .operation = "copy", .item = transfer.name});
    Result<void> const isFree = transfer.placing ? Result<void>() : confirmNameIsFree(transfer);
    if (!isFree.isDone()) return notDone(isFree.problem());
    Result<std::string> const temporary = temporaryName();
    if (!temporary.hasValue()) return notDone(temporary.problem());
    cleanUp(transfer, transfer.folder);
    MadeCopy made;
    Transferred done = transferred(copyToTemporary(transfer, temporary.value(), purpose, copied, made));
    if (done.isDone()) done = place(transfer, [&] { return transferred(nameCopy(transfer, temporary.value())); });
    if (!done.isDone()) removeCopy(transfer.folder, temporary.value(), made);
    leaveFolder(transfer.folder);
    return done;
}

// Removes an item that was copied, if it is as it was then. The removal of a name changes the time of the file that its
// other names lead to, but not of its contents.
Result<void> removeCopied(FileDescriptor const& folder, std::string const& name, ItemPlace const& place,
                          CopiedItems& copied, RemovalSteps const& steps) {
    FileDescriptor const file(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!file.isOpen()) return lastSystemError("open", name);
    Result<ItemStatus> const found = statusOf(file);
    if (!found.hasValue()) return found.problem();
    ItemStatus const& status = found.value();
    // Emptying a folder of a lower layer has given it another identity than the descent found.
    auto const known = copied.find(place.isFolder ? place.identity : status.place.identity);
    bool const isCopied = known != copied.end() &&
                          (status.place.isFolder ||
                           (known->second.changeTime == status.changeTime && known->second.mark == markOf(status)));
    if (!isCopied) return SystemError{.code = ESTALE, .operation = "unlink", .item = name};
    if (isLockedIn(folder, name)) return lockedItem(name);
    if (Result<void> const removed = removeExactly(folder, name, status, steps); !removed.isDone()) return removed;
    if (status.links < 2 || status.place.isFolder) return {};
    Result<ItemStatus> const left = statusOf(file);
    known->second.changeTime = left.hasValue() ? left.value().changeTime : -1;
    return {};
}

Result<void> removeOriginal(OpenItem const& item, CopiedItems& copied, RemovalSteps const& steps) {
    Result<ItemPlace> const place = placeOf(item.item);
    if (!place.hasValue()) return place.problem();
    return descend(item.folder, item.name, place.value().identity, {.makesAccessible = true},
                   [&](FileDescriptor const& folder, std::string const& name, ItemPlace const& found) {
                       return removeCopied(folder, name, found, copied, steps);
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
    // The item "._x" that is renamed to "x" has the name of the new item's sidecar itself.
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
    // An original that must stay stays whole.
    Result<void> mayGo = confirmRemovable(transfer.item, AskedNames::AllInOpenedFolders);
    if (mayGo.isDone() && sidecar) mayGo = confirmRemovable(*sidecar, AskedNames::AllInOpenedFolders);
    if (!mayGo.isDone()) return mayGo;
    Result<void> const removed = removeOriginal(transfer.item, copied, transfer.removalSteps);
    return removed.isDone() && sidecar ? removeOriginal(*sidecar, copied, transfer.removalSteps) : removed;
}

} // namespace

bool mayLieIn(FileDescriptor const& folder, ItemIdentity const& item) {
    Result<std::vector<ItemIdentity>> const above = folderAndThoseAbove(folder);
    return !above.hasValue() || std::ranges::find(above.value(), item) != above.value().end();
}

Result<void, TransferProblem> copyItem(ItemTransfer const& transfer) {
    CopiedItems copied;
    return copyAs(transfer, CopyPurpose::Copy, copied);
}

Result<void, TransferProblem> moveItem(ItemTransfer const& transfer) {
    Transferred const renamed = place(transfer, [&] { return renameWithSidecar(transfer); });
    if (renamed.isDone()) return renamed;
    TransferProblem const& problem = renamed.problem();
    if (problem.kind != TransferProblem::Kind::NotDone || !problem.error.is(EXDEV)) return renamed;
    // What could not be removed afterwards would be in both places.
    if (Result<void> const removable = confirmRemovable(transfer.item, AskedNames::None); !removable.isDone())
        return notDone(removable.problem());
    CopiedItems copied;
    Result<std::optional<OpenItem>> const sidecar = sidecarItem(transfer.item);
    if (!sidecar.hasValue()) return notDone(sidecar.problem());
    cleanUp(transfer, transfer.item.folder);
    Transferred done = copyAs(transfer, CopyPurpose::Move, copied);
    if (!done.isDone()) return done;
    Result<void> const removed = removeOriginals(transfer, sidecar.value(), copied);
    if (removed.isDone()) return {};
    return TransferProblem{.kind = TransferProblem::Kind::OriginalStays, .error = removed.problem()};
}

} // namespace mac
