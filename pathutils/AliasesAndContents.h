#pragma once

#include "platform/files/FSRef.h"
#include "platform/files/Handles.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDate.h"

namespace mac {

// References to files that last, and files compared by their contents. Nothing is raised or logged, and nothing stays
// open afterwards. A nil receiver answers nil, null, NO and 0.

// The bytes of an alias of the item, a link followed: to be stored, and resolved later. nil if there is no such item.
NSData pxAliasDataOfPath(NSString receiver);
// The path where the item of the alias is now; nil for what is no alias record, and if the item is not found within ten
// seconds. platform/files/Aliases.h tells how it is found.
NSString pxPathOfAliasData(NSData receiver);
// If the item was found elsewhere, or replaced, `changedAlias` becomes the alias of what was found, and otherwise nil.
// It may be null.
NSString pxPathOfAliasDataChangedAlias_(NSData receiver, NSData* changedAlias);

// A copy of the bytes in the handle; nil for null and for a handle of no bytes.
NSData pxDataWithHandle_(MemoryHandle handle);
// A new handle with a copy of the bytes, which the caller disposes of; null for no bytes and without memory.
MemoryHandle pxCreateHandle(NSData receiver);

} // namespace mac
