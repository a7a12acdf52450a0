#include "platform/files/references/ItemReferences.h"
#include "platform/files/trash/TrashRecords.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/FolderPlace.h"
#include <cerrno>
#include <fcntl.h>

namespace mac {

namespace {

using PutBack = Result<void, TrashProblem>;

constexpr char const* CannotPutBack = localizable("The item cannot be put back");

TrashProblem cannotPutBack(SystemError error) {
    TrashProblem problem = trashProblem(std::move(error), CannotPutBack);
    // Another volume is at the original path now; its trash has no part in it.
    if (problem.kind == TrashProblem::NoTrash) problem.kind = TrashProblem::Other;
    return problem;
}

TrashProblem notInTrash(char const* reason) {
    return {.kind = TrashProblem::NotInTrash, .what = CannotPutBack, .reason = {reason}};
}

TrashProblem placeTaken(SystemError error, std::string const& path) {
    return {.kind = TrashProblem::NameTaken,
            .error = std::move(error),
            .what = CannotPutBack,
            .reason = {localizable("Another item is at %@"), path}};
}

// An item in a trash, open.
struct ItemInTrash {
    TrashPlace trash{};
    std::string name{};
    FileDescriptor item{};
    bool isFolder{false};
};

// Opens the item at the path and finds the trash that it lies in. ESTALE if an identity is expected and the item has
// another one.
Result<ItemInTrash, TrashProblem> find(std::string_view path, std::optional<ItemIdentity> const& expected) {
    Result<OpenItem> open = openItemAtPath(BytePath(path).bytes(), LinkAtEnd::IsNotFollowed);
    if (!open.hasValue()) return cannotPutBack(open.problem());
    if (open.value().name.empty())
        return cannotPutBack({.code = ENOENT, .operation = "open", .item = std::string(path)});
    Result<ItemPlace> const place = placeOf(open.value().item);
    if (!place.hasValue()) return cannotPutBack(place.problem());
    Result<ItemPlace> const folder = placeOf(open.value().folder);
    if (!folder.hasValue()) return cannotPutBack(folder.problem());
    if (expected && !(place.value().identity == *expected))
        return cannotPutBack({.code = ESTALE, .operation = "open", .item = std::string(path)});
    FoundTrashes around = trashesAround(open.value().folder);
    for (TrashPlace& trash : around.trashes) {
        Result<ItemPlace> const files = placeOf(trash.files);
        if (!files.hasValue()) return cannotPutBack(files.problem());
        if (!(files.value().identity == folder.value().identity)) continue;
        return ItemInTrash{std::move(trash), open.value().name, std::move(open.value().item), place.value().isFolder};
    }
    if (std::optional<SystemError> const problem = around.unknownPlace()) return cannotPutBack(*problem);
    return notInTrash(localizable("It is not in the trash"));
}

// Moves one item and its sidecar, or neither.
class PuttingBack {
public:
    // Both must outlive the object.
    PuttingBack(ItemInTrash const& item, TrashSteps const& steps) : m_item(item), m_steps(steps) {}

    Result<std::string, TrashProblem> run() {
        if (PutBack const found = findPlace(); !found.isDone()) return found.problem();
        if (PutBack const moved = moveItem(); !moved.isDone()) return moved.problem();
        if (m_steps) m_steps(TrashStep::ItemPutBack);
        if (m_sidecar) {
            if (PutBack const followed = moveSidecar(); !followed.isDone()) return takeBack(followed.problem());
        }
        if (Result<void> const forgotten = removeInformation(m_item.trash, m_item.name); !forgotten.isDone())
            return takeBack(cannotPutBack(forgotten.problem()));
        // A record of a sidecar alone is shown by no program, and goes when the trash is next emptied.
        if (m_sidecar) static_cast<void>(removeInformation(m_item.trash, m_sidecar->name));
        followMovedItem(m_folder, m_name);
        if (m_item.isFolder) removeOldDirectorySizes(m_item.trash);
        return m_path;
    }

private:
    // Finds out all that the move needs, before anything is moved.
    PutBack findPlace() {
        Result<std::optional<TrashInformation>> const information = informationOf(m_item.trash, m_item.name);
        if (!information.hasValue()) return cannotPutBack(information.problem());
        if (information.value()) m_path = m_item.trash.originalPath(information.value()->path);
        if (m_path.empty()) return notInTrash(localizable("Nothing tells where it came from"));
        Result<FileDescriptor> folder = openPath(BytePath(m_path).parent(), O_PATH | O_DIRECTORY);
        if (!folder.hasValue()) return cannotPutBack(folder.problem());
        m_folder = folder.takeValue();
        m_name = BytePath(m_path).leaf();
        Result<std::optional<OpenSidecar>> sidecar = sidecarInTrash(m_item.trash, m_item.name);
        if (!sidecar.hasValue()) return cannotPutBack(sidecar.problem());
        m_sidecar = sidecar.takeValue();
        m_sidecarName = AppleDoubleSidecar::nameFor(m_name);
        return m_sidecar ? confirmFree(m_sidecarName) : PutBack();
    }

    PutBack confirmFree(std::string const& name) const {
        Result<IdentifiedItem> const there = identify(m_folder, name);
        if (there.hasValue()) return placeTaken({.code = EEXIST, .operation = "rename", .item = name}, pathOf(name));
        return there.problem().is(ENOENT) ? PutBack() : cannotPutBack(there.problem());
    }

    PutBack moveItem() const {
        return moved(
            renameItem(m_item.item, {m_item.trash.files, m_item.name}, {m_folder, m_name}, renameStepsOf(m_steps)),
            m_name);
    }

    PutBack moveSidecar() {
        Result<void, RenameProblem> const followed = renameItem(m_sidecar->file, {m_item.trash.files, m_sidecar->name},
                                                                {m_folder, m_sidecarName}, renameStepsOf(m_steps));
        m_hasSidecarFollowed = followed.isDone();
        // A sidecar that another process has removed meanwhile is no longer the item's.
        bool const isGone =
            !followed.isDone() && !followed.problem().movedWrongItem && followed.problem().error.is(ENOENT);
        return isGone ? PutBack() : moved(followed, m_sidecarName);
    }

    PutBack moved(Result<void, RenameProblem> const& renamed, std::string const& name) const {
        if (renamed.isDone()) return {};
        RenameProblem const& problem = renamed.problem();
        if (problem.movedWrongItem) return wrongItemMoved(problem.error, CannotPutBack, pathOf(name));
        if (problem.error.is(EEXIST)) return placeTaken(problem.error, pathOf(name));
        return cannotPutBack(problem.error);
    }

    // Moves the item into the trash again, because its sidecar could not follow or its record could not go. The sidecar
    // follows, or the item comes back to it.
    TrashProblem takeBack(TrashProblem problem) const {
        bool const isBack = moveIntoTrash(m_item.item, m_name, m_item.name);
        if (isBack) followMovedItem(m_item.trash.files, m_item.name);
        bool const isSidecarApart = isBack && m_hasSidecarFollowed && !takeSidecarBack();
        bool const isTogether = isSidecarApart && moveItem().isDone();
        if (isTogether) followMovedItem(m_folder, m_name);
        if (!isBack || isTogether)
            problem.whereabouts = {localizable("the item is now at %@"), m_path};
        else if (isSidecarApart)
            problem.whereabouts = {localizable("the file beside it is now at %@"), pathOf(m_sidecarName)};
        return problem;
    }

    // False if the sidecar is still beside the original path.
    bool takeSidecarBack() const {
        if (moveIntoTrash(m_sidecar->file, m_sidecarName, m_sidecar->name)) return true;
        return !confirmItemInFolder(m_folder, m_sidecarName, m_sidecar->file).isDone();
    }

    bool moveIntoTrash(FileDescriptor const& item, std::string const& from, std::string const& to) const {
        return renameItem(item, {m_folder, from}, {m_item.trash.files, to}, renameStepsOf(m_steps)).isDone();
    }

    std::string pathOf(std::string const& name) const { return BytePath(BytePath(m_path).parent()).joined(name); }

    ItemInTrash const& m_item;
    TrashSteps const& m_steps;
    std::string m_path{};
    FileDescriptor m_folder{};
    std::string m_name{};
    std::optional<OpenSidecar> m_sidecar{};
    std::string m_sidecarName{};
    bool m_hasSidecarFollowed{false};
};

Result<std::string, TrashProblem> putBackFound(Result<ItemInTrash, TrashProblem> const& found,
                                               TrashSteps const& steps) {
    if (!found.hasValue()) return found.problem();
    return PuttingBack(found.value(), steps).run();
}

} // namespace

Result<std::string, TrashProblem> putBack(TrashedItem const& item, TrashSteps const& steps) {
    return putBackFound(find(item.path, item.identity), steps);
}

Result<std::string, TrashProblem> putBackItemAtPath(std::string_view path, TrashSteps const& steps) {
    return putBackFound(find(path, std::nullopt), steps);
}

} // namespace mac
