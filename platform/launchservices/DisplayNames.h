#pragma once

#include "platform/files/references/FSRef.h"
#include "platform/foundation/objects/ServiceTypes.h"

namespace mac {

struct DiskItem;

// The name of an item as people see it: of a bundle the one that its information files give it in the user's language,
// unless it was renamed since; otherwise the file's name, without its extension where the Finder was told to hide it.
// Null pointers and URLs that are no file's are paramErr, what is not there fnfErr; the name is untouched then. Any
// thread.
//
// Linux: a desktop entry that may be run, or lies in a folder of applications, has its own name in the user's language;
// anywhere else it could pass for another file.
OSStatus LSCopyDisplayNameForURL(CFURLRef const& url, CFStringRef* displayName);
OSStatus LSCopyDisplayNameForRef(FSRef const* itemRef, CFStringRef* displayName);

// For implementations.
NSString displayNameOf(DiskItem const& item);
// Whether people see the name without its extension.
bool hidesExtension(DiskItem const& item);
// Has the file manager answer these names, too. For registerLaunchServices.
void useDisplayNamesInFileManager();

} // namespace mac
