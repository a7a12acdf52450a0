#pragma once

#include "platform/system/items/FolderPlace.h"
#include <cstddef>
#include <functional>
#include <limits>

namespace mac {

struct DescentRules {
    // A folder of this user's that cannot be listed or changed is made so.
    bool makesAccessible{false};
    // After so many the descent ends, with E2BIG.
    std::size_t mostItems{std::numeric_limits<std::size_t>::max()};
};

// What is to be done with the item, which is the name in the open folder. False when it cannot be; errno says why.
// ECANCELED ends the descent.
using DescentVisit = std::function<bool(FileDescriptor const& folder, std::string const& name, ItemPlace const& place)>;

// Visits what has the name in the open folder, if it is that very item, and before it all that is in it, down to any
// depth. Links are not followed, and what is mounted in a folder is not entered. False when not all could be visited;
// errno is about the first that could not. For implementations; any thread.
bool descend(FileDescriptor const& folder, std::string const& name, ItemIdentity const& expected,
             DescentRules const& rules, DescentVisit const& visit);

} // namespace mac
