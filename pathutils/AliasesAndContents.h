#pragma once

#include "platform/files/Handles.h"
#include "platform/files/references/FSRef.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/dates/NSDate.h"

namespace mac {

// Aliases, which still lead to a file that was moved, and comparison of files by their contents. Nothing is raised or
// logged, and no file stays open afterwards. A nil receiver answers nil, null, NO and 0.

// The bytes of an alias of the item, a link followed: to be stored, and resolved later. nil if there is no such item.
NSData pxAliasDataOfPath(NSString receiver);
// The path where the item of the alias is now; nil for what is no alias record, and if the item is not found within ten
// seconds. platform/files/aliases/Aliases.h tells how it is found.
NSString pxPathOfAliasData(NSData receiver);
// The path where the item of the alias is now, as pxPathOfAliasData answers it. If the item was found elsewhere, or
// replaced, `changedAlias` receives the alias of what was found, and otherwise nil. It may be null.
NSString pxPathOfAliasDataChangedAlias_(NSData receiver, NSData* changedAlias);

// A copy of the bytes in the handle; nil for null and for a handle of no bytes.
NSData pxDataWithHandle_(MemoryHandle handle);
// A new handle with a copy of the bytes, which the caller disposes of; null for no bytes, for 2 GiB and more, and
// without memory.
MemoryHandle pxCreateHandle(NSData receiver);

// Exchanges the contents of two files, or symbolic links themselves, as FSExchangeObjects does; NO, and nothing is
// changed, if that fails.
bool pxExchangeFileWith_(NSString receiver, NSString otherPath);

// Whether the data forks, or the resource forks, are equal. A fork that the first file does not have, or that cannot be
// opened, is equal to any other: what the first file lacks counts as no difference, so that the answer depends on the
// order. A fork that cannot be read through is not equal. NO for null.
bool pxIsFork_equalToFork_dataFork_(FSRef const* first, FSRef const* second, BOOL dataFork);
// Whether both forks are equal. The resource forks are read only if the data forks are.
bool pxIsContentsOfFile_equalToFile_(FSRef const* first, FSRef const* second);
// pxIsContentsOfFile_equalToFile_ for the items at the two paths, a symbolic link itself; NO if either does not exist.
bool pxPathHasEqualContentsWithPath_(NSString receiver, NSString otherPath);

// pxChecksum (coreutils/Strings.h) of the file's data fork, a link followed; 0 for a file that cannot be read.
int pxChecksumOfPath(NSString receiver);
// When the item at the standardized path was last changed; a final symbolic link is not followed. nil if there is no
// item.
NSDate pxModificationDateOfPath(NSString receiver);

} // namespace mac
