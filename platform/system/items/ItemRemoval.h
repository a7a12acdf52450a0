#pragma once

#include "platform/system/Result.h"
#include "platform/system/items/OpenItem.h"
#include "platform/system/items/TreeRemoval.h"
#include <functional>
#include <string>

namespace mac {

// Deleting whole items for good, folders with all that is in them, to any depth. Symbolic links are deleted themselves.
// Any thread.

// What is asked and told while an item is removed. Paths start with the item's name: "NAME", "NAME/a/b".
struct RemovalQuestions {
    // Called before each item is removed. May be empty.
    std::function<void(std::string const& path)> willRemove{};
    // Called after each failure below or at a folder, at most once for each path; the removal ends if it answers false.
    // If empty, the removal ends.
    std::function<bool(std::string const& path, SystemError const& error)> shouldContinueAfter{};
    // Called after each step of the removal of a file that has a sidecar.
    RemovalSteps steps{};
};

// Removes the item (TreeRemoval.h) and its AppleDouble sidecar. What must stay is looked for first, so that nothing is
// removed if any of these is in the item: a locked item (ItemIsLocked), a mount point (EBUSY), a folder that cannot be
// listed, an item whose name this user may not remove (EACCES, EPERM, EROFS). A later failure leaves what was not
// removed until then; a file and its sidecar go together or not at all. EBUSY for the root; ESTALE if another item has
// the item's name.
Result<void> removeItem(OpenItem const& item, RemovalQuestions const& questions = {});

// Removes the item and its AppleDouble sidecar if it is no folder that holds anything: ENOTEMPTY then, and nothing is
// removed, whatever comes into the folder meanwhile. Otherwise fails as removeItem does.
Result<void> removeEmptyItem(OpenItem const& item);

// For which names it is asked whether this user may remove them.
enum class AskedNames {
    None,
    All,
    // All but those in folders of this user in the item that only their permissions close, and that are opened before
    // the removal.
    AllInOpenedFolders,
};

// Fails as removeItem does if the item or one in it must stay.
Result<void> confirmRemovable(OpenItem const& item, AskedNames names = AskedNames::All);

// Removes one item, which is empty if it is a folder, unless it is locked.
Result<void> removeUnlessLocked(FileDescriptor const& folder, std::string const& name, bool isFolder);

} // namespace mac
