#include "platform/files/trash/TrashPlaces.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/XDGFolders.h"
#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/MountTable.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr int FolderFlags = O_PATH | O_DIRECTORY;
// Open for listing, and for flushing to the disk.
constexpr int ListFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK;

enum class Top { UserData, Volume };
enum class NameEnd { None, UserID };

// A place where a trash can lie.
struct PlaceRow {
    Top top;
    // A folder in the top that the administrator made for the trashes of all users; empty if the trash lies in the top.
    std::string_view sharedFolder;
    std::string_view nameStart;
    NameEnd nameEnd;

    std::string name() const {
        return std::string(nameStart) + (nameEnd == NameEnd::UserID ? std::to_string(::geteuid()) : "");
    }
    std::string pathIn(std::string_view topPath) const {
        std::string const folder = sharedFolder.empty() ? std::string(topPath) : BytePath(topPath).joined(sharedFolder);
        return BytePath(folder).joined(name());
    }
};

// All places, in the order in which they are tried: the user's data only for what lies on its volume.
constexpr std::array<PlaceRow, 3> Places{{
    {Top::UserData, "", "Trash", NameEnd::None},
    {Top::Volume, ".Trash", "", NameEnd::UserID},
    {Top::Volume, "", ".Trash-", NameEnd::UserID},
}};

struct TopFolder {
    FileDescriptor folder{};
    std::string path{};
};

Result<FileDescriptor> openIn(FileDescriptor const& folder, std::string const& name, int flags) {
    FileDescriptor opened(::openat(folder.number(), name.c_str(), flags | O_CLOEXEC));
    if (!opened.isOpen()) return lastSystemError("open", name);
    return opened;
}

Result<FileDescriptor> openOrMake(FileDescriptor const& folder, std::string const& name, int flags,
                                  MissingTrash missing) {
    Result<void> const made = missing == MissingTrash::IsMade ? makeOwnFolder(folder, name) : Result<void>();
    if (!made.isDone() && !made.problem().is(EEXIST)) return made.problem();
    return openIn(folder, name, flags);
}

Result<FileDescriptor> openOrMakePath(BytePath path, MissingTrash missing) {
    Result<FileDescriptor> folder = openPath(path.bytes(), FolderFlags);
    bool const canMake = missing == MissingTrash::IsMade && path.bytes() != path.parent();
    if (folder.hasValue() || !folder.problem().is(ENOENT) || !canMake) return folder;
    Result<FileDescriptor> const above = openOrMakePath(path.parent(), missing);
    if (!above.hasValue()) return above.problem();
    return openOrMake(above.value(), std::string(path.leaf()), FolderFlags, missing);
}

// Opens the folder at the path, or the nearest folder above it that can be opened.
Result<FileDescriptor> openNearest(BytePath path) {
    Result<FileDescriptor> folder = openPath(path.bytes(), FolderFlags);
    if (folder.hasValue() || path.bytes() == path.parent() || path.parent().empty()) return folder;
    return openNearest(path.parent());
}

// Fails with EPERM unless the item is a folder of this user on the mount: others could have made it as a trap.
Result<void> checkOwnOn(FileDescriptor const& folder, std::uint64_t mount, std::string const& path) {
    Result<ItemPlace> const place = placeOf(folder);
    if (!place.hasValue()) return place.problem();
    bool const isOwn = place.value().isFolder && place.value().owner == ::geteuid() && place.value().mount == mount;
    return isOwn ? Result<void>() : SystemError{.code = EPERM, .operation = "use", .item = path};
}

// Opens a folder of the trash, "files" or "info".
Result<FileDescriptor> openPart(TrashPlace const& trash, std::uint64_t mount, char const* name, MissingTrash missing) {
    Result<FileDescriptor> part = openOrMake(trash.folder, name, ListFlags | O_NOFOLLOW, missing);
    if (!part.hasValue()) return part;
    Result<void> const check = checkOwnOn(part.value(), mount, trash.path);
    if (!check.isDone()) return check.problem();
    return part;
}

// Opens the folder that the administrator made. Without the sticky bit any user could replace a folder in it.
Result<FileDescriptor> openShared(TopFolder const& top, std::string const& name, std::uint64_t mount) {
    Result<FileDescriptor> shared = openIn(top.folder, name, FolderFlags | O_NOFOLLOW);
    if (!shared.hasValue()) return shared;
    Result<ItemPlace> const place = placeOf(shared.value());
    if (!place.hasValue()) return place.problem();
    bool const isSafe = (place.value().mode & S_ISVTX) != 0 && place.value().mount == mount;
    if (!isSafe) return SystemError{.code = EPERM, .operation = "use", .item = BytePath(top.path).joined(name)};
    return shared;
}

Result<FileDescriptor> openTrashFolder(PlaceRow const& row, TopFolder const& top, MissingTrash missing) {
    // The user may have linked the home trash to another place.
    if (row.top == Top::UserData) return openOrMake(top.folder, row.name(), FolderFlags, missing);
    if (row.sharedFolder.empty()) return openOrMake(top.folder, row.name(), FolderFlags | O_NOFOLLOW, missing);
    Result<ItemPlace> const place = placeOf(top.folder);
    if (!place.hasValue()) return place.problem();
    Result<FileDescriptor> const shared = openShared(top, std::string(row.sharedFolder), place.value().mount);
    if (!shared.hasValue()) return shared.problem();
    return openOrMake(shared.value(), row.name(), FolderFlags | O_NOFOLLOW, missing);
}

// A trash's folder, which belongs to this user, and the mount that all of it must lie on.
struct OwnFolder {
    FileDescriptor folder{};
    std::uint64_t mount{0};
};

Result<OwnFolder> openOwnFolder(PlaceRow const& row, TopFolder const& top, MissingTrash missing) {
    Result<FileDescriptor> folder = openTrashFolder(row, top, missing);
    if (!folder.hasValue()) return folder.problem();
    bool const isHome = row.top == Top::UserData;
    Result<ItemPlace> const place = placeOf(isHome ? folder.value() : top.folder);
    if (!place.hasValue()) return place.problem();
    std::uint64_t const mount = place.value().mount;
    Result<void> const check = checkOwnOn(folder.value(), mount, row.pathIn(top.path));
    if (!check.isDone()) return check.problem();
    return OwnFolder{folder.takeValue(), mount};
}

// Opens what the trash consists of. A trash that is only looked into may lack "info": nothing is recorded then.
Result<TrashPlace> openParts(PlaceRow const& row, TopFolder const& top, OwnFolder own, MissingTrash missing) {
    TrashPlace trash{.folder = std::move(own.folder),
                     .path = row.pathIn(top.path),
                     .base = top.path,
                     .isHome = row.top == Top::UserData};
    Result<FileDescriptor> files = openPart(trash, own.mount, "files", missing);
    if (!files.hasValue()) return files.problem();
    Result<FileDescriptor> information = openPart(trash, own.mount, "info", missing);
    bool const isMissing = !information.hasValue() && information.problem().is(ENOENT);
    bool const canDoWithout = isMissing && missing == MissingTrash::IsMissing;
    if (!information.hasValue() && !canDoWithout) return information.problem();
    trash.files = files.takeValue();
    if (!canDoWithout) trash.information = information.takeValue();
    return trash;
}

Result<TrashPlace> openTrash(PlaceRow const& row, TopFolder const& top, MissingTrash missing) {
    Result<OwnFolder> folder = openOwnFolder(row, top, missing);
    if (!folder.hasValue()) return folder.problem();
    return openParts(row, top, folder.takeValue(), missing);
}

Result<TopFolder> openUserData(MissingTrash missing) {
    std::string path(BytePath(dataHome()).bytes());
    Result<FileDescriptor> folder = openOrMakePath(path, missing);
    if (!folder.hasValue()) return folder.problem();
    return TopFolder{folder.takeValue(), std::move(path)};
}

Result<TopFolder> topFolder(Result<FileDescriptor> folder) {
    if (!folder.hasValue()) return folder.problem();
    Result<std::string> path = pathOfFolder(folder.value());
    if (!path.hasValue()) return path.problem();
    return TopFolder{folder.takeValue(), path.takeValue()};
}

// The user's own data, unlike a volume, may hold a trash of this user also where they are closed.
void addProblem(FoundTrashes& found, Top kind, SystemError const& problem) {
    bool const isClosedHome = kind == Top::UserData && problem.is(EACCES);
    if (isClosedHome || !isWithoutTrash(problem)) found.problems.push_back(problem);
}

// Opens the trash at the place if the user has one there.
void addExisting(FoundTrashes& found, PlaceRow const& row, TopFolder const& top) {
    Result<OwnFolder> folder = openOwnFolder(row, top, MissingTrash::IsMissing);
    if (!folder.hasValue()) return addProblem(found, row.top, folder.problem());
    Result<TrashPlace> trash = openParts(row, top, folder.takeValue(), MissingTrash::IsMissing);
    if (trash.hasValue())
        found.trashes.push_back(trash.takeValue());
    else if (!trash.problem().is(ENOENT))
        found.problems.push_back(trash.problem());
}

// The trashes that exist at the places of that kind below the top folder.
FoundTrashes existingTrashes(Top kind, Result<TopFolder> const& top) {
    FoundTrashes found;
    if (!top.hasValue()) {
        addProblem(found, kind, top.problem());
        return found;
    }
    for (PlaceRow const& row : Places) {
        if (row.top == kind) addExisting(found, row, top.value());
    }
    return found;
}

FoundTrashes trashesOfUserData() { return existingTrashes(Top::UserData, openUserData(MissingTrash::IsMissing)); }

void append(FoundTrashes& found, FoundTrashes more) {
    std::ranges::move(more.trashes, std::back_inserter(found.trashes));
    std::ranges::move(more.problems, std::back_inserter(found.problems));
}

// A volume can be mounted at several places.
void removeRepeated(FoundTrashes& found) {
    std::vector<ItemIdentity> seen;
    std::erase_if(found.trashes, [&](TrashPlace const& trash) {
        Result<ItemPlace> const place = placeOf(trash.folder);
        if (!place.hasValue()) {
            found.problems.push_back(place.problem());
            return true;
        }
        if (std::ranges::find(seen, place.value().identity) != seen.end()) return true;
        seen.push_back(place.value().identity);
        return false;
    });
}

// Whether the volume belongs to the local computer, which may be narrowed to some folders.
bool isOfLocalComputer(BytePath mountPoint) {
    std::vector<std::string> const folders = localComputerFolders();
    return folders.empty() ||
           std::ranges::any_of(folders, [&](std::string const& folder) { return mountPoint.isAtOrBelow(folder); });
}

TrashProblem noTrash(SystemError error) {
    TrashProblem problem = trashProblem(std::move(error), localizable("The volume has no trash that can be used"));
    bool const isTheVolume = problem.kind == TrashProblem::ReadOnly || problem.kind == TrashProblem::Full;
    if (!isTheVolume) problem.kind = TrashProblem::NoTrash;
    return problem;
}

// The first trash below the top that can be used. If none can, the problem of the last place that is there or could not
// be made: that a place is missing tells nothing about the volume.
Result<TrashPlace, TrashProblem> firstTrash(Top kind, Result<TopFolder> const& top, MissingTrash missing) {
    if (!top.hasValue()) return noTrash(top.problem());
    SystemError error;
    for (PlaceRow const& row : Places) {
        if (row.top != kind) continue;
        Result<TrashPlace> trash = openTrash(row, top.value(), missing);
        if (trash.hasValue()) return trash.takeValue();
        if (error.code == 0 || !trash.problem().is(ENOENT)) error = trash.problem();
    }
    return noTrash(std::move(error));
}

// The folder, existing or not, that the user's data and its trashes lie in or would lie in.
Result<FileDescriptor> nearestToUserData(PlaceRow const& row) { return openNearest(row.pathIn(dataHome())); }

} // namespace

std::optional<std::string> TrashPlace::writtenPath(std::string const& original) const {
    if (isHome) return original;
    std::string_view const relative = BytePath(original).belowFolder(base);
    return relative.empty() ? std::nullopt : std::optional(std::string(relative));
}

std::string TrashPlace::originalPath(std::string const& written) const {
    if (!written.starts_with('/')) return BytePath(base).joined(written);
    // A volume brought from elsewhere has no say about paths on other volumes.
    return isHome ? written : std::string();
}

Result<TrashPlace, TrashProblem> trashForFolder(FileDescriptor const& folder, MissingTrash missing) {
    Result<ItemPlace> const place = placeOf(folder);
    if (!place.hasValue()) return noTrash(place.problem());
    for (PlaceRow const& row : Places) {
        if (row.top != Top::UserData) continue;
        Result<FileDescriptor> const nearest = nearestToUserData(row);
        if (!nearest.hasValue()) return noTrash(nearest.problem());
        Result<ItemPlace> const home = placeOf(nearest.value());
        if (!home.hasValue()) return noTrash(home.problem());
        if (home.value().mount == place.value().mount) return firstTrash(Top::UserData, openUserData(missing), missing);
    }
    return firstTrash(Top::Volume, topFolder(topOfMount(folder)), missing);
}

Result<bool> holdsHomeTrash(ItemIdentity const& folder) {
    for (PlaceRow const& row : Places) {
        if (row.top != Top::UserData) continue;
        Result<FileDescriptor> const nearest = nearestToUserData(row);
        if (!nearest.hasValue()) return nearest.problem();
        Result<std::vector<ItemIdentity>> const above = folderAndThoseAbove(nearest.value());
        if (!above.hasValue()) return above.problem();
        if (std::ranges::find(above.value(), folder) != above.value().end()) return true;
    }
    return false;
}

bool isWithoutTrash(SystemError const& error) {
    return error.is(ENOENT) || error.is(ENOTDIR) || error.is(ELOOP) || error.is(EPERM) || error.is(EACCES);
}

std::optional<SystemError> FoundTrashes::unknownPlace() const {
    auto const found = std::ranges::find_if_not(problems, &isWithoutTrash);
    return found == problems.end() ? std::nullopt : std::optional(*found);
}

FoundTrashes trashesAround(FileDescriptor const& folder) {
    FoundTrashes found = trashesOfUserData();
    append(found, existingTrashes(Top::Volume, topFolder(topOfMount(folder))));
    return found;
}

FoundTrashes trashesOfUser() {
    FoundTrashes found = trashesOfUserData();
    Result<MountTable> const mounts = MountTable::current();
    if (!mounts.hasValue()) found.problems.push_back(mounts.problem());
    std::vector<MountedVolume> const volumes =
        mounts.hasValue() ? volumesOf(mounts.value()) : std::vector<MountedVolume>();
    for (MountedVolume const& volume : volumes) {
        // A server that does not answer would block.
        if (!volume.isLocal || !isOfLocalComputer(volume.mountPoint)) continue;
        append(found, existingTrashes(Top::Volume, topFolder(openPath(volume.mountPoint, FolderFlags))));
    }
    removeRepeated(found);
    return found;
}

FoundTrashes trashesOfUserAndAround(std::string_view path) {
    FoundTrashes found;
    Result<FileDescriptor> const folder = openNearest(BytePath(BytePath(path).parent()));
    // First, since of a volume that is mounted twice the trash is to be known by the path's own mount point.
    if (folder.hasValue()) append(found, existingTrashes(Top::Volume, topFolder(topOfMount(folder.value()))));
    append(found, trashesOfUser());
    removeRepeated(found);
    return found;
}

} // namespace mac
