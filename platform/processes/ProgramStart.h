#pragma once

#include <optional>
#include <string>
#include <vector>

namespace mac {

// The file of a program by its name, looked for as the shell does, or by its path; nothing where there is none that may
// be run. For implementations; any thread.
std::optional<std::string> programFile(std::string const& name);

// Starts a program that goes on by itself, in a session of its own, with its standard files at /dev/null. The first
// word is its name or path. Nobody waits for it. False when it cannot be run; errno says why.
bool startProgram(std::vector<std::string> const& words);

} // namespace mac
