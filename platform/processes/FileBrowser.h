#pragma once

#include <cstdint>
#include <optional>
#include <string>

// Which program shows folders on this desktop, for implementations.

namespace mac {

// The desktop's default application for folders, which stands in the Finder's role.
struct FileBrowser {
    // The desktop entry's own file.
    std::string entryPath;
    // Its name for people, in UTF-8 and not translated.
    std::string name;
    // The program's file, with links resolved.
    std::string executable;
    // What programOf answers for its processes: the same, or the script that its command runs; empty where an
    // interpreter is all that can be told.
    std::string program;
};

// Looked up anew: the user's and the system's lists of default applications, then the applications known for folders.
// The first whose program is there; nothing where there is none. Any thread.
std::optional<FileBrowser> defaultFileBrowser();

// Whether the process that runs the program, as programOf tells it, is the file browser of this user's session. Any
// thread.
bool isFileBrowser(FileBrowser const& browser, std::string const& program, std::int32_t pid);

} // namespace mac
