#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include "platform/foundation/urls/CFURL.h"
#include <array>

namespace mac {

// References to files, folders and symbolic links, and how they are made of URLs, paths and names. The functions that
// answer a status answer noErr, paramErr for a null pointer where none is allowed, or a status below. Any thread.

// A reference to an item on a mounted volume, which follows the item wherever it is moved on that volume while the
// program runs. The bytes are opaque; two references to one item are equal, and all zero refers to no item.
//
// Linux: the item is known by its volume, its inode number and its birth time. The last 256 items referred to are held
// open, so they are found after any rename or move; an earlier one is looked for by its inode number in the folder
// where it was when it was let go, and otherwise is not found. The item that is found is never another one; so on a
// file system that has no birth times, numbers its items anew and offers no file handles, an earlier item that has
// changed since is not found. A volume with held items cannot be unmounted, and the bytes mean nothing in other
// programs.
struct FSRef {
    std::array<std::uint8_t, 80> hidden;

    bool operator==(FSRef const&) const = default;
};
static_assert(sizeof(FSRef) == 80);

// A file name of at most 255 UTF-16 code units, without a terminator, in the form of HFS: a slash stands for the colon
// that paths show, and a colon for no character that paths could show.
struct HFSUniStr255 {
    std::uint16_t length;
    std::array<unichar, 255> unicode;
};
static_assert(sizeof(HFSUniStr255) == 512);

// Turns a slash of a name or path in the form of HFS into the colon of a path on the disk, and a colon into a slash.
constexpr unichar slashAndColonExchanged(unichar unit) {
    if (unit == u'/') return u':';
    return unit == u':' ? u'/' : unit;
}

// The volume does not exist, or is no longer mounted.
inline constexpr OSErr nsvErr = -35;
// The disk, or the connection to it, has failed.
inline constexpr OSErr ioErr = -36;
// No file can have that name.
inline constexpr OSErr bdNamErr = -37;
// The process can open no more files.
inline constexpr OSErr tmfoErr = -42;
// No item has that path or name.
inline constexpr OSErr fnfErr = -43;
// The user may not search a folder of the path.
inline constexpr OSErr afpAccessDenied = -5000;
// The bytes are no reference, or the folder's item is no longer there.
inline constexpr OSErr errFSBadFSRef = -1401;
inline constexpr OSErr errFSNotAFolder = -1407;
inline constexpr OSErr errFSNameTooLong = -1410;
// The two references refer to different items.
inline constexpr OSErr errFSRefsDifferent = -1420;
// The path does not fit in the buffer.
inline constexpr OSErr pathTooLongErr = -2110;

using OptionBits = std::uint32_t;
using TextEncoding = std::uint32_t;

inline constexpr OptionBits kFSPathMakeRefDefaultOptions = 0;
inline constexpr OptionBits kFSPathMakeRefDoNotFollowLeafSymlink = 1;

// Makes a reference to the item at the file URL; symbolic links are followed. False if there is no item, if the URL is
// no file URL or names another computer, and for a null pointer; the reference is all zero then.
bool CFURLGetFSRef(CFURLRef const& url, FSRef* fsRef);
// The file URL of where the item is now, with a slash at the end for a folder; nil if the item is not found.
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, FSRef const* fsRef);

// Makes a reference to the item at the path, bytes that end with a NUL; symbolic links are followed. isDirectory may be
// null. A reference that cannot be made is all zero.
OSStatus FSPathMakeRef(std::uint8_t const* path, FSRef* ref, bool* isDirectory);
// Makes a reference as FSPathMakeRef does; with kFSPathMakeRefDoNotFollowLeafSymlink a symbolic link at the end of the
// path is not followed.
OSStatus FSPathMakeRefWithOptions(std::uint8_t const* path, OptionBits options, FSRef* ref, bool* isDirectory);
// Stores the path of where the item is now, as bytes with a NUL at the end; pathTooLongErr if both do not fit in the
// buffer's pathBufferSize bytes.
OSStatus FSRefMakePath(FSRef const* ref, std::uint8_t* path, std::uint32_t pathBufferSize);

// Makes a reference to the item of a name in the folder; a symbolic link is not followed. The name has nameLength code
// units, in the form of HFS. The encoding hint is ignored.
OSErr FSMakeFSRefUnicode(FSRef const* parentRef, std::uint32_t nameLength, unichar const* name,
                         TextEncoding textEncodingHint, FSRef* newRef);
// noErr if both refer to the same item, errFSRefsDifferent if not.
OSErr FSCompareFSRefs(FSRef const* ref1, FSRef const* ref2);

// The item is no file.
inline constexpr OSErr notAFileErr = -1302;
inline constexpr OSErr diffVolErr = -1303;
inline constexpr OSErr sameFileErr = -1306;
// The file system cannot do that.
inline constexpr OSErr errFSOperationNotSupported = -1426;

// Exchanges the contents, resource forks and dates of modification of two files or symbolic links on one volume. What
// leads to them, references and aliases, stays with their paths, and so do creation dates and Finder information.
// A failure changes nothing: diffVolErr, sameFileErr, notAFileErr for a folder and for a file of several names,
// errFSOperationNotSupported if the file system cannot exchange names in one step.
//
// Linux: permissions, owners and other attributes go with the contents.
OSErr FSExchangeObjects(FSRef const* ref, FSRef const* destRef);

} // namespace mac
