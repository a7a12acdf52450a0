#pragma once

#include "platform/desktop/DesktopApplication.h"
#include "platform/system/processes/ProcessList.h"
#include <optional>
#include <string>
#include <vector>

// Which program shows folders on this desktop, for implementations.

namespace mac {

// The desktop's default application for folders, which stands in the Finder's role.
struct FileBrowser {
    DesktopApplication application;
    // What programOf answers for its processes: the application's file, or the script that its command runs; empty
    // where an interpreter is all that can be told.
    std::string program;
};

// Looked up anew: the user's and the system's lists of default applications, then the applications known for folders.
// The first whose program is there; nothing where there is none. Any thread.
std::optional<FileBrowser> defaultFileBrowser();

// Whether the process that runs the program, as programOf tells it, is the file browser of this user's session; one
// that was only started to make it quit is not. Any thread.
bool isFileBrowser(FileBrowser const& browser, std::string const& program, ProcessIdentity const& process);

// Its processes, in the order of their start. Any thread.
std::vector<ProcessIdentity> processesOf(FileBrowser const& browser);

} // namespace mac
