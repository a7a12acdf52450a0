#pragma once

#include "platform/files/references/CatalogInformation.h"

namespace mac {

// Renaming, making and copying items by reference or path. The operations answer noErr, paramErr for a null pointer
// where none is allowed, or a status below or in FSRef.h and CatalogInformation.h. Names are in the form of HFS; their
// encoding hints are ignored. Any thread.

using UniCharCount = std::uint32_t;

// The volume has no space left.
inline constexpr OSErr dskFulErr = -34;
// The item is locked.
inline constexpr OSErr fLckdErr = -45;
// The item is in use: a volume is mounted on it, another process holds it, or a folder is not empty.
inline constexpr OSErr fBsyErr = -47;
// Another item has the name.
inline constexpr OSErr dupFNErr = -48;
// The destination lies in the item itself.
inline constexpr OSErr badMovErr = -122;

// Renames the item within its folder; its AppleDouble sidecar goes with it. newRef, which may be null, refers to the
// renamed item. dupFNErr if the name is taken.
OSErr FSRenameUnicode(FSRef const* ref, UniCharCount nameLength, unichar const* name, TextEncoding textEncodingHint,
                      FSRef* newRef);

// Makes a folder, with the fields of kFSCatInfoSettableInfo that the mask names taken from the information. newRef, if
// it is not null, refers to the new folder, and newDirID, if it is not null, gets its number. The information may be
// null if the mask is empty; newSpec has to be null. On failure there is no new folder.
OSErr FSCreateDirectoryUnicode(FSRef const* parentRef, UniCharCount nameLength, unichar const* name,
                               FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo, FSRef* newRef,
                               FSSpec* newSpec, std::uint32_t* newDirID);

// Deletes the item for good with its AppleDouble sidecar, a symbolic link itself. fBsyErr for a folder that holds
// anything, a mount point and the root; fLckdErr if the item is locked; errFSBadFSRef if the reference leads nowhere;
// fnfErr if another item has taken its place.
OSErr FSDeleteObject(FSRef const* ref);

inline constexpr OptionBits kFSFileOperationDefaultOptions = 0;
// An item that has the new name is replaced.
inline constexpr OptionBits kFSFileOperationOverwrite = 0x01;

// Copies the item at the path, a symbolic link itself, into the folder at the other path, as copyName or, if that is
// nil, under its own name. Paths are bytes with a NUL at the end. The copy appears once it is complete: it takes the
// place of an item that is replaced in one step, where the volume can do that, and the old item is deleted afterwards.
// fLckdErr, and nothing is changed, if the old item is locked or holds a locked one; dupFNErr if the item would replace
// itself, or if the name is taken and not to be replaced.
//
// Linux: targetPath, which would receive the copy's path, has to be null.
OSStatus FSPathCopyObjectSync(char const* sourcePath, char const* destPath, CFStringRef copyName, char** targetPath,
                              OptionBits options);

} // namespace mac
