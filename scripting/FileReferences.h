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

// The text with each colon replaced by a slash and each slash by a colon.
NSString KRCStringBySwappingColonsAndSlashes(NSString receiver);
// Replaces each colon in the name by a slash and each slash by a colon, in place. Null does nothing.
void KRCHFSUniStr255SwapColonsAndSlashes_(HFSUniStr255* name);
// Stores the text in the name, its characters as they are. A text of more than 255 code units stores the empty name; it
// is never cut. The pointer may be null.
void KRCStringGetHFSUniStr255_(NSString receiver, HFSUniStr255* name);
// Stores a name that a path shows in the form of HFS, colons and slashes exchanged. A text of more than 255 code units
// stores the empty name. The pointer may be null.
void KRCPathNameGetHFSUniStr255_(NSString receiver, HFSUniStr255* name);
// A text of the name's characters, as they are; nil for null.
NSString KRCStringWithHFSUniStr255_(HFSUniStr255 const* name);
// A text that reads the name's characters where they lie; the name has to stay as long as the text. Nil for null.
NSString KRCStringWithHFSUniStr255NoCopy_(HFSUniStr255* name);

// The NSFileType of the item; a final symbolic link is not followed. nil if there is no item. The path may be relative.
NSString KRCPathGetFileType(NSString receiver);
// Whether that type is that of a link; NO for nil.
bool KRCPathIsSymbolicLink(NSString receiver);
// Whether there is an item at the path; symbolic links are followed.
bool KRCPathExists(NSString receiver);
// Whether there is an item at the path, and in isDirectory whether it is a folder; symbolic links are followed. The
// flag stays as it is for a path that is not absolute. The pointer may be null.
bool KRCPathExistsIsDirectory_(NSString receiver, bool* isDirectory);
// Whether there is an item at the path. With NO a final symbolic link is not followed: one that leads nowhere exists.
bool KRCPathExistsTraverseLink_(NSString receiver, BOOL traverseLink);
// Whether there is an item at the path, and in isDirectory whether it is a folder. With NO a final symbolic link is not
// followed, so a link to a folder counts as no folder. The flag is NO for a missing item; its pointer may be null.
bool KRCPathExistsIsDirectory_traverseLink_(NSString receiver, bool* isDirectory, BOOL traverseLink);
// The path as the file system holds it; nil for one that can name no file.
// Linux: names are stored as they are written, so that is the same path.
NSString KRCPathGetFileSystemPath(NSString receiver);

// The path of where the referenced item is now; nil for null and if the item is not found.
NSString KRCPathWithFSRef_(FSRef const* ref);
// Makes a reference; links are followed. NO, and all 80 bytes zero, if there is no item, as at any relative path.
bool KRCPathGetFSRef_(NSString receiver, FSRef* ref);
// Makes a reference by the file URL that ends with a slash if isDirectory is YES and without if it is NO, whatever is
// at the path. NO, and all 80 bytes zero, if there is no item.
bool KRCPathGetFSRef_isDirectory_(NSString receiver, FSRef* ref, BOOL isDirectory);
// Makes a reference and answers in isDirectory, which may be null, whether the path's URL is that of a folder. NO, and
// all 80 bytes zero, if there is no item. The flag stays as it is for a path that is not absolute.
bool KRCPathGetFSRef_getIsDirectory_(NSString receiver, FSRef* ref, bool* isDirectory);

// The display names, as the Finder shows them, of all folders above and of the item, the root first.
NSMutableArray KRCPathDisplayNames(NSString receiver);
// The path without its first components, as many as the base path has, whichever these are. Raises NSRangeException if
// it has fewer.
NSString KRCPathSubPathRelativeToBasePath_(NSString receiver, NSString basePath);

// Makes a reference, or with a null pointer only tells whether there is an item. NO, and all 80 bytes zero, if there is
// none.
bool KRCURLGetFSRef_(NSURL receiver, FSRef* ref);
// The file URL of where the referenced item is now; nil for null and if the item is not found.
NSURL KRCURLWithFSRef_(FSRef const* ref);
// The item's URL relative to the receiver, a folder's URL: of the item's path without as many components as the
// receiver's path has, whichever these are; raises NSRangeException where it has fewer. Nil for null, for a nil
// receiver and where the item is not found.
NSURL KRCURLRelativeURLWithFSRef_(NSURL receiver, FSRef const* ref);
// Whether its host is that of the iDisk service, compared exactly; NO without a host.
bool KRCURLIsOnIDisk(NSURL receiver);

} // namespace mac
