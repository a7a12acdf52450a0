#pragma once

#include "platform/system/Result.h"
#include <cstdint>
#include <string>
#include <vector>

namespace mac {

// Starts a program as a daemon: in a session of its own, its standard streams at /dev/null, no child of this process.
// `file` is the path of the program, the first of the words its argument zero. It runs in the folder, or in this
// process's own if that is empty or gone. Answers the process ID once the program is executed. Any thread.
Result<std::int32_t> startDetached(std::string const& file, std::vector<std::string> const& words,
                                   std::string const& folder = "");

} // namespace mac
