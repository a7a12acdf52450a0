#pragma once

#include "platform/files/references/FSRef.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/urls/NSURL.h"

namespace mac {

// Conversions between the three ways to name a file (paths, file URLs and references) and between the two forms of its
// name. A path shows as a colon what an HFS name holds as a slash, and the other way round. A path that is asked about
// has to be absolute: a relative or empty path does not exist. Nothing is logged, and nothing raised except where said.
// Any thread. A nil receiver answers nil and NO, does nothing, and leaves a reference all zero.

// The host of URLs on the online disk.
inline constexpr char KRCIDiskHost[] = "idisk.mac.com";

// Every colon a slash and every slash a colon.
NSString KRCStringBySwappingColonsAndSlashes(NSString receiver);
// Swaps colons and slashes in place; the name is not null.
void KRCHFSUniStr255SwapColonsAndSlashes_(HFSUniStr255* name);
// The characters as they are. A name of more than 255 code units is empty, never cut. The pointer may be null.
void KRCStringGetHFSUniStr255_(NSString receiver, HFSUniStr255* name);
// The name that a path shows, as HFS holds it.
void KRCPathNameGetHFSUniStr255_(NSString receiver, HFSUniStr255* name);
// Nil for null.
NSString KRCStringWithHFSUniStr255_(HFSUniStr255 const* name);
// Reads the name where it lies, which therefore has to stay as long as the string.
NSString KRCStringWithHFSUniStr255NoCopy_(HFSUniStr255* name);

// The NSFileType of the item; a final symbolic link is not followed. nil if there is no item. The path may be relative.
NSString KRCPathGetFileType(NSString receiver);
// Whether that type is that of a link; NO for nil.
bool KRCPathIsSymbolicLink(NSString receiver);
// Links are followed.
bool KRCPathExists(NSString receiver);
// Leaves the flag as it is for a path that is not absolute. The pointer may be null.
bool KRCPathExistsIsDirectory_(NSString receiver, bool* isDirectory);
// With NO a link that leads nowhere exists.
bool KRCPathExistsTraverseLink_(NSString receiver, BOOL traverseLink);
// The flag, whose pointer may be null, is NO for a missing item and, with NO, for a link to a folder.
bool KRCPathExistsIsDirectory_traverseLink_(NSString receiver, bool* isDirectory, BOOL traverseLink);
// The path as the file system holds it; nil for one that can name no file.
// Linux: names are stored as they are written, so that is the same path.
NSString KRCPathGetFileSystemPath(NSString receiver);

// Nil for null and where the item is not found.
NSString KRCPathWithFSRef_(FSRef const* ref);
// Makes a reference; links are followed. NO, and all 80 bytes zero, if there is no item. This and the next two go by
// the path's file URL, which for a relative path starts at the current folder: such a path leads to a reference, though
// it does not exist for the operations above.
bool KRCPathGetFSRef_(NSString receiver, FSRef* ref);
// isDirectory: whether the path names a folder.
bool KRCPathGetFSRef_isDirectory_(NSString receiver, FSRef* ref, BOOL isDirectory);
// Answers in isDirectory, which may be null, whether the path's URL is that of a folder.
bool KRCPathGetFSRef_getIsDirectory_(NSString receiver, FSRef* ref, bool* isDirectory);

// The display names, as the Finder shows them, of all folders above and of the item, the root first.
NSMutableArray KRCPathDisplayNames(NSString receiver);
// Without as many components as the base has, whichever these are; raises NSRangeException where it has fewer.
NSString KRCPathSubPathRelativeToBasePath_(NSString receiver, NSString basePath);

// Makes a reference, or with a null pointer only tells whether there is an item. NO, and all 80 bytes zero, if there is
// none.
bool KRCURLGetFSRef_(NSURL receiver, FSRef* ref);
// Nil for null and where the item is not found.
NSURL KRCURLWithFSRef_(FSRef const* ref);
// The item's URL relative to the receiver, a folder's URL: of the item's path without as many components as the
// receiver's path has, whichever these are; raises NSRangeException where it has fewer. Nil for null, for a nil
// receiver and where the item is not found.
NSURL KRCURLRelativeURLWithFSRef_(NSURL receiver, FSRef const* ref);
// Whether its host is that of the iDisk service, compared exactly; NO without a host.
bool KRCURLIsOnIDisk(NSURL receiver);

} // namespace mac
