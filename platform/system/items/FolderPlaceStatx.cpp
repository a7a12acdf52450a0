#include "platform/system/FolderContents.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/FolderPlace.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

std::optional<ItemPlace> placeAt(int folder, char const* name, int flags) {
    constexpr unsigned wanted =
        STATX_TYPE | STATX_MODE | STATX_UID | STATX_INO | STATX_NLINK | STATX_BTIME | STATX_MNT_ID;
    struct statx status {};
    if (::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | flags, wanted, &status) != 0) return std::nullopt;
    ItemPlace place;
    place.identity = identityOf(status);
    // Before Linux 5.8 the device has to do.
    place.mount = (status.stx_mask & STATX_MNT_ID) != 0 ? status.stx_mnt_id : place.identity.device;
    place.owner = status.stx_uid;
    place.mode = status.stx_mode;
    place.isFolder = S_ISDIR(status.stx_mode);
    place.isMountPoint = (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    return place;
}

FileDescriptor folderAbove(FileDescriptor const& folder, int flags = O_PATH) {
    return FileDescriptor(::openat(folder.number(), "..", flags | O_DIRECTORY | O_CLOEXEC));
}

bool isSamePlace(ItemPlace const& one, ItemPlace const& other) {
    return one.identity == other.identity && one.mount == other.mount;
}

std::optional<std::string> nameInFolder(FileDescriptor const& folder, ItemPlace const& item) {
    for (std::string const& name : namesInOpenFolder(folder).value_or(std::vector<std::string>())) {
        std::optional<ItemPlace> const found = placeOf(folder, name);
        if (found && isSamePlace(*found, item)) return name;
    }
    return std::nullopt;
}

} // namespace

std::optional<ItemPlace> placeOf(FileDescriptor const& item) { return placeAt(item.number(), "", AT_EMPTY_PATH); }

std::optional<ItemPlace> placeOf(FileDescriptor const& folder, std::string const& name) {
    return placeAt(folder.number(), name.c_str(), 0);
}

std::optional<std::vector<ItemIdentity>> folderAndThoseAbove(FileDescriptor const& folder) {
    std::vector<ItemIdentity> identities;
    std::optional<ItemPlace> place = placeOf(folder);
    FileDescriptor above = folderAbove(folder);
    while (place) {
        identities.push_back(place->identity);
        std::optional<ItemPlace> next = above.isOpen() ? placeOf(above) : std::nullopt;
        if (next && isSamePlace(*next, *place)) return identities;
        place = next;
        if (place) above = folderAbove(above);
    }
    return std::nullopt;
}

FileDescriptor topOfMount(FileDescriptor const& folder) {
    FileDescriptor top(::openat(folder.number(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    while (top.isOpen()) {
        std::optional<ItemPlace> const place = placeOf(top);
        FileDescriptor above = folderAbove(top);
        std::optional<ItemPlace> const next = above.isOpen() ? placeOf(above) : std::nullopt;
        if (!place || !next) return {};
        if (next->mount != place->mount || isSamePlace(*next, *place)) return top;
        top = std::move(above);
    }
    return top;
}

std::optional<std::string> pathOfFolder(FileDescriptor const& folder) {
    std::optional<std::string> path = systemsPath(folder);
    FileDescriptor below(::openat(folder.number(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::string end;
    while (!path && errno == ENAMETOOLONG) {
        FileDescriptor above = folderAbove(below, O_RDONLY);
        std::optional<ItemPlace> const place = placeOf(below);
        std::optional<std::string> const name = above.isOpen() && place ? nameInFolder(above, *place) : std::nullopt;
        if (!name) return std::nullopt;
        end.insert(0, "/" + *name);
        below = std::move(above);
        path = systemsPath(below);
    }
    if (!path || end.empty()) return path;
    return *path == "/" ? end : *path + end;
}

} // namespace mac
