#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/Result.h"
#include "platform/system/items/ItemIdentity.h"
#include <cstdint>
#include <string>
#include <vector>

struct statx;

// Where open folders and the items in them lie. Any thread.

namespace mac {

struct ItemPlace {
    ItemIdentity identity{};
    // The mount it is reached through; an item can be renamed within one mount only.
    std::uint64_t mount{0};
    std::uint32_t owner{0};
    std::uint32_t mode{0};
    bool isFolder{false};
    bool isMountPoint{false};
    // It has the flag that forbids every change (ItemLock.h).
    bool isImmutable{false};
};

// The place in a status that was asked for with the type, mode, owner, inode, birth time and mount.
ItemPlace placeIn(struct statx const& status);
Result<ItemPlace> placeOf(FileDescriptor const& item);
// The place of the item of a name in an open folder; a symbolic link is not followed.
Result<ItemPlace> placeOf(FileDescriptor const& folder, std::string const& name);

// Fails if this user may not remove the item's name from the folder, with the code that the system would give then. To
// be asked before a removal of several names begins. Linux: NFS and other servers are asked as well.
Result<void> confirmNameRemovable(FileDescriptor const& folder, std::string const& name, ItemPlace const& item);

// The folder, then the folders above it, up to the root.
Result<std::vector<ItemIdentity>> folderAndThoseAbove(FileDescriptor const& folder);
// The topmost folder of the folder's mount.
Result<FileDescriptor> topOfMount(FileDescriptor const& folder);

// The folder's absolute path, of any length.
Result<std::string> pathOfFolder(FileDescriptor const& folder);

} // namespace mac
