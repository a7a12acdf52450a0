#pragma once

#include "platform/system/items/FolderPlace.h"
#include <cstddef>
#include <functional>
#include <limits>
#include <string>

namespace mac {

struct DescentRules {
    // Folders of this user that cannot be listed or changed are made accessible by their permissions.
    bool makesAccessible{false};
    // The descent ends with E2BIG after this many items.
    std::size_t mostItems{std::numeric_limits<std::size_t>::max()};
    // Called before each visit with the item's path from the open folder, "NAME" or "NAME/a/b"; may be empty.
    std::function<void(std::string const& path)> beforeVisit{};
    // Called after each failure with the path as above; the descent ends if it answers false. If empty, it continues.
    std::function<bool(std::string const& path, SystemError const& error)> shouldContinueAfter{};
};

// Handles the item of a name in an open folder. A failure with ECANCELED ends the descent.
using DescentVisit =
    std::function<Result<void>(FileDescriptor const& folder, std::string const& name, ItemPlace const& place)>;

// Makes the folder of a name accessible to its owner by its permissions, if this user is that owner and it is not.
void letOwnerIn(FileDescriptor const& folder, std::string const& name);

// Visits the item of a name in the open folder if it is the expected one, and before it all items below it, to any
// depth. Symbolic links are not followed, and mount points are not entered (EBUSY). Goes on after a failure and answers
// the first one. Any thread.
Result<void> descend(FileDescriptor const& folder, std::string const& name, ItemIdentity const& expected,
                     DescentRules const& rules, DescentVisit const& visit);

} // namespace mac
