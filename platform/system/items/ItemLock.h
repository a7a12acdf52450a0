#pragma once

#include "platform/system/Result.h"
#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/OpenItem.h"
#include <string>

namespace mac {

// Locks on items. A locked file or folder keeps its name and its folder until it is unlocked, and a file its contents:
// to remove, rename, move, trash or replace it fails with ItemIsLocked. Any thread.
//
// Where the file system has the immutable flag and the user may set it, that is the lock, which binds all programs and
// keeps a folder's contents, too. Otherwise it is an attribute, which binds only this system's own operations; it
// travels with the item.

// Not empty on an item that is locked by an attribute.
inline constexpr char LockedAttribute[] = "com.apple.FSCatalogInfo.locked";

enum class ItemLock { Locked, Unlocked };

// Whether the item is locked, by the flag or the attribute. Unlocked also if the user may not read the attribute, and
// for items without attributes.
ItemLock lockOf(OpenItem const& item);
// Whether the item of a name in an open folder is locked, by the flag or the attribute; a symbolic link is not
// followed.
bool isLockedIn(FileDescriptor const& folder, std::string const& name);
// Whether the item of a name is locked, given the item's place, which saves a system call.
bool isLockedIn(FileDescriptor const& folder, std::string const& name, ItemPlace const& place);
// Whether the open item has the immutable flag.
bool isImmutable(FileDescriptor const& item);

// Locks the item, or takes both locks off. EPERM for an item that is neither file nor folder, and where the user may do
// neither.
Result<void> setLock(OpenItem const& item, ItemLock lock);

// The error of an operation that the item's lock forbids.
SystemError lockedItem(std::string name);

} // namespace mac
