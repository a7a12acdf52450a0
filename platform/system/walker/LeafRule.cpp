#include "platform/system/walker/LeafRule.h"

#include <linux/magic.h>
#include <sys/vfs.h>

namespace mac {

bool linkCountTellsSubfolders(OpenFolder const& folder) {
    struct statfs volume;
    if (::fstatfs(folder.descriptor(), &volume) != 0) return false;
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

std::optional<std::uint32_t> subfoldersByLinkCount(std::uint32_t linkCount) {
    constexpr std::uint32_t ownLinks = 2; // its name and its "."
    if (linkCount < ownLinks) return std::nullopt;
    return linkCount - ownLinks;
}

} // namespace mac
