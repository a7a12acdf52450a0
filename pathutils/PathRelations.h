#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/urls/NSURL.h"

namespace mac {

// How paths lie to one another, and what a bundle at one says. "Standardized" is stringByStandardizingPath: without ~,
// "." and ".." and a slash at the end. Nothing is raised; an information file that cannot be used is logged. A nil
// receiver answers nil and NO.

// Whether both are the same once standardized, in any case of letters. The other may be nil or the null object: NO.
bool pxIsEqualToPath_(NSString receiver, id path);
// Whether the path lies in the other one, at whatever depth, once both are standardized and in any case of letters;
// never in itself. The other may be nil or the null object: NO.
bool pxIsChildOf_(NSString receiver, id path);
// Whether the path lies in the other one, at whatever depth. Both must be standardized already; letters are compared
// exactly.
bool pxFastIsChildOf_(NSString receiver, NSString path);

// Whether one of so many items is a package: the item itself, a link not followed, and the folders above it, nearest
// first and without the root. NO for a path of one component, and from the first item on that is not there.
bool pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(NSString receiver, NSUInteger levels);
// Whether the item lies in a package: one of so many of the folders above it is one, nearest first and without the
// root. NO from the first folder on that is not there.
bool pxIsPathPartOfPackageCheckingMaxLevels_(NSString receiver, NSUInteger levels);

// The item's name as the file manager shows it: in the user's language, without an extension that is hidden.
NSString pxDisplayNameOfPath(NSString receiver);
// The folder of the standardized path; nil for the root and for a single name.
NSString pxParentPathOfPath(NSString receiver);

// The information dictionary of the bundle at the path; an empty one for a folder without an information file, nil if
// no folder is there. What was read may be kept until the file changes. Main thread.
NSDictionary pxInfoDictionaryForPath(NSString receiver);
// The information dictionary of the bundle at the path, read anew: from Contents/Info.plist of a package and
// Resources/Info.plist of a framework; nil for anything else, and if the file is missing or holds no dictionary.
NSDictionary pxInfoDictionaryForPathUncached(NSString receiver);

// The names in the folder, in the file manager's order, without those of invisible items and of items that went
// meanwhile; nil for what is no folder that can be read. The argument is taken and has no effect.
NSArray pxVisibleDirectoryContentsAtPath_(NSString receiver, BOOL flag);

// The file name extension that is declared for a type identifier, which is the receiver; the first of several. nil if
// the type is not declared, has none or an empty one.
NSString pxFilenameExtensionOfUTI(NSString receiver);
// The file name extension of a type identifier, which is the receiver, as on a system without declarations of types:
// for TIFF, JPEG and PNG images alone, else nil.
NSString pxFilenameExtensionOfUTIPanther(NSString receiver);

// Whether the file is an image that can be read here, as for its URL (scripting/URLUtilities.h).
bool pxIsImageFile(NSString receiver);
// Whether the file is sound, as for its URL (scripting/URLUtilities.h).
bool pxIsAudioFile(NSString receiver);

// Whether the user that the program runs for may write to the file.
bool pxIsWritableFileAtPath(NSString receiver);
// Whether the user that the program runs for may remove the file, which is to write to its folder.
bool pxIsDeletableFileAtPath(NSString receiver);

// The file URL, with a slash at the end for a folder that is there; nil for the empty path.
NSURL pxURLOfPath(NSString receiver);
// The file URL, with a slash at the end if YES and without if NO, whatever is there; nil for the empty path.
NSURL pxURLOfPath_(NSString receiver, BOOL isDirectory);

} // namespace mac
