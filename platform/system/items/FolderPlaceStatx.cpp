#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/ItemAccess.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac {

namespace {

Result<ItemPlace> placeAt(int folder, char const* name, int flags) {
    constexpr unsigned wanted =
        STATX_TYPE | STATX_MODE | STATX_UID | STATX_INO | STATX_NLINK | STATX_BTIME | STATX_MNT_ID;
    struct statx status {};
    if (::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | flags, wanted, &status) != 0)
        return lastSystemError("statx", name);
    return placeIn(status);
}

Result<FileDescriptor> openFolder(FileDescriptor const& folder, char const* name, int flags) {
    FileDescriptor opened(::openat(folder.number(), name, flags | O_DIRECTORY | O_CLOEXEC));
    if (!opened.isOpen()) return lastSystemError("open", name);
    return opened;
}

bool isSamePlace(ItemPlace const& one, ItemPlace const& other) {
    return one.identity == other.identity && one.mount == other.mount;
}

// A folder of a path, and where it lies.
struct PlacedFolder {
    FileDescriptor folder{};
    ItemPlace place{};
};

Result<PlacedFolder> placed(Result<FileDescriptor> folder) {
    if (!folder.hasValue()) return folder.problem();
    Result<ItemPlace> const place = placeOf(folder.value());
    if (!place.hasValue()) return place.problem();
    return PlacedFolder{folder.takeValue(), place.value()};
}

Result<PlacedFolder> folderAbove(FileDescriptor const& folder, int flags = O_PATH) {
    return placed(openFolder(folder, "..", flags));
}

Result<std::string> nameInFolder(FileDescriptor const& folder, ItemPlace const& item) {
    Result<std::vector<std::string>> const names = namesInOpenFolder(folder);
    if (!names.hasValue()) return names.problem();
    for (std::string const& name : names.value()) {
        Result<ItemPlace> const found = placeOf(folder, name);
        if (found.hasValue() && isSamePlace(found.value(), item)) return name;
    }
    return SystemError{.code = ENOENT, .operation = "readdir"};
}

// Whether names may be added to the folder and removed from it.
Result<void> confirmWritable(FileDescriptor const& folder, std::string const& name) {
    if (::faccessat(folder.number(), ".", W_OK | X_OK, AT_EACCESS) == 0) return {};
    SystemError const error = lastSystemError("unlink", name);
    // A filter of system calls that does not know the newer question refuses it with the code of an immutable folder.
    Result<ItemPlace> const asked = placeOf(folder);
    bool const isUnanswered = error.is(EPERM) && asked.hasValue() && !asked.value().isImmutable;
    if (!isUnanswered) return error;
    bool const mayWrite = ::syscall(SYS_faccessat, folder.number(), ".", W_OK | X_OK) == 0;
    return mayWrite ? Result<void>() : lastSystemError("unlink", name);
}

} // namespace

ItemPlace placeIn(struct statx const& status) {
    ItemPlace place;
    place.identity = identityOf(status);
    // Before Linux 5.8 the device has to do.
    place.mount = (status.stx_mask & STATX_MNT_ID) != 0 ? status.stx_mnt_id : place.identity.device;
    place.owner = status.stx_uid;
    place.mode = status.stx_mode;
    place.isFolder = S_ISDIR(status.stx_mode);
    place.isMountPoint = (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    place.isImmutable = (status.stx_attributes & STATX_ATTR_IMMUTABLE) != 0;
    return place;
}

Result<ItemPlace> placeOf(FileDescriptor const& item) { return placeAt(item.number(), "", AT_EMPTY_PATH); }

Result<ItemPlace> placeOf(FileDescriptor const& folder, std::string const& name) {
    return placeAt(folder.number(), name.c_str(), 0);
}

Result<void> confirmNameRemovable(FileDescriptor const& folder, std::string const& name, ItemPlace const& item) {
    Result<void> const writable = confirmWritable(folder, name);
    if (!writable.isDone()) return writable;
    if (item.owner == ::geteuid() || ::geteuid() == 0) return {};
    Result<ItemPlace> const above = placeOf(folder);
    if (!above.hasValue()) return above.problem();
    bool const isKept = (above.value().mode & S_ISVTX) != 0 && above.value().owner != ::geteuid();
    return isKept ? SystemError{.code = EPERM, .operation = "unlink", .item = name} : Result<void>();
}

Result<std::vector<ItemIdentity>> folderAndThoseAbove(FileDescriptor const& folder) {
    Result<PlacedFolder> current = placed(openFolder(folder, ".", O_PATH));
    std::vector<ItemIdentity> identities;
    while (current.hasValue()) {
        identities.push_back(current.value().place.identity);
        Result<PlacedFolder> above = folderAbove(current.value().folder);
        if (above.hasValue() && isSamePlace(above.value().place, current.value().place)) return identities;
        current = std::move(above);
    }
    return current.problem();
}

Result<FileDescriptor> topOfMount(FileDescriptor const& folder) {
    Result<PlacedFolder> top = placed(openFolder(folder, ".", O_PATH));
    while (top.hasValue()) {
        Result<PlacedFolder> above = folderAbove(top.value().folder);
        if (!above.hasValue()) return above.problem();
        bool const isOnSameMount = above.value().place.mount == top.value().place.mount;
        if (!isOnSameMount || isSamePlace(above.value().place, top.value().place)) return std::move(top.value().folder);
        top = std::move(above);
    }
    return top.problem();
}

Result<std::string> pathOfFolder(FileDescriptor const& folder) {
    Result<std::string> path = systemsPath(folder);
    if (path.hasValue() || !path.problem().is(ENAMETOOLONG)) return path;
    Result<PlacedFolder> below = placed(openFolder(folder, ".", O_PATH));
    std::string end;
    while (!path.hasValue() && path.problem().is(ENAMETOOLONG)) {
        if (!below.hasValue()) return below.problem();
        Result<PlacedFolder> above = folderAbove(below.value().folder, O_RDONLY);
        if (!above.hasValue()) return above.problem();
        Result<std::string> const name = nameInFolder(above.value().folder, below.value().place);
        if (!name.hasValue()) return name.problem();
        end = end.empty() ? name.value() : BytePath(name.value()).joined(end);
        path = systemsPath(above.value().folder);
        below = std::move(above);
    }
    if (!path.hasValue()) return path;
    return BytePath(path.value()).joined(end);
}

} // namespace mac
