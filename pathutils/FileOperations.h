#pragma once

#include "platform/foundation/NSString.h"

namespace mac {

// Operations on the file or folder at a path, which is the receiver. They block until they are done. A message that is
// answered is for people. Nothing is raised. Main thread, since two of them run scripts. A nil receiver answers nil and
// NO; where nil means success, that is the caller's to tell apart.

// Deletes the item for good, a folder with all that is in it; a symbolic link itself. Nil on success, else the file
// manager's message or "Could not delete file item.".
NSString pxRemoveFile2(NSString receiver);
// Deletes as above, without a message.
bool pxRemoveFile(NSString receiver);

// Asks the Finder to move the item to the trash; its path there. Nil if there is no item or if it stays where it is.
// Symbolic links in the path are followed by the standardization alone.
NSString pxMoveToTrash(NSString receiver);

} // namespace mac
