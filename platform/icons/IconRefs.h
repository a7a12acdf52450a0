#pragma once

#include "platform/files/references/CatalogInformation.h"
#include "platform/icons/Picture.h"

namespace mac {

// Icons of items, counted: who was given one owns it and releases it. Any thread.

struct OpaqueIconRef;
// A null reference stands for no icon.
using IconRef = OpaqueIconRef*;
using IconServicesUsageFlags = std::uint32_t;

inline constexpr IconServicesUsageFlags kIconServicesNormalUsageFlag = 0x00000000;
inline constexpr IconServicesUsageFlags kIconServicesNoBadgeFlag = 0x00000001;

inline constexpr OSErr invalidIconRefErr = -2580;
// No icon was found.
inline constexpr OSErr noSuchIconErr = -2581;
// The icon has pictures, but no data.
inline constexpr OSErr noIconDataAvailableErr = -2582;

// The number that stands for the system's volume where one is asked for.
inline constexpr std::int16_t kOnSystemDisk = -32768;
// The creator of the system's own icons, such as 'fldr' and 'trsh'.
inline constexpr OSType kSystemIconsCreator{"macs"};

// The icon of files with this creator and type; the caller owns it. It is the one that the application of the creator
// (see LSFindApplicationForInfo) names for the type among its document types, for 'APPL' its own; else, and for the
// system's creator, the one that the icon theme has for what the tree of types says of the type code. noSuchIconErr for
// an unknown type, paramErr for null; nothing is written then. Whichever volume is given, all are looked at.
OSErr GetIconRef(std::int16_t volume, OSType creator, OSType type, IconRef* iconRef);

// The icon of the item and its label, 0 (none) to 7. Its own where the Finder flags in the information say that it has
// one, and it can be read: of a file the resource 'icns' -16455 in its resource fork, of a folder the one of the file
// "Icon\r" in it. Otherwise that of its bundle, or the one of its type, which has no data. The places may be null. Mask
// and information are those of FSGetCatalogInfo, and have to hold what kIconServicesCatalogInfoMask asks for, else
// paramErr. Nothing is written when it fails.
OSErr GetIconRefFromFileInfo(FSRef const* ref, std::uint32_t fileNameLength, unichar const* fileName,
                             FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo,
                             IconServicesUsageFlags usageFlags, IconRef* iconRef, std::int16_t* label);
// The icon of an item that is open already, by the same rules. The caller owns it.
IconRef iconOfItem(OpenItem const& item, FSCatalogInfo const& catalogInfo);

// AcquireIconRef increments the reference count; ReleaseIconRef decrements it and frees the icon at 0; GetIconRefOwners
// stores it. invalidIconRefErr for a null icon, paramErr for another null pointer.
OSErr AcquireIconRef(IconRef iconRef);
OSErr ReleaseIconRef(IconRef iconRef);
OSErr GetIconRefOwners(IconRef iconRef, std::uint16_t* owners);

// For implementations: the icon's pictures in the sides of icons (IconTheme.h), read when they are first asked for.
// Empty for null alone.
std::vector<SharedPicture> picturesOfIcon(IconRef iconRef);

} // namespace mac
