#pragma once

#include "platform/system/TemporaryName.h"
#include "platform/system/items/ItemStatus.h"
#include "platform/system/items/OpenItem.h"

namespace mac {

// What tells an item from all others in its folder while it is held open. Some file systems, FUSE for one, lose an open
// item when the name goes by which it was opened, and then may give its inode number away; if they record no birth time
// either, the item's state has to be the same, too. A value; any thread.
struct ItemTraits {
    ItemIdentity identity{};
    // A new name does not change it (ItemStatus.h).
    std::uint64_t mark{MarkOfNoItem};

    bool isOfSameItem(ItemTraits const& other) const {
        return identity == other.identity && (identity.isLasting() || mark == other.mark);
    }
};

Result<ItemTraits> traitsOf(FileDescriptor const& item);

// Done if the name in the open folder leads to the item of these traits. ESTALE if it leads to another one, or may.
Result<void> confirmTraitsInFolder(FileDescriptor const& folder, std::string const& name, ItemTraits const& item);

// An item that has a name in a folder, open so that no other gets its identity.
struct HeldItem {
    OpenItem item{};
    ItemTraits traits{};
    bool isFolder{false};
};

// Opens the item of a name in an open folder; a symbolic link is not followed. ENOENT if there is none.
Result<HeldItem> holdItem(FileDescriptor const& folder, std::string const& name);

} // namespace mac
