#pragma once

#include "platform/files/references/CatalogInformation.h"

namespace mac {

class FileDescriptor;
struct MountedVolume;

// The mounted volumes. nsvErr: no volume has that number or index. Any thread.

using ItemCount = std::uint32_t;
using FSVolumeInfoBitmap = std::uint32_t;

inline constexpr FSVolumeRefNum kFSInvalidVolumeRefNum = 0;

inline constexpr FSVolumeInfoBitmap kFSVolInfoNone = 0;
inline constexpr FSVolumeInfoBitmap kFSVolInfoSizes = 0x00000040;
inline constexpr FSVolumeInfoBitmap kFSVolInfoBlocks = 0x00000080;
inline constexpr FSVolumeInfoBitmap kFSVolInfoFlags = 0x00002000;
inline constexpr FSVolumeInfoBitmap kFSVolInfoFSInfo = 0x00004000;

// Bits of the flags: the volume cannot be written to, because of its hardware or of its mount. Linux: the former is
// never set.
inline constexpr std::uint16_t kFSVolFlagHardwareLockedMask = 0x0080;
inline constexpr std::uint16_t kFSVolFlagSoftwareLockedMask = 0x8000;

// Fields that were not asked for have no defined value.
struct FSVolumeInfo {
    std::uint64_t totalBytes{0};
    // Available to the program's user.
    std::uint64_t freeBytes{0};
    std::uint32_t blockSize{0};
    std::uint32_t totalBlocks{0};
    std::uint32_t freeBlocks{0};
    std::uint16_t flags{0};
    // 0x0000 for HFS and HFS Plus, 0x4953 for FAT, 0x6173 for network file systems, 0xFFFE for Linux's own; each other
    // local kind has a number of its own.
    std::uint16_t filesystemID{0};
    // Linux: 0; filesystemID tells the kind.
    std::uint16_t signature{0};
};

// Reads the number, the fields of the information that the mask names, the name and a reference to the root of one
// volume: that of a number, with the index 0; or that of an index from 1 on, with the number kFSInvalidVolumeRefNum:
// the startup volume is the first. Linux: memory that the system mounts below /dev and /sys has a number, but no index.
// The output parameters may be null; so may the information, with an empty mask. The name is in the form of HFS, empty
// if no HFSUniStr255 can hold it. Nothing is written on failure: errFSBadInfoBitmap for bits other than those above,
// nsvErr, paramErr; ioErr for a number whose root cannot be opened. Linux: for an index such a reference is all zero,
// so that a mount of another user does not end a walk.
OSErr FSGetVolumeInfo(FSVolumeRefNum volume, ItemCount volumeIndex, FSVolumeRefNum* actualVolume,
                      FSVolumeInfoBitmap whichInfo, FSVolumeInfo* info, HFSUniStr255* volumeName, FSRef* rootDirectory);
// Stores the file URL of the volume's root. paramErr for a null pointer, nsvErr if no volume has that number.
OSStatus FSCopyURLForVolume(FSVolumeRefNum vRefNum, CFURLRef* url);

// For implementations: the filesystemID of a kind of file system, in Linux's spelling ("ext4").
std::uint16_t fileSystemIdentifier(std::string_view fileSystem, bool isLocal);

// For implementations: a volume keeps its number as long as it is mounted; the number is not given to another volume
// until 32,000 have been mounted.
FSVolumeRefNum numberOfVolume(MountedVolume const& volume);
// ENXIO for an item on no volume.
Result<FSVolumeRefNum> numberOfVolumeOf(FileDescriptor const& item);

} // namespace mac
