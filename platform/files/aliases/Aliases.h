#pragma once

#include "platform/files/Handles.h"
#include "platform/files/references/FSRef.h"

namespace mac {

// The Alias Manager: references to items that last, as bytes in a handle. Any thread.

// A handle that holds an alias record; its bytes are opaque.
using AliasHandle = MemoryHandle;

// Makes an alias of the item of a name in the folder; a symbolic link itself. The name has targetNameLength code units,
// in the form of HFS; no name in an all-zero folder is the root. On success the handle is the caller's; otherwise it is
// left alone. `fromFile` has no effect. `isDirectory` may be null. fnfErr if there is no such item.
OSErr FSNewAliasUnicode(FSRef const* fromFile, FSRef const* targetParentRef, std::uint32_t targetNameLength,
                        unichar const* targetName, AliasHandle* inAlias, bool* isDirectory);

// A reference to the alias's item, wherever it is now. If the record does not describe it any more, the handle's
// contents are replaced and `wasChanged` is true. The volume is searched for at most ten seconds. `fromFile` has no
// effect. paramErr for a null pointer and for bytes that are no alias record; fnfErr if the item is not found.
//
// Linux: an item of the same kind at the recorded path is the answer, as files are often replaced when they are saved;
// next come the same place below the home folder and on the volume, wherever that is mounted, and then the very item,
// by its inode number and birth time.
OSErr FSResolveAlias(FSRef const* fromFile, AliasHandle alias, FSRef* target, bool* wasChanged);

} // namespace mac
