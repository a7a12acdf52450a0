#include "platform/system/LocalComputer.h"
#include "platform/system/XDGFolders.h"

namespace mac {

std::vector<std::string> localComputerFolders() { return listInEnvironment("FRAMEKEEPER_LOCAL_COMPUTER", ""); }

} // namespace mac
