#include "platform/files/ItemIdentity.h"
#include "platform/foundation/FileDescriptor.h"
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace mac {

namespace {

constexpr unsigned Wanted = STATX_TYPE | STATX_INO | STATX_NLINK | STATX_BTIME;

std::optional<IdentifiedItem> identifyAt(int folder, char const* name, int flags) {
    struct statx status {};
    if (::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | flags, Wanted, &status) != 0) return std::nullopt;
    IdentifiedItem item;
    item.identity.device = makedev(status.stx_dev_major, status.stx_dev_minor);
    item.identity.inode = status.stx_ino;
    if ((status.stx_mask & STATX_BTIME) != 0)
        item.identity.birth = std::int64_t{status.stx_btime.tv_sec} * 1000000000 + status.stx_btime.tv_nsec;
    item.isFolder = S_ISDIR(status.stx_mode);
    item.isRemoved = status.stx_nlink == 0;
    return item;
}

} // namespace

std::size_t ItemIdentityHash::operator()(ItemIdentity const& identity) const {
    std::uint64_t hash = identity.inode * 0x9E3779B97F4A7C15U;
    hash = (hash ^ identity.device ^ static_cast<std::uint64_t>(identity.birth)) * 0x9E3779B97F4A7C15U;
    return hash ^ hash >> 32;
}

std::optional<IdentifiedItem> identify(FileDescriptor const& item) {
    return identifyAt(item.number(), "", AT_EMPTY_PATH);
}

std::optional<IdentifiedItem> identify(FileDescriptor const& folder, std::string const& name) {
    return identifyAt(folder.number(), name.c_str(), 0);
}

} // namespace mac
