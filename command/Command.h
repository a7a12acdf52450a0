#pragma once

#include <string>
#include <vector>

namespace framekeeper {

// Runs the command with the words behind the program's name and answers its exit status. What was asked for goes to
// standard output, everything else to standard error. Main thread; once in a process, since it changes what signals do.
int runCommand(std::vector<std::string> const& words);

} // namespace framekeeper
