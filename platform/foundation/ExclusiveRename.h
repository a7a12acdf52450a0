#pragma once

#include <string>

namespace mac {

// Moves what the one open folder has under a name to a name in the other one that nothing may have: EEXIST where
// something does. Both are on one volume. False when it fails; errno says why. For implementations; any thread.
bool renameWithoutReplacing(int fromFolder, std::string const& from, int toFolder, std::string const& to);

// The same for file systems that do not know how not to replace: something empty takes the name first, and only that is
// replaced. Killed in between, the empty thing stays.
bool renameOverPlaceholder(int fromFolder, std::string const& from, int toFolder, std::string const& to);

} // namespace mac
