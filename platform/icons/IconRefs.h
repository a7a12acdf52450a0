#pragma once

#include "platform/files/CatalogInformation.h"

namespace mac {

// Icons of items, counted: who was given one owns it and releases it. Any thread.

struct OpaqueIconRef;
// Null is none.
using IconRef = OpaqueIconRef*;
using IconServicesUsageFlags = std::uint32_t;

inline constexpr IconServicesUsageFlags kIconServicesNormalUsageFlag = 0x00000000;
inline constexpr IconServicesUsageFlags kIconServicesNoBadgeFlag = 0x00000001;

inline constexpr OSErr invalidIconRefErr = -2580;

// The icon of the item and its label, 0 (none) to 7. Its own where the Finder flags in the information say that it has
// one, and it can be read: of a file the resource 'icns' -16455 in its resource fork, of a folder the one of the file
// "Icon\r" in it. Otherwise the one of its type, which has no data. The places may be null. Mask and information are
// those of FSGetCatalogInfo, and have to hold what kIconServicesCatalogInfoMask asks for, else paramErr. Nothing is
// written when it fails.
OSErr GetIconRefFromFileInfo(FSRef const* ref, std::uint32_t fileNameLength, unichar const* fileName,
                             FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo,
                             IconServicesUsageFlags usageFlags, IconRef* iconRef, std::int16_t* label);
// The icon of an item that is open already, by the same rules. The caller owns it.
IconRef iconOfItem(OpenItem const& item, FSCatalogInfo const& catalogInfo);

// One more owner, one less. invalidIconRefErr for null.
OSErr AcquireIconRef(IconRef iconRef);
OSErr ReleaseIconRef(IconRef iconRef);
OSErr GetIconRefOwners(IconRef iconRef, std::uint16_t* owners);

} // namespace mac
