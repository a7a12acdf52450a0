#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace mac {

// A program that goes on by itself: in a session of its own, its standard input and output nowhere, nobody's child. For
// implementations; any thread.
struct DetachedProcess {
    // Its ID; 0 where it could not be started, and errno says why.
    std::int32_t pid{0};
};

// The file is the program's; the first of the words is how it is called. In the folder, or in this process's where that
// is empty or gone.
DetachedProcess startDetached(std::string const& file, std::vector<std::string> const& words,
                              std::string const& folder = "");

} // namespace mac
