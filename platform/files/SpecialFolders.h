#pragma once

#include "platform/files/references/CatalogInformation.h"

namespace mac {

// Folders that the system keeps for a purpose. Any thread.

// The folders of the user that the program runs for, in place of a volume's number.
inline constexpr FSVolumeRefNum kUserDomain = -32763;

// Types of folders.
inline constexpr OSType kTrashFolderType = FourCharCode("trsh");
inline constexpr OSType kTemporaryFolderType = FourCharCode("temp");
inline constexpr OSType kLogsFolderType = FourCharCode("logs");

// The reference of the user's folder of a type on the volume, or in the user domain for kUserDomain. If there is none
// it is created if asked for. fnfErr if there is none, or if the type is another one than above; nsvErr if no volume
// has that number; paramErr for a null pointer. The reference is all zero on failure.
//
// Linux: the trash is the folder "files" of the trash that items of the volume go to; the user domain's is the home
// folder's. Logs lie in "framekeeper/Logs" of the user's state folder ($XDG_STATE_HOME), which is made with the folders
// above it for the user alone; a volume has none. Temporary items lie in ".TemporaryItems-USER" at the top of a volume,
// a folder that only the user may enter (else permErr), and the user domain's in "TemporaryItems" among the user's
// cached files.
OSErr FSFindFolder(FSVolumeRefNum vRefNum, OSType folderType, BOOL createFolder, FSRef* foundRef);

} // namespace mac
