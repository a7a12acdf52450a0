#pragma once

#include <functional>
#include <string>

namespace mac {

// Moves what the one open folder has under a name to a name in the other one that nothing may have: EEXIST where
// something does. Both are on one volume. False when it fails; errno says why. For implementations; any thread.
bool renameWithoutReplacing(int fromFolder, std::string const& from, int toFolder, std::string const& to);

// The same for file systems that do not know how not to replace. A file gets the second name before it loses the first.
// A folder, and a file where none can have two names, takes the place of something empty that was made for it, unless
// somebody has filled that meanwhile. Killed in between, the second name or the empty thing stays. `afterFirstStep` is
// for tests of what happens then.
bool renameInSteps(int fromFolder, std::string const& from, int toFolder, std::string const& to,
                   std::function<void()> const& afterFirstStep = {});

} // namespace mac
