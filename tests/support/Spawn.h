#pragma once

#include <string>
#include <vector>

namespace mac::test {

// Starts the program, which is looked for in PATH unless its name has a slash; standard input and output are these, or
// stay this process's where they are negative. Answers its process; throws std::system_error when it cannot be started.
int spawn(std::vector<std::string> words, int input, int output);

} // namespace mac::test
