#include "platform/files/ItemReferences.h"
#include "platform/files/TrashRecords.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/FolderDescent.h"
#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/ItemRemoval.h"
#include <algorithm>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

using Names = std::set<std::string>;

constexpr char CannotPutBack[] = "The item cannot be put back";
constexpr char CannotErase[] = "The item cannot be deleted from the trash";

TrashProblem cannotPutBack(SystemError error) { return trashProblem(std::move(error), CannotPutBack); }

void tell(TrashSteps const& steps, TrashStep step) {
    if (steps) steps(step);
}

Result<Names> namesIn(FileDescriptor const& folder) {
    Result<std::vector<std::string>> const names = namesInOpenFolder(folder);
    if (!names.hasValue()) return names.problem();
    return Names(names.value().begin(), names.value().end());
}

Result<TrashedItem> itemIn(TrashPlace const& trash, std::string const& name) {
    Result<ItemPlace> const place = placeOf(trash.files, name);
    if (!place.hasValue()) return place.problem();
    TrashedItem item{
        .path = trash.filesPath() + "/" + name, .identity = place.value().identity, .isFolder = place.value().isFolder};
    if (std::optional<TrashInformation> const information = informationOf(trash, name)) {
        item.originalPath = trash.originalPath(information->path);
        item.deletionTime = secondsOfLocalTimeText(information->date);
    }
    return item;
}

// The AppleDouble sidecar that came with the item. A sidecar from elsewhere that happens to have its name here is an
// item of its own, which must not go where this item goes.
std::optional<OpenSidecar> sidecarInTrash(TrashPlace const& trash, std::string const& name) {
    std::optional<OpenSidecar> sidecar = sidecarBeside(trash.files, name);
    if (!sidecar) return std::nullopt;
    std::optional<TrashInformation> const owner = informationOf(trash, name);
    std::optional<TrashInformation> const information = informationOf(trash, sidecar->name);
    if (!owner || !information) return std::nullopt;
    BytePath const original(owner->path);
    std::string const expected = BytePath(original.parent()).joined(AppleDoubleSidecar::nameFor(original.leaf()));
    if (information->path != expected) return std::nullopt;
    return sidecar;
}

bool isSidecar(TrashPlace const& trash, Names const& names, std::string const& name) {
    if (!name.starts_with(AppleDoubleSidecar::namePrefix)) return false;
    std::string const owner = name.substr(AppleDoubleSidecar::namePrefix.size());
    return names.contains(owner) && sidecarInTrash(trash, owner).has_value();
}

Result<std::vector<TrashedItem>> itemsIn(TrashPlace const& trash) {
    Result<Names> const names = namesIn(trash.files);
    if (!names.hasValue()) return names.problem();
    std::vector<TrashedItem> items;
    for (std::string const& name : names.value()) {
        Result<TrashedItem> item = itemIn(trash, name);
        if (item.hasValue() && !isSidecar(trash, names.value(), name)) items.push_back(item.takeValue());
    }
    return items;
}

// An item in a trash, open.
struct ItemInTrash {
    TrashPlace trash{};
    std::string name{};
    FileDescriptor item{};
    bool isFolder{false};
};

Result<ItemInTrash, TrashProblem> find(TrashedItem const& item) {
    Result<OpenItem> open = openItemAtPath(item.path, LinkAtEnd::IsNotFollowed);
    if (!open.hasValue()) return cannotPutBack(open.problem());
    if (open.value().name.empty()) return cannotPutBack({.code = ENOENT, .operation = "open", .item = item.path});
    Result<ItemPlace> const place = placeOf(open.value().item);
    if (!place.hasValue()) return cannotPutBack(place.problem());
    Result<ItemPlace> const folder = placeOf(open.value().folder);
    if (!folder.hasValue()) return cannotPutBack(folder.problem());
    if (!(place.value().identity == item.identity))
        return cannotPutBack({.code = ESTALE, .operation = "open", .item = item.path});
    for (TrashPlace& trash : trashesAround(open.value().folder)) {
        Result<ItemPlace> const files = placeOf(trash.files);
        if (!files.hasValue() || !(files.value().identity == folder.value().identity)) continue;
        return ItemInTrash{std::move(trash), open.value().name, std::move(open.value().item), place.value().isFolder};
    }
    return TrashProblem{.kind = TrashProblem::NotInTrash,
                        .text = std::string(CannotPutBack) + ": It is not in the trash"};
}

// Moves the sidecar to its item, unless its name is taken there.
void putSidecarBack(TrashPlace const& trash, std::string const& name, NameInFolder original, TrashSteps const& steps) {
    std::optional<OpenSidecar> const sidecar = sidecarInTrash(trash, name);
    if (!sidecar) return;
    std::string const back = AppleDoubleSidecar::nameFor(original.name);
    Result<void, RenameProblem> const moved =
        renameItem(sidecar->file, {trash.files, sidecar->name}, {original.folder, back}, renameStepsOf(steps));
    if (moved.isDone()) removeInformation(trash, sidecar->name);
}

Result<void> eraseOne(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
    Result<void> removed = removeUnlessLocked(folder, name, place.isFolder);
    return !removed.isDone() && removed.problem().is(ENOENT) ? Result<void>() : removed;
}

// Deletes everything that lies in the trashes, until it is told to stop.
class Emptying {
public:
    Emptying(std::function<bool()> const& shouldContinue, TrashSteps const& steps)
        : m_shouldContinue(shouldContinue), m_steps(steps) {}

    EmptiedTrash run() {
        for (TrashPlace const& trash : trashesOfUser()) {
            empty(trash);
            removeOrphans(trash);
            removeOldDirectorySizes(trash);
            if (m_isStopped) break;
        }
        return m_emptied;
    }

private:
    void empty(TrashPlace const& trash) {
        Result<std::vector<TrashedItem>> const items = itemsIn(trash);
        if (!items.hasValue()) return countLeft(items.problem());
        for (TrashedItem const& item : items.value()) {
            Result<void> const erased = eraseWithSidecar(trash, item);
            if (erased.isDone())
                ++m_emptied.removed;
            else if (!m_isStopped)
                countLeft(erased.problem());
            if (m_isStopped) return;
        }
    }

    void countLeft(SystemError const& error) {
        if (m_emptied.left == 0) m_emptied.firstProblem = trashProblem(error, CannotErase);
        ++m_emptied.left;
    }

    // An item that is erased takes its sidecar along, also if the emptying stops then.
    Result<void> eraseWithSidecar(TrashPlace const& trash, TrashedItem const& item) {
        std::string const name(BytePath(item.path).leaf());
        std::optional<OpenSidecar> const sidecar = sidecarInTrash(trash, name);
        Result<void> erased =
            eraseWhole(trash, name, item.identity,
                       [this](FileDescriptor const& folder, std::string const& inner, ItemPlace const& place) {
                           return eraseUnlessStopped(folder, inner, place);
                       });
        if (!erased.isDone() || !sidecar) return erased;
        Result<ItemPlace> const place = placeOf(sidecar->file);
        return place.hasValue() ? eraseWhole(trash, sidecar->name, place.value().identity, eraseOne) : Result<void>();
    }

    Result<void> eraseWhole(TrashPlace const& trash, std::string const& name, ItemIdentity const& identity,
                            DescentVisit const& erase) const {
        Result<void> erased = descend(trash.files, name, identity, {.makesAccessible = true}, erase);
        if (!erased.isDone()) return erased;
        tell(m_steps, TrashStep::ItemErased);
        removeInformation(trash, name);
        return {};
    }

    Result<void> eraseUnlessStopped(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
        m_isStopped = m_shouldContinue && !m_shouldContinue();
        if (m_isStopped) return SystemError{.code = ECANCELED, .operation = "unlink", .item = name};
        return eraseOne(folder, name, place);
    }

    // Removes information files whose item never came or has gone by other ways. A recent one may belong to an item
    // that is being moved.
    static void removeOrphans(TrashPlace const& trash) {
        constexpr std::int64_t oldEnough = 3'600;
        std::int64_t const now = ::time(nullptr);
        Result<Names> const files = namesIn(trash.information);
        if (!files.hasValue()) return;
        for (std::string const& file : files.value()) {
            if (!file.ends_with(TrashInformation::nameEnd)) continue;
            std::string const name = file.substr(0, file.size() - TrashInformation::nameEnd.size());
            struct stat status {};
            if (::fstatat(trash.information.number(), file.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
            Result<ItemPlace> const item = placeOf(trash.files, name);
            bool const isOrphan = !item.hasValue() && item.problem().is(ENOENT);
            if (isOrphan && S_ISREG(status.st_mode) && status.st_mtim.tv_sec + oldEnough < now)
                ::unlinkat(trash.information.number(), file.c_str(), 0);
        }
    }

    std::function<bool()> const& m_shouldContinue;
    TrashSteps const& m_steps;
    EmptiedTrash m_emptied{};
    bool m_isStopped{false};
};

} // namespace

std::vector<TrashedItem> trashedItems() {
    std::vector<TrashedItem> items;
    for (TrashPlace const& trash : trashesOfUser()) {
        Result<std::vector<TrashedItem>> here = itemsIn(trash);
        if (here.hasValue()) std::ranges::move(here.value(), std::back_inserter(items));
    }
    std::ranges::stable_sort(items, std::ranges::greater(), &TrashedItem::deletionTime);
    return items;
}

Result<std::string, TrashProblem> putBack(TrashedItem const& item, TrashSteps const& steps) {
    Result<ItemInTrash, TrashProblem> const found = find(item);
    if (!found.hasValue()) return found.problem();
    ItemInTrash const& trashed = found.value();
    std::optional<TrashInformation> const information = informationOf(trashed.trash, trashed.name);
    std::string const path = information ? trashed.trash.originalPath(information->path) : std::string();
    if (path.empty())
        return TrashProblem{.kind = TrashProblem::NotInTrash,
                            .text = std::string(CannotPutBack) + ": Nothing tells where it came from"};
    Result<FileDescriptor> const folder = openPath(BytePath(path).parent(), O_PATH | O_DIRECTORY);
    if (!folder.hasValue()) return cannotPutBack(folder.problem());
    std::string const name(BytePath(path).leaf());
    Result<void, RenameProblem> const moved =
        renameItem(trashed.item, {trashed.trash.files, trashed.name}, {folder.value(), name}, renameStepsOf(steps));
    if (!moved.isDone() && moved.problem().movedWrongItem)
        return wrongItemMoved(moved.problem().error, CannotPutBack, path);
    if (!moved.isDone()) {
        TrashProblem problem = cannotPutBack(moved.problem().error);
        // Another volume is at the original path now; its trash has no part in it.
        if (problem.kind == TrashProblem::NoTrash) problem.kind = TrashProblem::Other;
        return problem;
    }
    tell(steps, TrashStep::ItemPutBack);
    putSidecarBack(trashed.trash, trashed.name, {folder.value(), name}, steps);
    removeInformation(trashed.trash, trashed.name);
    if (trashed.isFolder) removeOldDirectorySizes(trashed.trash);
    return path;
}

EmptiedTrash emptyTrash(std::function<bool()> const& shouldContinue, TrashSteps const& steps) {
    EmptiedTrash emptied = Emptying(shouldContinue, steps).run();
    releaseRemovedItems();
    return emptied;
}

} // namespace mac
