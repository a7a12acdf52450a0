#include "platform/files/trash/Trash.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/files/trash/TrashRecords.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/system/BytePath.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/MountTable.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <ctime>
#include <sys/statvfs.h>

namespace mac {

namespace {

using Done = Result<void, TrashProblem>;

constexpr char const* What = localizable("The item cannot be moved to the trash");

TrashProblem cannotTrash(SystemError error) { return trashProblem(std::move(error), What); }

TrashProblem refused(TrashProblem::Kind kind, char const* reason) {
    return {.kind = kind, .what = What, .reason = {reason}};
}

bool contains(std::vector<ItemIdentity> const& identities, ItemIdentity const& identity) {
    return std::ranges::find(identities, identity) != identities.end();
}

// Refuses an item that is the trash, holds it, or lies in it; `above` are the item's folder and the folders above it.
Done checkBeside(TrashPlace const& trash, ItemIdentity const& item, std::vector<ItemIdentity> const& above) {
    Result<std::vector<ItemIdentity>> const aboveTrash = folderAndThoseAbove(trash.folder);
    if (!aboveTrash.hasValue()) return cannotTrash(aboveTrash.problem());
    Result<ItemPlace> const files = placeOf(trash.files);
    if (!files.hasValue()) return cannotTrash(files.problem());
    bool isPart = item == files.value().identity;
    if (trash.information.isOpen()) {
        Result<ItemPlace> const information = placeOf(trash.information);
        if (!information.hasValue()) return cannotTrash(information.problem());
        isPart = isPart || item == information.value().identity;
    }
    if (isPart || contains(aboveTrash.value(), item))
        return refused(TrashProblem::Immovable, localizable("It is the trash, or holds it"));
    if (contains(above, aboveTrash.value().front()))
        return refused(TrashProblem::InTrash, localizable("It is in the trash"));
    return {};
}

// A volume that is mounted there, or below, would go to the trash with the item. What is no folder holds none, and that
// none is mounted on it was seen by its mount, if the system tells that.
Done checkMounts(std::string const& path, ItemPlace const& place) {
    if (!place.isFolder && place.mount != 0) return {};
    Result<MountTable> const mounts = MountTable::current();
    if (!mounts.hasValue()) return cannotTrash(mounts.problem());
    bool const holdsMountPoint = std::ranges::any_of(
        mounts.value().mounts(), [&](Mount const& mount) { return BytePath(mount.mountPoint).isAtOrBelow(path); });
    return holdsMountPoint ? refused(TrashProblem::Immovable, localizable("A volume is mounted in it")) : Done();
}

// Refuses items that cannot be trashed, before anything is made; answers where the item lies.
Result<ItemPlace, TrashProblem> check(OpenItem const& item) {
    if (item.name.empty()) return refused(TrashProblem::Immovable, localizable("It is the root of all volumes"));
    Result<ItemPlace> place = placeOf(item.item);
    if (!place.hasValue()) return cannotTrash(place.problem());
    Result<ItemPlace> const folder = placeOf(item.folder);
    if (!folder.hasValue()) return cannotTrash(folder.problem());
    if (place.value().mount != folder.value().mount)
        return refused(TrashProblem::Immovable, localizable("A volume is mounted there"));
    if (lockOf(item) == ItemLock::Locked) return cannotTrash(lockedItem(item.name));
    Result<void> const mayGo = confirmNameRemovable(item.folder, item.name, place.value());
    if (!mayGo.isDone()) return cannotTrash(mayGo.problem());
    Result<bool> const holdsTrash = place.value().isFolder ? holdsHomeTrash(place.value().identity) : false;
    if (!holdsTrash.hasValue()) return cannotTrash(holdsTrash.problem());
    if (holdsTrash.value()) return refused(TrashProblem::Immovable, localizable("It holds the trash"));
    Result<std::vector<ItemIdentity>> const above = folderAndThoseAbove(item.folder);
    if (!above.hasValue()) return cannotTrash(above.problem());
    FoundTrashes const around = trashesAround(item.folder);
    // The item could be a part of a trash that cannot be opened.
    if (std::optional<SystemError> const problem = around.unknownPlace()) return cannotTrash(*problem);
    for (TrashPlace const& trash : around.trashes) {
        Done const beside = checkBeside(trash, place.value().identity, above.value());
        if (!beside.isDone()) return beside.problem();
    }
    return place.value();
}

// What moves, as it was before the move.
struct Trashable {
    OpenItem const& item;
    ItemPlace place{};
    std::optional<OpenSidecar> sidecar{};
};

// Moves one item and its sidecar.
class Trashing {
public:
    Trashing(Trashable const& what, TrashPlace const& trash, std::string original, TrashSteps const& steps)
        : m_item(what.item), m_place(what.place), m_sidecar(what.sidecar), m_trash(trash),
          m_original(std::move(original)), m_steps(steps), m_time(::time(nullptr)) {}

    Result<TrashedItem, TrashProblem> run() const {
        std::string const date = localTimeText(m_time);
        std::string timeOfDay = date.size() > 11 ? date.substr(11) : date;
        std::ranges::replace(timeOfDay, ':', '-');
        TrashNames const names(m_item.name, timeOfDay, longestName());
        for (unsigned number = 0; number < TrashNames::MostNames; ++number) {
            std::string const name = names.name(number);
            Done const moved = moveTo(name, date);
            if (moved.isDone()) return trashed(name);
            if (moved.problem().kind != TrashProblem::NameTaken) return moved.problem();
        }
        return cannotTrash({.code = EEXIST, .operation = "rename", .item = m_item.name});
    }

private:
    std::size_t longestName() const {
        struct statvfs status {};
        std::size_t longest = NAME_MAX;
        if (::fstatvfs(m_trash.information.number(), &status) == 0 && status.f_namemax > 0)
            longest = std::min<std::size_t>(longest, status.f_namemax);
        std::size_t const added =
            TrashInformation::nameEnd.size() + (m_sidecar ? AppleDoubleSidecar::namePrefix.size() : 0);
        return longest - std::min(longest - 1, added);
    }

    // NameTaken: the item may be moved to another name.
    Done moveTo(std::string const& name, std::string const& date) const {
        TrashReservation reservation(m_trash, name);
        Result<void> const isReserved = reservation.make(m_original, date);
        if (!isReserved.isDone()) return cannotTrash(isReserved.problem());
        std::string const sidecarName = AppleDoubleSidecar::nameFor(name);
        TrashReservation sidecar(m_trash, sidecarName);
        Result<void> const sidecarIsReserved = m_sidecar ? sidecar.make(sidecarOriginal(), date) : Result<void>();
        if (!sidecarIsReserved.isDone()) return cannotTrash(sidecarIsReserved.problem());
        tell(TrashStep::InformationWritten);

        Result<void, RenameProblem> const moved = renameIntoTrash(m_item.item, m_item.name, name);
        if (moved.isDone() || moved.problem().movedWrongItem) reservation.keep();
        if (!moved.isDone()) return problemOf(moved.problem(), name);
        tell(TrashStep::ItemMoved);

        Done const followed = m_sidecar ? moveSidecar(sidecar, sidecarName) : Done();
        if (!followed.isDone()) return takeBack(reservation, followed.problem(), name);
        followMovedItem(m_trash.files, name);
        // The moves need not be on the disk: if the system fails now, the item is where it was, or in the trash with
        // its record, which was written first.
        tell(TrashStep::AllMoved);
        return {};
    }

    Done moveSidecar(TrashReservation& reservation, std::string const& name) const {
        Result<void, RenameProblem> const moved = renameIntoTrash(m_sidecar->file, m_sidecar->name, name);
        if (moved.isDone() || moved.problem().movedWrongItem) reservation.keep();
        if (moved.isDone()) return {};
        // A sidecar that another process has removed meanwhile is no longer the item's.
        if (!moved.problem().movedWrongItem && moved.problem().error.is(ENOENT)) return {};
        return problemOf(moved.problem(), name);
    }

    // Moves the item back, because its sidecar could not follow.
    TrashProblem takeBack(TrashReservation& reservation, TrashProblem problem, std::string const& name) const {
        Result<void, RenameProblem> const back =
            renameItem(m_item.item, {m_trash.files, name}, {m_item.folder, m_item.name}, renameStepsOf(m_steps));
        if (back.isDone()) {
            reservation.giveUp();
            followMovedItem(m_item.folder, m_item.name);
        }
        if (back.isDone() || back.problem().movedWrongItem) return problem;
        // The item is in the trash, so no other name is to be tried.
        if (problem.kind == TrashProblem::NameTaken) problem.kind = TrashProblem::Other;
        problem.whereabouts = {localizable("the item is now at %@"), pathOf(name)};
        return problem;
    }

    Result<void, RenameProblem> renameIntoTrash(FileDescriptor const& item, std::string const& name,
                                                std::string const& nameInTrash) const {
        return renameItem(item, {m_item.folder, name}, {m_trash.files, nameInTrash}, renameStepsOf(m_steps));
    }

    TrashProblem problemOf(RenameProblem const& problem, std::string const& name) const {
        return problem.movedWrongItem ? wrongItemMoved(problem.error, What, pathOf(name)) : cannotTrash(problem.error);
    }

    void tell(TrashStep step) const {
        if (m_steps) m_steps(step);
    }

    std::string pathOf(std::string const& name) const { return m_trash.filesPath() + "/" + name; }

    std::string sidecarOriginal() const { return BytePath(BytePath(m_original).parent()).joined(m_sidecar->name); }

    TrashedItem trashed(std::string const& name) const {
        if (m_place.isFolder) addDirectorySize(m_trash, name);
        return TrashedItem{.path = pathOf(name),
                           .originalPath = m_trash.originalPath(m_original),
                           .deletionTime = m_time,
                           .identity = m_place.identity,
                           .isFolder = m_place.isFolder};
    }

    OpenItem const& m_item;
    ItemPlace const& m_place;
    std::optional<OpenSidecar> const& m_sidecar;
    TrashPlace const& m_trash;
    std::string m_original;
    TrashSteps const& m_steps;
    std::int64_t m_time;
};

} // namespace

RenameSteps renameStepsOf(TrashSteps const& steps) {
    if (!steps) return {};
    return [steps](RenameStep step) { steps(step == RenameStep::Checked ? TrashStep::Checked : TrashStep::Renamed); };
}

Result<TrashedItem, TrashProblem> moveToTrash(std::string_view path, TrashSteps const& steps) {
    Result<OpenItem> const item = openItemAtPath(BytePath(path).bytes(), LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return cannotTrash(item.problem());
    return moveToTrash(item.value(), steps);
}

Result<TrashedItem, TrashProblem> moveToTrash(OpenItem const& item, TrashSteps const& steps) {
    Result<ItemPlace, TrashProblem> const place = check(item);
    if (!place.hasValue()) return place.problem();
    Result<std::optional<OpenSidecar>> sidecar = sidecarBeside(item.folder, item.name);
    if (!sidecar.hasValue()) return cannotTrash(sidecar.problem());
    Result<std::string> const folder = pathOfFolder(item.folder);
    if (!folder.hasValue()) return cannotTrash(folder.problem());
    std::string const path = BytePath(folder.value()).joined(item.name);
    Done const mounts = checkMounts(path, place.value());
    if (!mounts.isDone()) return mounts.problem();
    Result<TrashPlace, TrashProblem> const trash = trashForFolder(item.folder, MissingTrash::IsMade);
    if (!trash.hasValue()) return trash.problem();
    std::optional<std::string> const original = trash.value().writtenPath(path);
    if (!original) return cannotTrash({.code = EXDEV, .operation = "rename", .item = path});
    Trashable const what{.item = item, .place = place.value(), .sidecar = sidecar.takeValue()};
    return Trashing(what, trash.value(), *original, steps).run();
}

Result<std::string, TrashProblem> trashFolderForPath(std::string_view path, MissingTrash missing) {
    Result<OpenItem> const item = openItemAtPath(path, LinkAtEnd::IsFollowed);
    if (!item.hasValue()) return cannotTrash(item.problem());
    Result<ItemPlace> const place = placeOf(item.value().item);
    if (!place.hasValue()) return cannotTrash(place.problem());
    FileDescriptor const& folder = place.value().isFolder ? item.value().item : item.value().folder;
    Result<TrashPlace, TrashProblem> const trash = trashForFolder(folder, missing);
    if (!trash.hasValue()) return trash.problem();
    return trash.value().filesPath();
}

} // namespace mac
