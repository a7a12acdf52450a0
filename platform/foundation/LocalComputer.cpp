#include "platform/foundation/LocalComputer.h"
#include "platform/foundation/DesktopFolders.h"

namespace mac {

std::vector<std::string> localComputerFolders() { return listInEnvironment("FRAMEKEEPER_LOCAL_COMPUTER", ""); }

} // namespace mac
