#pragma once

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
};

// Looked up anew: the user's and the system's lists of default applications, then the applications known for folders.
// The first whose program is there; nothing where there is none. Any thread.
std::optional<FileBrowser> defaultFileBrowser();

} // namespace mac
