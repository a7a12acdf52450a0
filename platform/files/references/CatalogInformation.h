#pragma once

#include "platform/files/FinderInformation.h"
#include "platform/files/references/FSRef.h"
#include "platform/foundation/dates/UTCDateTime.h"

namespace mac {

struct OpenItem;

// An item's metadata, as the catalog of a volume holds it. Any thread.

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
// The fields that an icon is looked up by.
inline constexpr FSCatalogInfoBitmap kIconServicesCatalogInfoMask = 0x00081C5E;

// Bits of the node flags. Locked: the item cannot be changed or deleted until it is unlocked.
inline constexpr std::uint16_t kFSNodeLockedMask = 0x0001;
inline constexpr std::uint16_t kFSNodeIsDirectoryMask = 0x0010;

// The mask has an undefined bit, or asks to set a field that cannot be set.
inline constexpr OSErr errFSBadInfoBitmap = -1405;
inline constexpr OSErr errFSMissingCatInfo = -1406;
// The user has no permission.
inline constexpr OSErr permErr = -54;
// The volume cannot be written to.
inline constexpr OSErr wPrErr = -44;

struct FSPermissionInfo {
    std::uint32_t userID{0};
    std::uint32_t groupID{0};
    std::uint8_t reserved1{0};
    // The access of the program's user: 4 read, 2 write, 1 execute or search.
    std::uint8_t userAccess{0};
    // Kind and permissions, as in the system's st_mode.
    std::uint16_t mode{0};
    std::uint32_t reserved2{0};

    constexpr bool operator==(FSPermissionInfo const&) const = default;
};

// Only the fields that were asked for are set.
struct FSCatalogInfo {
    std::uint16_t nodeFlags{0};
    FSVolumeRefNum volume{0};
    // Linux: the lower 32 bits of the inode numbers, which may not tell items apart.
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
    // Linux: in the byte order in which Mac OS X stores them, whatever the processor's; finderInformationOf and
    // setFinderInformation convert.
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

// The obsolete form of a file's name; always null here.
struct FSSpec;

// Reads the fields of the item's information that the mask names, its name, and a reference to the folder that holds
// it. Each of the three may be null, the information if the mask is empty; fsSpec has to be null. Nothing is written on
// failure. The name is in the form of HFS, empty for the root and if no HFSUniStr255 can hold it; the root's parent is
// all zero. paramErr for a null pointer where none is allowed and for an FSSpec, errFSBadInfoBitmap for undefined bits,
// errFSBadFSRef if the item is not found.
//
// Linux: the creation date is the one that was set, else the file system's, else the date of the last change. The
// backup date is 0. An item is locked if it has the immutable flag, or the attribute that stands in for it
// where the user may not set the flag.
OSErr FSGetCatalogInfo(FSRef const* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* catalogInfo,
                       HFSUniStr255* outName, FSSpec* fsSpec, FSRef* parentRef);
// Sets the fields of kFSCatInfoSettableInfo that the mask names. Fields that were set before a failure stay set.
// paramErr for a null pointer, errFSBadInfoBitmap for other bits, errFSBadFSRef if the item is not found.
//
// Linux: no file system can set a creation date, so it is kept in the attribute "com.apple.FSCatalogInfo.createDate";
// the date of the last attribute change and the text encoding are accepted and ignored.
OSErr FSSetCatalogInfo(FSRef const* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo);

// What FSGetCatalogInfo and FSSetCatalogInfo do, for an item that is open already: no reference is made, so nothing
// stays open afterwards. The name may be null.
OSErr getCatalogInfo(OpenItem const& item, FSCatalogInfoBitmap whichInfo, FSCatalogInfo& catalogInfo,
                     HFSUniStr255* outName = nullptr);
OSErr setCatalogInfo(OpenItem const& item, FSCatalogInfoBitmap whichInfo, FSCatalogInfo const& catalogInfo);

} // namespace mac
