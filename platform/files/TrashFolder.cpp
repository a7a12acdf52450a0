#include "platform/files/TrashFolder.h"
#include "platform/files/Volumes.h"
#include "platform/foundation/Encodings.h"
#include "platform/system/LocalComputer.h"
#include "platform/system/LongPath.h"
#include "platform/system/XDGFolders.h"
#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/MountTable.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace mac {

namespace {

constexpr int FolderFlags = O_PATH | O_DIRECTORY;
// To be listed, and flushed to the disk.
constexpr int ListFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK;

std::string homeTrashPath() { return dataHome() + "/Trash"; }

// The folder at the path, or the nearest above it that can be reached.
FileDescriptor openNearest(std::string path) {
    for (;;) {
        FileDescriptor folder = openPath(path.empty() ? "/" : path, FolderFlags);
        if (folder.isOpen() || path.empty()) return folder;
        path.resize(path.rfind('/'));
    }
}

FileDescriptor openOrMake(FileDescriptor const& folder, std::string const& name, int flags, MissingTrash missing) {
    if (missing == MissingTrash::IsMade && ::mkdirat(folder.number(), name.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        return {};
    return FileDescriptor(::openat(folder.number(), name.c_str(), flags | O_CLOEXEC));
}

FileDescriptor openOrMakePath(std::string const& path, MissingTrash missing) {
    FileDescriptor folder = openPath(path, FolderFlags);
    if (folder.isOpen() || errno != ENOENT || missing == MissingTrash::IsMissing) return folder;
    std::size_t const slash = path.find_last_not_of('/', path.rfind('/'));
    FileDescriptor const above =
        slash == std::string::npos ? openPath("/", FolderFlags) : openOrMakePath(path.substr(0, slash + 1), missing);
    if (!above.isOpen()) return {};
    return openOrMake(above, path.substr(path.rfind('/') + 1), FolderFlags, missing);
}

// A folder of this user's on the same mount: not one that somebody made for others to fall into.
bool isOwnOn(FileDescriptor const& folder, std::uint64_t mount) {
    std::optional<ItemPlace> const place = placeOf(folder);
    if (!place) return false;
    if (place->isFolder && place->owner == ::geteuid() && place->mount == mount) return true;
    errno = EPERM;
    return false;
}

// Errno says why not.
std::optional<TrashFolder> openInside(TrashFolder trash, MissingTrash missing) {
    if (!trash.folder.isOpen()) return std::nullopt;
    std::optional<ItemPlace> const place = placeOf(trash.folder);
    if (!place || !isOwnOn(trash.folder, place->mount)) return std::nullopt;
    trash.files = openOrMake(trash.folder, "files", ListFlags | O_NOFOLLOW, missing);
    if (!trash.files.isOpen() || !isOwnOn(trash.files, place->mount)) return std::nullopt;
    trash.information = openOrMake(trash.folder, "info", ListFlags | O_NOFOLLOW, missing);
    if (!trash.information.isOpen() || !isOwnOn(trash.information, place->mount)) return std::nullopt;
    return trash;
}

std::optional<TrashFolder> openHomeTrash(MissingTrash missing) {
    std::string const path = homeTrashPath();
    TrashFolder trash{.folder = openOrMakePath(path, missing), .path = path, .isHome = true};
    trash.base = path.substr(0, path.rfind('/'));
    return openInside(std::move(trash), missing);
}

std::string pathIn(std::string const& folder, std::string const& name) {
    return folder == "/" ? folder + name : folder + "/" + name;
}

// In the folder ".Trash" that the administrator made for all.
std::optional<TrashFolder> openSharedTrash(FileDescriptor const& top, std::string const& path, MissingTrash missing) {
    FileDescriptor const shared(::openat(top.number(), ".Trash", FolderFlags | O_NOFOLLOW | O_CLOEXEC));
    std::optional<ItemPlace> const topPlace = placeOf(top);
    std::optional<ItemPlace> const place = shared.isOpen() ? placeOf(shared) : std::nullopt;
    if (!topPlace || !place) return std::nullopt;
    // Without the sticky bit anybody could put something else in our folder's place.
    if ((place->mode & S_ISVTX) == 0 || place->mount != topPlace->mount) {
        errno = EPERM;
        return std::nullopt;
    }
    std::string const user = std::to_string(::geteuid());
    TrashFolder trash{.folder = openOrMake(shared, user, FolderFlags | O_NOFOLLOW, missing)};
    if (!trash.folder.isOpen() || !isOwnOn(trash.folder, topPlace->mount)) return std::nullopt;
    trash.path = pathIn(path, ".Trash/" + user);
    trash.base = path;
    return openInside(std::move(trash), missing);
}

std::optional<TrashFolder> openOwnTrash(FileDescriptor const& top, std::string const& path, MissingTrash missing) {
    std::optional<ItemPlace> const topPlace = placeOf(top);
    std::string const name = ".Trash-" + std::to_string(::geteuid());
    TrashFolder trash{.folder = openOrMake(top, name, FolderFlags | O_NOFOLLOW, missing)};
    if (!topPlace || !trash.folder.isOpen() || !isOwnOn(trash.folder, topPlace->mount)) return std::nullopt;
    trash.path = pathIn(path, name);
    trash.base = path;
    return openInside(std::move(trash), missing);
}

// Where the local computer is narrowed, other volumes are not its own.
bool isOfLocalComputer(std::string_view mountPoint) {
    std::vector<std::string> const folders = localComputerFolders();
    return folders.empty() ||
           std::ranges::any_of(folders, [&](std::string const& folder) { return isAtOrBelow(mountPoint, folder); });
}

TrashFailure noTrash() {
    TrashFailure failure = trashFailure(errno, "The volume has no trash that can be used");
    bool const isTheVolume = failure.problem == TrashProblem::ReadOnly || failure.problem == TrashProblem::Full;
    if (!isTheVolume) failure.problem = TrashProblem::NoTrash;
    return failure;
}

// Those that there are.
std::vector<TrashFolder> homeTrash() {
    std::vector<TrashFolder> trashes;
    if (std::optional<TrashFolder> trash = openHomeTrash(MissingTrash::IsMissing)) trashes.push_back(std::move(*trash));
    return trashes;
}

std::vector<TrashFolder> trashesOfMount(FileDescriptor const& top) {
    std::vector<TrashFolder> trashes;
    std::optional<std::string> const path = top.isOpen() ? pathOfFolder(top) : std::nullopt;
    if (!path) return trashes;
    for (auto const open : {openSharedTrash, openOwnTrash}) {
        if (std::optional<TrashFolder> trash = open(top, *path, MissingTrash::IsMissing))
            trashes.push_back(std::move(*trash));
    }
    return trashes;
}

} // namespace

std::optional<std::string> TrashFolder::writtenPath(std::string const& original) const {
    if (isHome) return original;
    std::string const start = base == "/" ? base : base + "/";
    if (!original.starts_with(start)) return std::nullopt;
    return original.substr(start.size());
}

std::string TrashFolder::originalPath(std::string const& written) const {
    if (!written.starts_with('/')) return pathIn(base, written);
    // Who brings a volume does not say what happens on another one.
    return isHome ? written : std::string();
}

TrashResult<TrashFolder> trashForFolder(FileDescriptor const& folder, MissingTrash missing) {
    std::optional<ItemPlace> const place = placeOf(folder);
    FileDescriptor const nearest = openNearest(homeTrashPath());
    std::optional<ItemPlace> const home = nearest.isOpen() ? placeOf(nearest) : std::nullopt;
    if (!place || !home) return noTrash();
    if (home->mount == place->mount) {
        std::optional<TrashFolder> trash = openHomeTrash(missing);
        if (!trash) return noTrash();
        return std::move(*trash);
    }
    FileDescriptor const top = topOfMount(folder);
    std::optional<std::string> const path = top.isOpen() ? pathOfFolder(top) : std::nullopt;
    if (!path) return noTrash();
    if (std::optional<TrashFolder> trash = openSharedTrash(top, *path, missing)) return std::move(*trash);
    if (std::optional<TrashFolder> trash = openOwnTrash(top, *path, missing)) return std::move(*trash);
    return noTrash();
}

bool holdsHomeTrash(ItemIdentity const& folder) {
    FileDescriptor const nearest = openNearest(homeTrashPath());
    std::optional<std::vector<ItemIdentity>> const above =
        nearest.isOpen() ? folderAndThoseAbove(nearest) : std::nullopt;
    return above && std::ranges::find(*above, folder) != above->end();
}

std::vector<TrashFolder> trashesAround(FileDescriptor const& folder) {
    std::vector<TrashFolder> trashes = homeTrash();
    for (TrashFolder& trash : trashesOfMount(topOfMount(folder)))
        trashes.push_back(std::move(trash));
    return trashes;
}

std::vector<TrashFolder> trashesOfUser() {
    std::vector<TrashFolder> trashes = homeTrash();
    for (MountedVolume const& volume : mountedVolumes()) {
        // A server that is gone would be waited for.
        if (!volume.isLocal || !isOfLocalComputer(volume.mountPoint)) continue;
        for (TrashFolder& trash : trashesOfMount(openPath(volume.mountPoint, FolderFlags)))
            trashes.push_back(std::move(trash));
    }
    // A volume can be mounted at several places.
    std::vector<ItemIdentity> seen;
    std::erase_if(trashes, [&seen](TrashFolder const& trash) {
        std::optional<ItemPlace> const place = placeOf(trash.folder);
        if (!place || std::ranges::find(seen, place->identity) != seen.end()) return true;
        seen.push_back(place->identity);
        return false;
    });
    return trashes;
}

std::string shownPath(std::string const& path) { return utf8FromUnits(unitsFromFileSystemBytes(path)); }

TrashFailure anotherMoved(std::string const& what, std::string const& path) {
    return {TrashProblem::Changed, what + ": Another item was moved in its stead, and is now at " + shownPath(path)};
}

TrashFailure trashFailure(int errorNumber, std::string const& what) {
    TrashFailure failure{TrashProblem::Other, what + ": " + std::generic_category().message(errorNumber)};
    switch (errorNumber) {
    case ENOENT:
    case ENOTDIR:
        failure.problem = TrashProblem::NotThere;
        break;
    case EACCES:
    case EPERM:
        failure.problem = TrashProblem::NotAllowed;
        break;
    case EROFS:
        failure.problem = TrashProblem::ReadOnly;
        break;
    case ENOSPC:
    case EDQUOT:
        failure.problem = TrashProblem::Full;
        break;
    case EXDEV:
        failure.problem = TrashProblem::NoTrash;
        break;
    case EBUSY:
        failure.problem = TrashProblem::Immovable;
        break;
    case EEXIST:
    case ENOTEMPTY:
        failure.problem = TrashProblem::NameTaken;
        break;
    case ESTALE:
        failure.problem = TrashProblem::Changed;
        break;
    default:
        break;
    }
    return failure;
}

} // namespace mac
