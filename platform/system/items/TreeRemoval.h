#pragma once

#include "platform/system/items/ItemIdentity.h"
#include "platform/system/items/ItemStatus.h"
#include <functional>

namespace mac {

// Removal of whole items. Any thread.

struct RemovalRules {
    // Folders of this user that cannot be listed or changed are made accessible by their permissions.
    bool makesAccessible{false};
    // Asked once for each folder; the removal ends with ECANCELED once it answers false. If empty, it continues.
    std::function<bool()> shouldContinue{};
    // Called before each item is removed, with its path from the open folder, "NAME" or "NAME/a/b"; the item stays if
    // it fails. May be empty.
    std::function<Result<void>(FileDescriptor const& folder, std::string const& name, std::string const& path)>
        beforeRemoval{};
    // Called after each failure below a folder with the path as above; the removal ends if it answers false. If empty,
    // it continues.
    std::function<bool(std::string const& path, SystemError const& error)> shouldContinueAfter{};
};

// Removes the item of a name in an open folder if it is the expected one (else ESTALE), and before it all items below
// it, to any depth. Symbolic links are not followed; a mount point is neither entered nor removed (EBUSY). Goes on
// after a failure and answers the first one; what is not empty stays.
Result<void> removeTree(FileDescriptor const& folder, std::string const& name, ItemIdentity const& expected,
                        RemovalRules const& rules = {});

enum class RemovalStep {
    // The name leads to an item in the expected state; it is moved aside next.
    Checked,
    // The item has an unguessable name; whether it is still the same is checked next.
    MovedAside,
    // It is the same, and what goes with it lies aside, too; the item is removed next.
    AllAside,
};
// Called after each step; empty in the product. For tests of what happens between steps.
using RemovalSteps = std::function<void(RemovalStep)>;

// What goes together with an item that is removed, or stays with it. Each may be empty.
struct RemovalCompanion {
    // Called before the item is removed, once it is known to be the right one; the item stays if it fails.
    std::function<Result<void>()> leave{};
    // Called if the item could not be removed then, before it gets its name back. The name in the error tells where
    // that is which could not come back.
    std::function<Result<void>()> comeBack{};
};

// Removes one item that is no folder, or an empty folder, and no other one that takes its name meanwhile: the item is
// moved aside, looked at and only then removed. ESTALE if it was another one, which gets its name back; if that is
// taken, it keeps the name that the error tells.
Result<void> removeExactly(FileDescriptor const& folder, std::string const& name, ItemStatus const& expected,
                           RemovalSteps const& steps = {}, RemovalCompanion const& companion = {});

} // namespace mac
