#pragma once

#include "platform/files/references/CatalogInformation.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/icons/IconRefs.h"

namespace mac {

// What the Finder and Launch Services know of the item at a path, and references to it. Out-arguments are written on
// success alone, but where said. Nothing is raised or logged. Main thread. A nil receiver answers NO and what is said
// for an unknown volume; so does a relative path, but for the flags of Launch Services.

// A reference to the item. With YES a link at the end is followed, and the folder answer is that of the path's URL;
// with NO the link itself is meant, and the answer is its type's. The last out-argument may be null. On failure the
// reference is all zero and, with NO, the answer NO.
bool KRPathGetFSRef_getIsDirectory_traverseLink_(NSString receiver, FSRef* ref, bool* isDirectory, BOOL traverseLink);
// A reference to the item; a final symbolic link is followed with YES and not with NO. On failure the answer is NO
// and the reference all zero.
bool KRPathGetFSRef_traverseLink_(NSString receiver, FSRef* ref, BOOL traverseLink);
// The folder that the item, links followed, lies in, and the item's name there; the item has to be there.
bool KRPathGetParentFSRef_name_(NSString receiver, FSRef* parentRef, HFSUniStr255* name);

// The number of the volume that holds the item, a link not followed; 0x3F3F where that is unknown.
FSVolumeRefNum pxVolumeRefNumOfPath(NSString receiver);
// The identifier of the volume's kind of file system (FSVolumeInfo); 0xFFFF where it cannot be read.
std::uint16_t pxFilesystemIDForPath(NSString receiver);
// Whether files on the volume can have icons of their own: on HFS, FAT, network and Linux's own volumes.
bool KRPathSupportsCustomIcons(NSString receiver);
// Whether dates on the volume are less exact than here: on all but HFS, network and Linux's own volumes, and where the
// volume is unknown.
bool KRPathHasInexactTime(NSString receiver);
// Whether the volume is a FAT one.
bool pxPathIsOnDOSVolume(NSString receiver);
// Whether the volume's URL has the host of the iDisk service (KRCIDiskHost).
bool pxPathIsOnIDisk(NSString receiver);

// How many items lie in the folder; 0 for a file.
bool pxValenceOfPath_(NSString receiver, std::uint32_t* valence);

// The Finder's flags of the item, a link not followed.
bool pxFinderFlagsOfPath_(NSString receiver, std::uint16_t* flags);
// Sets the bits of the mask to those of the flags. The bit 0x0100, on the desk, is cleared whatever is asked for.
bool pxSetFinderFlagsOfPath_mask_(NSString receiver, std::uint16_t flags, std::uint16_t mask);
// The Finder's flags of the item, whether it is a folder, its own icon and the number of its label; each pointer may be
// null. The icon is the caller's to release; null where the item has none of its own and no label was asked for.
bool pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(NSString receiver, std::uint16_t* flags, bool* isFolder,
                                                            IconRef* customIconRef, std::int16_t* labelIndex);
// The Finder's flags of the item, whether it is a folder, the pieces of its own icon by their types, and the number of
// its label; each pointer may be null. nil for an icon without data, and on failure.
bool pxFinderFlagsOfPath_isFolder_customIconData_labelIndex_(NSString receiver, std::uint16_t* flags, bool* isFolder,
                                                             NSDictionary* customIconData, std::int16_t* labelIndex);

// The basic flags of Launch Services (ItemInformation.h).
bool pxLSFlagsOfPath_(NSString receiver, std::uint32_t* flags);
// The basic flags of Launch Services, and the item's name as people see it, whose pointer may be null. The flags are
// written even where the name cannot be had.
bool pxLSFlagsOfPath_displayName_(NSString receiver, std::uint32_t* flags, NSString* displayName);
// The basic flags of Launch Services and the name as people see it, by a URL that is a folder's if YES and a file's if
// NO, whatever is there.
bool pxLSFlagsOfPath_displayName_isDirectory_(NSString receiver, std::uint32_t* flags, NSString* displayName,
                                              BOOL isDirectory);

// Asks the Finder to show the item as it is now; whether that could be sent.
bool pxUpdatePathInFinder(NSString receiver);
// Asks the Finder to show the referenced item as it is now; whether that could be sent. NO for null.
bool pxUpdatePathInFinder_(FSRef const* ref);

} // namespace mac
