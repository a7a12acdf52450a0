#pragma once

#include <cstddef>
#include <cstdint>

namespace mac {

// How the bytes of RememberedFolders are laid out, in the machine's own byte order and without padding: volumes, one
// behind the other, each a VolumeEntry, its path and the entry of its top folder. A folder's entry is a
// FolderEntryHead, its children (a byte for the kind, a byte for the length of the name, the name), and the entries of
// those children that have one, in the order of the children.

inline constexpr std::size_t MostIndexBytes = std::size_t{256} << 20;

struct VolumeEntry {
    std::uint64_t device = 0;
    std::uint64_t type = 0;
    std::uint64_t fileSystem = 0;
    std::uint32_t pathBytes = 0;
    std::uint32_t isZero = 0;
};
static_assert(sizeof(VolumeEntry) == 32);

struct FolderEntryHead {
    std::uint64_t inode = 0;
    std::int64_t modified = 0;
    std::int64_t changed = 0;
    std::uint32_t linkCount = 0;
    std::uint32_t childBytes = 0;
    std::uint32_t extent = 0; // bytes from this head to the end of all that lies below the folder
    std::uint32_t foldersBelow = 0;
};
static_assert(sizeof(FolderEntryHead) == 40);

inline constexpr std::size_t ChildHeadBytes = 2;

} // namespace mac
