#pragma once

#include <functional>
#include <string>

namespace mac {

// Moves what the one open folder has under a name to a name in the other one that nothing may have: EEXIST where
// something does. Both are on one volume. False when it fails; errno says why. For implementations; any thread.
bool renameWithoutReplacing(int fromFolder, std::string const& from, int toFolder, std::string const& to);

// The same for file systems that do not know how not to replace: the item takes the place of something empty that was
// made for it, unless somebody has filled that meanwhile. Whatever had the first name is moved, nothing is removed that
// somebody may have put there. Killed in between, the empty thing stays. `afterFirstStep` is for tests of what happens
// then.
bool renameInSteps(int fromFolder, std::string const& from, int toFolder, std::string const& to,
                   std::function<void()> const& afterFirstStep = {});

// Gives a whole file, whose first name nobody else knows, a name in its folder that nothing may have: EEXIST where
// something does. On such file systems it gets the second name before it loses the first, which stays where it cannot
// go.
bool nameNewFile(int folder, std::string const& from, std::string const& to);

} // namespace mac
