#pragma once

#include <string>

namespace mac {

// The absolute path (bytes) with its symbolic links followed as far as they exist and its ".." resolved behind them;
// what does not exist stays as it is named, and so does the whole when the links lead in a circle. For implementations.
std::string resolvedPath(std::string const& path);

// Whether something is there, links followed.
bool pathExists(std::string const& path);

} // namespace mac
