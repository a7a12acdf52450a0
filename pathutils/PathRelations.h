#pragma once

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSURL.h"

namespace mac {

// How paths lie to one another, and what a bundle at one says. "Standardized" is stringByStandardizingPath: without ~,
// "." and ".." and a slash at the end. Nothing is raised; an information file that cannot be used is logged. A nil
// receiver answers nil and NO.

// Whether both are the same once standardized, in any case of letters. The other may be nil or the null object: NO.
bool pxIsEqualToPath_(NSString receiver, id path);
// Whether the path lies in the other one, at whatever depth, once both are standardized and in any case of letters;
// never in itself. The other may be nil or the null object: NO.
bool pxIsChildOf_(NSString receiver, id path);
// The same for two paths that are standardized already, and compared exactly.
bool pxFastIsChildOf_(NSString receiver, NSString path);

// Whether one of so many items is a package: the item itself, a link not followed, and the folders above it, nearest
// first and without the root. NO for a path of one component, and from the first item on that is not there.
bool pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(NSString receiver, NSUInteger levels);
// The same from the folder above on: whether the item lies in a package.
bool pxIsPathPartOfPackageCheckingMaxLevels_(NSString receiver, NSUInteger levels);

// As the file manager shows it: in the user's language, without an extension that is hidden.
NSString pxDisplayNameOfPath(NSString receiver);
// Of the standardized path; nil for the root and for a single name.
NSString pxParentPathOfPath(NSString receiver);

// Of the bundle at the path; an empty one for a folder without an information file, nil where there is no folder. What
// was read may be kept until the file changes. Main thread.
NSDictionary pxInfoDictionaryForPath(NSString receiver);
// The same, read anew, from Contents/Info.plist of a package and Resources/Info.plist of a framework; nil for anything
// else, and where the file is not there or no dictionary.
NSDictionary pxInfoDictionaryForPathUncached(NSString receiver);

// The names in the folder, in the file manager's order, without those of invisible items and of items that went
// meanwhile; nil for what is no folder that can be read. The argument is taken and has no effect.
NSArray pxVisibleDirectoryContentsAtPath_(NSString receiver, BOOL flag);

// The receiver is a type identifier. Its declared extension, the first of several; nil where it has none, where it is
// not declared and where it is empty.
NSString pxFilenameExtensionOfUTI(NSString receiver);
// The same on a system without declarations of types: of TIFF, JPEG and PNG images alone.
NSString pxFilenameExtensionOfUTIPanther(NSString receiver);

// Whether the file is an image that can be read here, as for its URL (scripting/URLUtilities.h).
bool pxIsImageFile(NSString receiver);
// Whether the file is sound, as for its URL.
bool pxIsAudioFile(NSString receiver);

// Whether the user that the program runs for may write to the file.
bool pxIsWritableFileAtPath(NSString receiver);
// Whether that user may remove it, which is to write to its folder.
bool pxIsDeletableFileAtPath(NSString receiver);

// The file URL, with a slash at the end for a folder that is there; nil for the empty path.
NSURL pxURLOfPath(NSString receiver);
// The same, with a slash at the end or without as said, whatever is there.
NSURL pxURLOfPath_(NSString receiver, BOOL isDirectory);

} // namespace mac
