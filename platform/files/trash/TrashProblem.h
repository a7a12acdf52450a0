#pragma once

#include "platform/system/SystemError.h"
#include <string>

namespace mac {

// Why an item could not be trashed, put back or erased.
struct TrashProblem {
    enum class Kind {
        // No item is at the path, or it has gone meanwhile.
        NotThere,
        // Another item has taken the item's place meanwhile; it was left alone.
        Changed,
        // The permissions of the item, its folder or its owner do not allow it.
        NotAllowed,
        // The item is locked.
        Locked,
        // The volume cannot be written to.
        ReadOnly,
        // The volume has no space left, not even for the few bytes that the trash needs.
        Full,
        // The volume has no trash that can be used, and none can be made.
        NoTrash,
        // The item is the root, a mount point, a folder that holds one, a trash, or a folder that holds a trash.
        Immovable,
        // The item lies in a trash already.
        InTrash,
        // The item does not lie in a trash, or its original path is not recorded.
        NotInTrash,
        // Another item has the name that the item would get.
        NameTaken,
        // Any other error of the system.
        Other,
    };
    using enum Kind;

    Kind kind{Other};
    // The system call that failed; its code is 0 if the trash itself refused.
    SystemError error{};
    // For people, in UTF-8.
    std::string text{};
};

// Why a system call about the trash failed. The text begins with `what`; ESTALE is Changed.
TrashProblem trashProblem(SystemError error, std::string const& what);
// Another item was moved to the path instead of the item, and cannot be moved back.
TrashProblem wrongItemMoved(SystemError error, std::string const& what, std::string const& path);
// A path in UTF-8, as it is shown to people.
std::string shownPath(std::string const& path);

} // namespace mac
