#pragma once

#include "platform/desktop/DesktopApplication.h"
#include "platform/desktop/FileBrowserWindows.h"
#include <string>
#include <vector>

namespace mac {

// Starts the application with the files, in a terminal where it needs one, and does not wait for it. NoDisplay where
// there is none, Refused without a terminal. For implementations; main thread.
FinderOutcome startApplication(DesktopApplication const& application, std::vector<std::string> const& paths);

} // namespace mac
