#pragma once

#include <string>
#include <vector>

// Other programs that tests run and wait for.

namespace mac::test {

// Starts a program, which is looked for in PATH unless its name has a slash, and returns its process ID. Its standard
// input and output become these descriptors; a negative one leaves this process's own. When it returns, others can read
// the program's words and environment. Throws std::system_error if the program cannot be started.
int spawn(std::vector<std::string> words, int input, int output);

// Sends a signal to a program that may be no child of this process. After SIGSTOP all of its threads have stopped, or
// it has ended, when this returns.
void sendSignalTo(int process, int signal);

// Runs a program to its end and returns its standard output. Throws std::runtime_error if its exit status is not 0,
// std::system_error if it cannot be started.
std::string outputOf(std::vector<std::string> const& command);

// Runs gio, another program that knows the desktop's trash, on a session bus of its own, as outputOf does.
std::string gio(std::vector<std::string> const& arguments);

bool gioKnowsTrash();

inline constexpr char GioKnowsNoTrash[] = "gio knows no trash here; the package gvfs has what it needs";

} // namespace mac::test
