#pragma once

#include "platform/files/references/FSRef.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/objects/ServiceTypes.h"

namespace mac {

// What Launch Services tells of an item by name. Any thread.

using LSRolesMask = std::uint32_t;
inline constexpr LSRolesMask kLSRolesNone = 0x00000001;
inline constexpr LSRolesMask kLSRolesViewer = 0x00000002;
inline constexpr LSRolesMask kLSRolesEditor = 0x00000004;
inline constexpr LSRolesMask kLSRolesShell = 0x00000008;
inline constexpr LSRolesMask kLSRolesAll = 0xFFFFFFFF;

// Strings; a file's type identifier, its extension, its name and kind as people see them, the four characters of its
// old type and creator.
inline constexpr char kLSItemContentType[] = "LSItemContentType";
inline constexpr char kLSItemExtension[] = "LSItemExtension";
inline constexpr char kLSItemDisplayName[] = "LSItemDisplayName";
inline constexpr char kLSItemDisplayKind[] = "LSItemDisplayKind";
inline constexpr char kLSItemFileType[] = "LSItemFileType";
inline constexpr char kLSItemFileCreator[] = "LSItemFileCreator";
// Truth values.
inline constexpr char kLSItemIsInvisible[] = "LSItemIsInvisible";
inline constexpr char kLSItemExtensionIsHidden[] = "LSItemExtensionIsHidden";

// Stores the values under the names that were asked for; names that are not known or that the item has no value for are
// left out. Nil names ask for all. paramErr for a null pointer, fnfErr if there is no item; the values are untouched
// then. The roles are ignored.
OSStatus LSCopyItemAttributes(FSRef const* itemRef, LSRolesMask inRoles, NSArray const& attributeNames,
                              NSDictionary* outValues);

} // namespace mac
