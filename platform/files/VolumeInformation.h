#pragma once

#include "platform/files/CatalogInformation.h"

namespace mac {

// The mounted volumes, by number and one after the other; nsvErr: none has the number, or there are not so many. Any
// thread.

using ItemCount = std::uint32_t;
using FSVolumeInfoBitmap = std::uint32_t;

inline constexpr FSVolumeRefNum kFSInvalidVolumeRefNum = 0;

inline constexpr FSVolumeInfoBitmap kFSVolInfoNone = 0;
inline constexpr FSVolumeInfoBitmap kFSVolInfoSizes = 0x00000040;
inline constexpr FSVolumeInfoBitmap kFSVolInfoBlocks = 0x00000080;
inline constexpr FSVolumeInfoBitmap kFSVolInfoFlags = 0x00002000;
inline constexpr FSVolumeInfoBitmap kFSVolInfoFSInfo = 0x00004000;

// Bits of the flags: the volume cannot be written, for its hardware's or for its mount's sake.
inline constexpr std::uint16_t kFSVolFlagHardwareLockedMask = 0x0080;
inline constexpr std::uint16_t kFSVolFlagSoftwareLockedMask = 0x8000;

// Only the fields that are asked for have a meaning.
struct FSVolumeInfo {
    std::uint64_t totalBytes{0};
    // For whoever runs the program.
    std::uint64_t freeBytes{0};
    std::uint32_t blockSize{0};
    std::uint32_t totalBlocks{0};
    std::uint32_t freeBlocks{0};
    std::uint16_t flags{0};
    // 0x0000 for HFS and HFS Plus, 0x4953 for FAT, 0x6173 for the network, 0xFFFE for what is Linux's own; for other
    // local kinds another one, which is the same for the same kind.
    std::uint16_t filesystemID{0};
    // Linux: 0, one number tells the kind.
    std::uint16_t signature{0};
};

// By number, with the index 0; or by index from 1 on, with the number kFSInvalidVolumeRefNum: the startup volume first.
// Everything but those may be null, and the information with an empty mask. The name is as HFS holds it, empty for one
// that no HFSUniStr255 holds. Nothing is written when it fails: errFSBadInfoBitmap for other bits than those above,
// nsvErr, paramErr.
OSErr FSGetVolumeInfo(FSVolumeRefNum volume, ItemCount volumeIndex, FSVolumeRefNum* actualVolume,
                      FSVolumeInfoBitmap whichInfo, FSVolumeInfo* info, HFSUniStr255* volumeName, FSRef* rootDirectory);
// Of its root.
OSStatus FSCopyURLForVolume(FSVolumeRefNum vRefNum, CFURLRef* url);

// For implementations: of a file system that Linux names so ("ext4").
std::uint16_t fileSystemIdentifier(std::string_view fileSystem, bool isLocal);

} // namespace mac
