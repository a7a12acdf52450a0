#include "platform/files/Trash.h"
#include "platform/files/DirectorySizes.h"
#include "platform/files/TrashInformation.h"
#include "platform/files/TrashMove.h"
#include "platform/files/TrashNames.h"
#include "platform/files/TrashSteps.h"
#include "platform/system/items/AppleDoubleFile.h"
#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/MountTable.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr char What[] = "The item cannot be moved to the trash";

TrashFailure immovable(std::string const& reason) { return {TrashProblem::Immovable, What + (": " + reason)}; }

bool contains(std::vector<ItemIdentity> const& identities, ItemIdentity const& identity) {
    return std::ranges::find(identities, identity) != identities.end();
}

// Whether the item, in a folder with those above it, is a trash, holds one, or lies in one.
std::optional<TrashFailure> refusalBeside(TrashFolder const& trash, ItemIdentity const& item,
                                          std::vector<ItemIdentity> const& above) {
    std::optional<std::vector<ItemIdentity>> const aboveTrash = folderAndThoseAbove(trash.folder);
    std::optional<ItemPlace> const files = placeOf(trash.files);
    std::optional<ItemPlace> const information = placeOf(trash.information);
    if (!aboveTrash || !files || !information) return trashFailure(errno, What);
    if (item == files->identity || item == information->identity || contains(*aboveTrash, item))
        return immovable("It is the trash, or holds it");
    if (contains(above, aboveTrash->front()))
        return TrashFailure{TrashProblem::InTrash, What + std::string(": It is in the trash")};
    return std::nullopt;
}

bool holdsMountPoint(std::string const& path) {
    MountTable const mounts = MountTable::current();
    return std::ranges::any_of(mounts.mounts(),
                               [&](Mount const& mount) { return isAtOrBelow(mount.mountPoint, path); });
}

// What can be known before anything is made.
std::optional<TrashFailure> refusalOf(OpenItem const& item) {
    if (item.name.empty()) return immovable("It is the root of all volumes");
    std::optional<ItemPlace> const place = placeOf(item.item);
    std::optional<ItemPlace> const folder = placeOf(item.folder);
    if (!place || !folder) return trashFailure(errno, What);
    if (place->mount != folder->mount) return immovable("A volume is mounted there");
    if (::faccessat(item.folder.number(), ".", W_OK | X_OK, AT_EACCESS) != 0) return trashFailure(errno, What);
    bool const isOthers = place->owner != ::geteuid() && folder->owner != ::geteuid() && ::geteuid() != 0;
    if ((folder->mode & S_ISVTX) != 0 && isOthers) return trashFailure(EPERM, What);
    if (place->isFolder && holdsHomeTrash(place->identity)) return immovable("It holds the trash");
    std::optional<std::vector<ItemIdentity>> const above = folderAndThoseAbove(item.folder);
    if (!above) return trashFailure(errno, What);
    for (TrashFolder const& trash : trashesAround(item.folder)) {
        if (std::optional<TrashFailure> refusal = refusalBeside(trash, place->identity, *above)) return refusal;
    }
    return std::nullopt;
}

// Of an item that is about to move, and of the file beside it.
class Trashing {
public:
    Trashing(OpenItem const& item, TrashFolder const& trash, std::string original)
        : m_item(item), m_trash(trash), m_original(std::move(original)),
          m_companion(companionOf(item.folder, item.name)), m_time(::time(nullptr)) {}

    TrashResult<TrashedItem> run() const {
        std::string const date = localTimeText(m_time);
        std::string timeOfDay = date.size() > 11 ? date.substr(11) : date;
        std::ranges::replace(timeOfDay, ':', '-');
        TrashNames const names(m_item.name, timeOfDay, longestName());
        for (unsigned number = 0; number < TrashNames::MostNames; ++number) {
            std::string const name = names.name(number);
            errno = 0;
            std::optional<TrashFailure> const failure = moveTo(name, date);
            if (!failure) return trashed(name);
            if (failure->problem != TrashProblem::NameTaken) return *failure;
        }
        return trashFailure(EEXIST, What);
    }

private:
    std::size_t longestName() const {
        struct statvfs status {};
        std::size_t longest = NAME_MAX;
        if (::fstatvfs(m_trash.information.number(), &status) == 0 && status.f_namemax > 0)
            longest = std::min<std::size_t>(longest, status.f_namemax);
        std::size_t const added =
            TrashInformation::nameEnd.size() + (m_companion.file.isOpen() ? AppleDoubleFile::namePrefix.size() : 0);
        return longest - std::min(longest - 1, added);
    }

    // Nothing where it has moved; NameTaken where it may under another name.
    std::optional<TrashFailure> moveTo(std::string const& name, std::string const& date) const {
        TrashReservation reservation(m_trash, name);
        if (!reservation.make(m_original, date)) return trashFailure(errno, What);
        bool const hasCompanion = m_companion.file.isOpen();
        std::string const companionName = AppleDoubleFile::nameFor(name);
        TrashReservation companion(m_trash, companionName);
        if (hasCompanion && !companion.make(companionOriginal(), date)) return trashFailure(errno, What);
        tellTrashStep(TrashStep::InformationWritten);

        Moved const moved = moveItem(m_item.item, m_item.folder, m_item.name, m_trash.files, name);
        if (moved != Moved::No) reservation.keep();
        if (moved == Moved::ButAnother) return anotherMoved(What, pathOf(name));
        if (moved != Moved::Yes) return trashFailure(errno, What);
        tellTrashStep(TrashStep::ItemMoved);

        std::optional<TrashFailure> failure = hasCompanion ? moveCompanion(companion, companionName) : std::nullopt;
        if (failure) {
            Moved const back = moveItem(m_item.item, m_trash.files, name, m_item.folder, m_item.name);
            if (back == Moved::Yes) reservation.giveUp();
            return back == Moved::No ? leftBehind(std::move(*failure), name) : failure;
        }
        ::fsync(m_trash.files.number());
        tellTrashStep(TrashStep::AllMoved);
        return std::nullopt;
    }

    std::optional<TrashFailure> moveCompanion(TrashReservation& reservation, std::string const& name) const {
        Moved const moved = moveItem(m_companion.file, m_item.folder, m_companion.name, m_trash.files, name);
        if (moved != Moved::No) reservation.keep();
        if (moved == Moved::ButAnother) return anotherMoved(What, pathOf(name));
        // Who took it away meanwhile has it.
        if (moved == Moved::Yes || errno == ENOENT) return std::nullopt;
        return trashFailure(errno, What);
    }

    // In the trash, where the file beside it could not follow; not to be tried again under another name.
    TrashFailure leftBehind(TrashFailure failure, std::string const& name) const {
        if (failure.problem == TrashProblem::NameTaken) failure.problem = TrashProblem::Other;
        failure.reason += "; the item is now at " + shownPath(pathOf(name));
        return failure;
    }

    std::string pathOf(std::string const& name) const { return m_trash.filesPath() + "/" + name; }

    std::string companionOriginal() const {
        return m_original.substr(0, m_original.size() - m_item.name.size()) + m_companion.name;
    }

    TrashResult<TrashedItem> trashed(std::string const& name) const {
        std::optional<ItemPlace> const place = placeOf(m_item.item);
        if (!place) return trashFailure(errno, What);
        if (place->isFolder) addDirectorySize(m_trash, name);
        return TrashedItem{.path = pathOf(name),
                           .originalPath = m_trash.originalPath(m_original),
                           .deletionTime = m_time,
                           .identity = place->identity,
                           .isFolder = place->isFolder};
    }

    OpenItem const& m_item;
    TrashFolder const& m_trash;
    std::string m_original;
    Companion m_companion;
    std::int64_t m_time;
};

std::string_view withoutSlashesAtEnd(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

} // namespace

TrashResult<TrashedItem> moveToTrash(std::string_view path) {
    std::optional<OpenItem> const item = openItemAtPath(withoutSlashesAtEnd(path), false);
    if (!item) return trashFailure(errno, What);
    return moveToTrash(*item);
}

TrashResult<TrashedItem> moveToTrash(OpenItem const& item) {
    if (std::optional<TrashFailure> const refusal = refusalOf(item)) return *refusal;
    std::optional<std::string> const folder = pathOfFolder(item.folder);
    if (!folder) return trashFailure(errno, What);
    std::string const path = (*folder == "/" ? *folder : *folder + "/") + item.name;
    if (holdsMountPoint(path)) return immovable("A volume is mounted in it");
    TrashResult<TrashFolder> const trash = trashForFolder(item.folder, MissingTrash::IsMade);
    if (!trash.hasValue()) return trash.failure();
    std::optional<std::string> const original = trash.value().writtenPath(path);
    if (!original) return trashFailure(EXDEV, What);
    return Trashing(item, trash.value(), *original).run();
}

std::optional<std::string> trashFolderForPath(std::string_view path, bool makesIt) {
    std::optional<OpenItem> const item = openItemAtPath(path, true);
    std::optional<ItemPlace> const place = item ? placeOf(item->item) : std::nullopt;
    if (!place) return std::nullopt;
    TrashResult<TrashFolder> const trash = trashForFolder(place->isFolder ? item->item : item->folder,
                                                          makesIt ? MissingTrash::IsMade : MissingTrash::IsMissing);
    if (!trash.hasValue()) return std::nullopt;
    return trash.value().filesPath();
}

} // namespace mac
