#include "platform/system/walker/FolderFacts.h"
#include "platform/system/items/ItemDates.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace mac {

namespace {

Result<FileDescriptor> ifOpen(FileDescriptor folder) {
    if (!folder.isOpen()) return lastSystemError("open");
    return folder;
}

std::int64_t nanoseconds(statx_timestamp const& time) { return nanosecondsOfDate(time.tv_sec, time.tv_nsec); }

Result<FolderFacts> facts(int descriptor, char const* name, int flags) {
    struct statx status;
    if (::statx(descriptor, name, flags | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC,
                STATX_TYPE | STATX_NLINK | STATX_INO | STATX_MTIME | STATX_CTIME | STATX_MNT_ID, &status) != 0)
        return lastSystemError("stat");
    return FolderFacts{.isFolder = S_ISDIR(status.stx_mode),
                       .isEncrypted = (status.stx_attributes & STATX_ATTR_ENCRYPTED) != 0,
                       .mount = (status.stx_mask & STATX_MNT_ID) != 0 ? status.stx_mnt_id : 0,
                       .device = (std::uint64_t{status.stx_dev_major} << 32) | status.stx_dev_minor,
                       .stamp = {.inode = status.stx_ino,
                                 .modified = nanoseconds(status.stx_mtime),
                                 .changed = nanoseconds(status.stx_ctime),
                                 .linkCount = status.stx_nlink}};
}

} // namespace

Result<FileDescriptor> openFolderIn(FileDescriptor const& parent, char const* name) {
    return ifOpen(FileDescriptor(::openat(parent.number(), name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW)));
}

Result<FileDescriptor> duplicateOf(FileDescriptor const& folder) {
    return ifOpen(FileDescriptor(::fcntl(folder.number(), F_DUPFD_CLOEXEC, 0)));
}

Result<FolderFacts> factsInside(FileDescriptor const& parent, char const* name) {
    return facts(parent.number(), name, AT_SYMLINK_NOFOLLOW);
}

Result<FolderFacts> factsOf(FileDescriptor const& folder) { return facts(folder.number(), "", AT_EMPTY_PATH); }

Result<void> maySearch(FileDescriptor const& parent, char const* path) {
    if (::faccessat(parent.number(), path, X_OK, AT_EACCESS) != 0) return lastSystemError("access");
    return {};
}

bool meansVanished(SystemError const& error) { return error.is(ENOENT) || error.is(ENOTDIR) || error.is(ELOOP); }

Result<VolumeIdentity> volumeIdentityOf(FileDescriptor const& folder) {
    struct statfs volume;
    if (::fstatfs(folder.number(), &volume) != 0) return lastSystemError("statfs");
    Result<FolderFacts> const facts = factsOf(folder);
    if (!facts.hasValue()) return facts.problem();
    std::uint64_t fileSystem = 0;
    static_assert(sizeof fileSystem == sizeof volume.f_fsid);
    std::memcpy(&fileSystem, &volume.f_fsid, sizeof fileSystem);
    return VolumeIdentity{
        .device = facts.value().device, .type = static_cast<std::uint64_t>(volume.f_type), .fileSystem = fileSystem};
}

bool timesTellChanges(VolumeIdentity const& volume) {
    switch (volume.type) {
    case EXT4_SUPER_MAGIC: // ext2 and ext3 as well, whose whole seconds FolderLog does not take for a stamp
    case XFS_SUPER_MAGIC:
    case BTRFS_SUPER_MAGIC:
    case TMPFS_MAGIC:
        return true;
    default:
        return false;
    }
}

bool linkCountTellsSubfolders(FileDescriptor const& folder) {
    struct statfs volume;
    if (::fstatfs(folder.number(), &volume) != 0) return false;
    switch (volume.f_type) {
    case EXT4_SUPER_MAGIC: // ext2 and ext3 as well
    case XFS_SUPER_MAGIC:
    case TMPFS_MAGIC:
    case EROFS_SUPER_MAGIC_V1:
        return true;
    default:
        return false;
    }
}

bool listsItemNumbers(FileDescriptor const& folder) {
    constexpr auto unionType = 0x61756673; // aufs, which is in no header
    struct statfs volume;
    if (::fstatfs(folder.number(), &volume) != 0) return false;
    switch (volume.f_type) {
    case OVERLAYFS_SUPER_MAGIC:
    case FUSE_SUPER_MAGIC:
    case ECRYPTFS_SUPER_MAGIC:
    case unionType:
        return false;
    default:
        return true;
    }
}

std::optional<std::uint32_t> subfoldersByLinkCount(std::uint32_t linkCount) {
    constexpr std::uint32_t ownLinks = 2; // its name and its "."
    if (linkCount < ownLinks) return std::nullopt;
    return linkCount - ownLinks;
}

} // namespace mac
