#pragma once

#include <string>
#include <vector>

namespace mac {

// The folders that stand for the local computer, in the environment's FRAMEKEEPER_LOCAL_COMPUTER with colons between
// them; none where it stands for itself. So the demo and the tests narrow it. For implementations; any thread.
std::vector<std::string> localComputerFolders();

} // namespace mac
