#include "platform/foundation/LocalComputer.h"
#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace mac {

std::vector<std::string> localComputerFolders() {
    char const* const narrowed = std::getenv("FRAMEKEEPER_LOCAL_COMPUTER");
    std::vector<std::string> folders;
    for (std::string_view rest = narrowed ? narrowed : ""; !rest.empty();) {
        std::size_t const end = std::min(rest.find(':'), rest.size());
        if (end > 0) folders.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return folders;
}

} // namespace mac
