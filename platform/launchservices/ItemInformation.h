#pragma once

#include "platform/files/references/FSRef.h"
#include "platform/foundation/objects/ServiceTypes.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// What Launch Services tells of an item: what kind of thing it is to a user. A link at the end of a URL's path is meant
// itself. Any thread.

using LSRequestedInfo = std::uint32_t;
using LSItemInfoFlags = std::uint32_t;

inline constexpr LSRequestedInfo kLSRequestExtension = 0x00000001;
inline constexpr LSRequestedInfo kLSRequestTypeCreator = 0x00000002;
// All flags but those of applications and of the extension.
inline constexpr LSRequestedInfo kLSRequestBasicFlagsOnly = 0x00000004;
inline constexpr LSRequestedInfo kLSRequestAppTypeFlags = 0x00000008;
inline constexpr LSRequestedInfo kLSRequestAllFlags = 0x00000010;
inline constexpr LSRequestedInfo kLSRequestIconAndKind = 0x00000020;
inline constexpr LSRequestedInfo kLSRequestExtensionFlagsOnly = 0x00000040;
inline constexpr LSRequestedInfo kLSRequestAllInfo = 0xFFFFFFFF;

// A file: neither folder nor volume nor link.
inline constexpr LSItemInfoFlags kLSItemInfoIsPlainFile = 0x00000001;
// A folder that people see as one file.
inline constexpr LSItemInfoFlags kLSItemInfoIsPackage = 0x00000002;
inline constexpr LSItemInfoFlags kLSItemInfoIsApplication = 0x00000004;
// A folder, packages included.
inline constexpr LSItemInfoFlags kLSItemInfoIsContainer = 0x00000008;
// An alias file; symbolic links included.
inline constexpr LSItemInfoFlags kLSItemInfoIsAliasFile = 0x00000010;
inline constexpr LSItemInfoFlags kLSItemInfoIsSymlink = 0x00000020;
// The name begins with a dot, or the Finder was told so.
inline constexpr LSItemInfoFlags kLSItemInfoIsInvisible = 0x00000040;
inline constexpr LSItemInfoFlags kLSItemInfoIsNativeApp = 0x00000080;
inline constexpr LSItemInfoFlags kLSItemInfoAppIsScriptable = 0x00000800;
inline constexpr LSItemInfoFlags kLSItemInfoIsVolume = 0x00001000;
inline constexpr LSItemInfoFlags kLSItemInfoExtensionIsHidden = 0x00100000;

struct LSItemInfoRecord {
    LSItemInfoFlags flags{0};
    // The type and creator codes; of an application's bundle those of its information file.
    OSType filetype{};
    OSType creator{};
    // The extension without the dot; nil if the name has none.
    CFStringRef extension{};
    // Linux: icons have no names here, and kinds no numbers.
    CFStringRef iconFileName{};
    std::uint32_t kindID{0};
};

// Store what was asked for of the item; fields that were not asked for are empty. paramErr for a null pointer and for a
// URL that is no file URL, fnfErr if there is no item; the record is untouched then.
OSStatus LSCopyItemInfoForRef(FSRef const* itemRef, LSRequestedInfo whichInfo, LSItemInfoRecord* itemInfo);
OSStatus LSCopyItemInfoForURL(CFURLRef const& url, LSRequestedInfo whichInfo, LSItemInfoRecord* itemInfo);

} // namespace mac
