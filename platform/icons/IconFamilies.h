#pragma once

#include "platform/files/Handles.h"
#include "platform/icons/IconRefs.h"

namespace mac {

// The data of icons in blocks of memory, as a family (all pieces in one block, the contents of a file of type 'icns')
// or a suite (a block for each piece). Blocks are the caller's to dispose of. Null where something is asked for is
// paramErr; nothing is written then, or when something else fails. Any thread, but one thread at a time for each.

using IconFamilyHandle = MemoryHandle;
struct OpaqueIconSuite;
using IconSuiteRef = OpaqueIconSuite*;

// Which pieces: those of a size and depth. Pieces that no bit stands for belong to all available data.
using IconSelectorValue = std::uint32_t;
inline constexpr IconSelectorValue kSelectorLarge1Bit = 0x00000001;
inline constexpr IconSelectorValue kSelectorLarge4Bit = 0x00000002;
inline constexpr IconSelectorValue kSelectorLarge8Bit = 0x00000004;
inline constexpr IconSelectorValue kSelectorLarge32Bit = 0x00000008;
inline constexpr IconSelectorValue kSelectorLarge8BitMask = 0x00000010;
inline constexpr IconSelectorValue kSelectorSmall1Bit = 0x00000100;
inline constexpr IconSelectorValue kSelectorSmall4Bit = 0x00000200;
inline constexpr IconSelectorValue kSelectorSmall8Bit = 0x00000400;
inline constexpr IconSelectorValue kSelectorSmall32Bit = 0x00000800;
inline constexpr IconSelectorValue kSelectorSmall8BitMask = 0x00001000;
inline constexpr IconSelectorValue kSelectorMini1Bit = 0x00010000;
inline constexpr IconSelectorValue kSelectorMini4Bit = 0x00020000;
inline constexpr IconSelectorValue kSelectorMini8Bit = 0x00040000;
inline constexpr IconSelectorValue kSelectorHuge1Bit = 0x01000000;
inline constexpr IconSelectorValue kSelectorHuge4Bit = 0x02000000;
inline constexpr IconSelectorValue kSelectorHuge8Bit = 0x04000000;
inline constexpr IconSelectorValue kSelectorHuge32Bit = 0x08000000;
inline constexpr IconSelectorValue kSelectorHuge8BitMask = 0x10000000;
inline constexpr IconSelectorValue kSelectorAllAvailableData = 0xFFFFFFFF;

// The data is not that of an icon family.
inline constexpr OSErr invalidIconFamilyErr = -2583;

// The selected pieces of the icon. noIconDataAvailableErr for an icon without data, such as one of the icon theme.
OSErr IconRefToIconFamily(IconRef iconRef, IconSelectorValue whichIcons, IconFamilyHandle* iconFamily);
// Converts both ways with copies of the selected pieces. A piece without bytes is kept.
OSErr IconFamilyToIconSuite(IconFamilyHandle iconFamily, IconSelectorValue whichIcons, IconSuiteRef* iconSuite);
OSErr IconSuiteToIconFamily(IconSuiteRef iconSuite, IconSelectorValue whichIcons, IconFamilyHandle* iconFamily);

// An icon with the data of a family, which is copied. The caller owns it.
OSErr GetIconRefFromIconFamilyPtr(void const* iconFamily, std::size_t size, IconRef* iconRef);

// A suite without pieces.
OSErr NewIconSuite(IconSuiteRef* iconSuite);
// The suite takes the block, in place of one of the type, which is left to its owner.
OSErr AddIconToSuite(MemoryHandle iconData, IconSuiteRef iconSuite, OSType type);
// Stores the block of the piece of the type, which stays the suite's; null if it has none of the type.
OSErr GetIconFromSuite(MemoryHandle* iconData, IconSuiteRef iconSuite, OSType type);
// Frees the suite, with YES also the blocks of its pieces.
OSErr DisposeIconSuite(IconSuiteRef iconSuite, BOOL disposeData);

// Called with each selected piece and the context, in the suite's order. Another answer than noErr ends the visit and
// is answered. The block that the action leaves in the variable becomes the piece's. Pieces that it adds to the suite
// are visited, too; it may not dispose of the suite.
using IconActionUPP = OSErr (*)(OSType type, MemoryHandle* icon, void* context);
OSErr ForEachIconDo(IconSuiteRef iconSuite, IconSelectorValue whichIcons, IconActionUPP action, void* context);

} // namespace mac
