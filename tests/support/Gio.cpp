#include "tests/support/Gio.h"
#include "tests/support/CommandOutput.h"
#include <stdexcept>

namespace mac::test {

std::string gio(std::vector<std::string> const& arguments) {
    std::vector<std::string> command{"dbus-run-session", "--", "gio"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return outputOf(command);
}

bool gioKnowsTrash() {
    try {
        gio({"list", "trash:///"});
        return true;
    } catch (std::runtime_error const&) {
        return false;
    }
}

} // namespace mac::test
