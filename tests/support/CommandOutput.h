#pragma once

#include <string>
#include <vector>

namespace mac::test {

// The program's standard output. Throws when it does not end well, std::system_error when it cannot be started.
std::string outputOf(std::vector<std::string> const& command);

} // namespace mac::test
