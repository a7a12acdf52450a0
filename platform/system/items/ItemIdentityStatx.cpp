#include "platform/system/FileDescriptor.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/ItemDates.h"
#include "platform/system/items/ItemIdentity.h"
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace mac {

namespace {

constexpr unsigned Wanted = STATX_TYPE | STATX_INO | STATX_NLINK | STATX_BTIME | STATX_MNT_ID;

Result<IdentifiedItem> identifyAt(int folder, char const* name, int flags) {
    struct statx status {};
    if (::statx(folder, name, AT_NO_AUTOMOUNT | flags, Wanted, &status) != 0) return lastSystemError("statx", name);
    IdentifiedItem item;
    item.identity = identityOf(status);
    item.isFolder = S_ISDIR(status.stx_mode);
    item.isRemoved = status.stx_nlink == 0;
    item.hasOtherNames = !item.isFolder && status.stx_nlink > 1;
    item.mount = (status.stx_mask & STATX_MNT_ID) != 0 ? status.stx_mnt_id : 0;
    return item;
}

} // namespace

ItemIdentity identityOf(struct statx const& status) {
    ItemIdentity identity{.device = makedev(status.stx_dev_major, status.stx_dev_minor), .inode = status.stx_ino};
    if ((status.stx_mask & STATX_BTIME) != 0)
        identity.birth = nanosecondsOfDate(status.stx_btime.tv_sec, status.stx_btime.tv_nsec);
    return identity;
}

std::size_t ItemIdentityHash::operator()(ItemIdentity const& identity) const {
    std::uint64_t hash = identity.inode * 0x9E3779B97F4A7C15U;
    hash = (hash ^ identity.device ^ static_cast<std::uint64_t>(identity.birth)) * 0x9E3779B97F4A7C15U;
    return hash ^ hash >> 32;
}

Result<IdentifiedItem> identify(FileDescriptor const& item) { return identifyAt(item.number(), "", AT_EMPTY_PATH); }

Result<IdentifiedItem> identify(FileDescriptor const& folder, std::string const& name) {
    return identifyAt(folder.number(), name.c_str(), AT_SYMLINK_NOFOLLOW);
}

bool isKnownToBeRemoved(FileDescriptor const& item) {
    Result<IdentifiedItem> const known = identifyAt(item.number(), "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC);
    return !known.hasValue() || known.value().isRemoved;
}

Result<IdentifiedItem> identifyAtPath(std::string const& path, LinkAtEnd linkAtEnd) {
    bool const isFollowed = linkAtEnd == LinkAtEnd::IsFollowed;
    if (path.size() < PATH_MAX) return identifyAt(AT_FDCWD, path.c_str(), isFollowed ? 0 : AT_SYMLINK_NOFOLLOW);
    Result<FileDescriptor> const item = openPath(path, isFollowed ? O_PATH : O_PATH | O_NOFOLLOW);
    if (!item.hasValue()) return item.problem();
    return identify(item.value());
}

Result<void> confirmItemInFolder(FileDescriptor const& folder, std::string const& name, ItemIdentity const& item) {
    Result<IdentifiedItem> const found = identify(folder, name);
    if (!found.hasValue()) return found.problem();
    if (found.value().identity == item) return {};
    return SystemError{.code = ESTALE, .operation = "statx", .item = name};
}

Result<void> confirmItemInFolder(FileDescriptor const& folder, std::string const& name, FileDescriptor const& item) {
    Result<IdentifiedItem> const expected = identify(item);
    if (!expected.hasValue()) return expected.problem();
    return confirmItemInFolder(folder, name, expected.value().identity);
}

} // namespace mac
