#pragma once

#include "platform/files/FSRef.h"
#include "platform/files/HFSUniStr255.h"
#include "platform/foundation/MacErrors.h"

namespace mac {

// References by paths and names. Any thread. They answer noErr, or why not: paramErr for a null pointer that must not
// be null; otherwise as said. A reference that cannot be made is all zero.

// There is no such volume, or not any more.
inline constexpr OSErr nsvErr = -35;
// The disk, or what leads to it, has failed.
inline constexpr OSErr ioErr = -36;
// A name that no file can have.
inline constexpr OSErr bdNamErr = -37;
// The process has no room for another open file.
inline constexpr OSErr tmfoErr = -42;
// There is no item of that path or name.
inline constexpr OSErr fnfErr = -43;
// Something on the way may not be looked into.
inline constexpr OSErr afpAccessDenied = -5000;
// The folder's item is not there any more, or the reference is none.
inline constexpr OSErr errFSBadFSRef = -1401;
inline constexpr OSErr errFSNotAFolder = -1407;
inline constexpr OSErr errFSNameTooLong = -1410;
// Two references, each to another item.
inline constexpr OSErr errFSRefsDifferent = -1420;
// The path has no room in the buffer.
inline constexpr OSErr pathTooLongErr = -2110;

using OptionBits = std::uint32_t;
using TextEncoding = std::uint32_t;

inline constexpr OptionBits kFSPathMakeRefDefaultOptions = 0;
inline constexpr OptionBits kFSPathMakeRefDoNotFollowLeafSymlink = 1;

// To the item at the path, bytes that end with a NUL; isDirectory may be null.
OSStatus FSPathMakeRef(std::uint8_t const* path, FSRef* ref, bool* isDirectory);
// With DoNotFollowLeafSymlink a link at the end is meant itself.
OSStatus FSPathMakeRefWithOptions(std::uint8_t const* path, OptionBits options, FSRef* ref, bool* isDirectory);
// Where the item is now, as bytes with a NUL at the end.
OSStatus FSRefMakePath(FSRef const* ref, std::uint8_t* path, std::uint32_t pathBufferSize);

// To what has the name, of so many characters and as HFS holds it, in the folder; a link is meant itself. The encoding
// hint is not needed.
OSErr FSMakeFSRefUnicode(FSRef const* parentRef, std::uint32_t nameLength, unichar const* name,
                         TextEncoding textEncodingHint, FSRef* newRef);
// noErr: both refer to one item.
OSErr FSCompareFSRefs(FSRef const* ref1, FSRef const* ref2);

} // namespace mac
