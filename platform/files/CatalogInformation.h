#pragma once

#include "platform/files/FSPaths.h"
#include "platform/files/FinderInformation.h"
#include "platform/foundation/UTCDateTime.h"

namespace mac {

// What the catalog of a volume says of an item. Any thread.

using FSCatalogInfoBitmap = std::uint32_t;
using FSVolumeRefNum = std::int16_t;

inline constexpr FSCatalogInfoBitmap kFSCatInfoNone = 0;
inline constexpr FSCatalogInfoBitmap kFSCatInfoTextEncoding = 0x00000001;
inline constexpr FSCatalogInfoBitmap kFSCatInfoNodeFlags = 0x00000002;
inline constexpr FSCatalogInfoBitmap kFSCatInfoVolume = 0x00000004;
inline constexpr FSCatalogInfoBitmap kFSCatInfoParentDirID = 0x00000008;
inline constexpr FSCatalogInfoBitmap kFSCatInfoNodeID = 0x00000010;
inline constexpr FSCatalogInfoBitmap kFSCatInfoCreateDate = 0x00000020;
inline constexpr FSCatalogInfoBitmap kFSCatInfoContentMod = 0x00000040;
inline constexpr FSCatalogInfoBitmap kFSCatInfoAttrMod = 0x00000080;
inline constexpr FSCatalogInfoBitmap kFSCatInfoAccessDate = 0x00000100;
inline constexpr FSCatalogInfoBitmap kFSCatInfoBackupDate = 0x00000200;
inline constexpr FSCatalogInfoBitmap kFSCatInfoPermissions = 0x00000400;
inline constexpr FSCatalogInfoBitmap kFSCatInfoFinderInfo = 0x00000800;
inline constexpr FSCatalogInfoBitmap kFSCatInfoFinderXInfo = 0x00001000;
inline constexpr FSCatalogInfoBitmap kFSCatInfoValence = 0x00002000;
inline constexpr FSCatalogInfoBitmap kFSCatInfoDataSizes = 0x00004000;
inline constexpr FSCatalogInfoBitmap kFSCatInfoRsrcSizes = 0x00008000;
inline constexpr FSCatalogInfoBitmap kFSCatInfoSharingFlags = 0x00010000;
inline constexpr FSCatalogInfoBitmap kFSCatInfoUserPrivs = 0x00020000;
inline constexpr FSCatalogInfoBitmap kFSCatInfoUserAccess = 0x00080000;
inline constexpr FSCatalogInfoBitmap kFSCatInfoAllDates = 0x000003E0;
inline constexpr FSCatalogInfoBitmap kFSCatInfoGettableInfo = 0x0003FFFF;
inline constexpr FSCatalogInfoBitmap kFSCatInfoSettableInfo = 0x00001FE3;
// What an icon is looked up by.
inline constexpr FSCatalogInfoBitmap kIconServicesCatalogInfoMask = 0x00081C5E;

// Bits of the node flags. Locked: nobody may change or delete the item until it is unlocked.
inline constexpr std::uint16_t kFSNodeLockedMask = 0x0001;
inline constexpr std::uint16_t kFSNodeIsDirectoryMask = 0x0010;

// A bit that means nothing, or a field that cannot be set.
inline constexpr OSErr errFSBadInfoBitmap = -1405;
inline constexpr OSErr errFSMissingCatInfo = -1406;
// The user may not.
inline constexpr OSErr permErr = -54;
inline constexpr OSErr wPrErr = -44;

struct FSPermissionInfo {
    std::uint32_t userID{0};
    std::uint32_t groupID{0};
    std::uint8_t reserved1{0};
    // What the user that the program runs for may do: 4 read, 2 write, 1 execute or enter.
    std::uint8_t userAccess{0};
    // Kind and permissions as the system counts them.
    std::uint16_t mode{0};
    std::uint32_t reserved2{0};

    constexpr bool operator==(FSPermissionInfo const&) const = default;
};

// Only the fields that are asked for have a meaning.
struct FSCatalogInfo {
    std::uint16_t nodeFlags{0};
    FSVolumeRefNum volume{0};
    // Linux: the lower 32 bits of the numbers, which need not be enough to tell items apart.
    std::uint32_t parentDirID{0};
    std::uint32_t nodeID{0};
    std::uint8_t sharingFlags{0};
    std::uint8_t userPrivileges{0};
    UTCDateTime createDate{};
    UTCDateTime contentModDate{};
    UTCDateTime attributeModDate{};
    UTCDateTime accessDate{};
    UTCDateTime backupDate{};
    FSPermissionInfo permissions{};
    // Linux: in the order in which Mac OS X stores them, whatever the processor's; finderInformationOf and
    // setFinderInformation take them out and put them in.
    std::array<std::byte, 16> finderInfo{};
    std::array<std::byte, 16> extFinderInfo{};
    std::uint64_t dataLogicalSize{0};
    std::uint64_t dataPhysicalSize{0};
    std::uint64_t rsrcLogicalSize{0};
    std::uint64_t rsrcPhysicalSize{0};
    std::uint32_t valence{0};
    TextEncoding textEncodingHint{0};
};

FinderInformation finderInformationOf(FSCatalogInfo const& catalogInfo);
void setFinderInformation(FSCatalogInfo& catalogInfo, FinderInformation const& information);

// A file's old kind of name, which nobody asks for any more.
struct FSSpec;

// Everything but the reference may be null, and the information with an empty mask. Nothing is written when it fails.
// The name is as HFS holds it, empty for the root and for one that no HFSUniStr255 holds; the root's parent is all
// zero. paramErr for a null pointer that must not be one and for an FSSpec, errFSBadInfoBitmap for unknown bits.
//
// Linux: the creation date is the one that was set, else the file system's, else the date of the last change. Nobody is
// known to have made a backup. A locked file is an immutable one.
OSErr FSGetCatalogInfo(FSRef const* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* catalogInfo,
                       HFSUniStr255* outName, FSSpec* fsSpec, FSRef* parentRef);
// Of kFSCatInfoSettableInfo alone. What was set before a failure stays.
//
// Linux: no file system lets a creation date be set, so it is kept in the attribute
// "com.apple.FSCatalogInfo.createDate"; the date when attributes changed and the text encoding are taken and not kept.
OSErr FSSetCatalogInfo(FSRef const* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo);

} // namespace mac
