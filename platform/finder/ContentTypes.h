#pragma once

#include <string>
#include <vector>

namespace mac {

// What the desktop's database of types makes of the file, by its name and its first bytes: "text/x-python", and behind
// it what that is a kind of, "text/plain". For implementations; any thread.
std::vector<std::string> contentTypesOfFile(std::string const& path);

} // namespace mac
