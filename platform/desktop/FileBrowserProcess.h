#pragma once

#include "platform/desktop/FileBrowserStart.h"
#include "platform/desktop/FileBrowserWindows.h"
#include <optional>
#include <string>
#include <vector>

// The file browser as a program that runs. For implementations; main thread.

namespace mac {

// The processes of the desktop's default file browser, this user's alone, in the order of their start.
std::vector<ProcessIdentity> fileBrowserProcesses();

// Brings the topmost window of the browser to the front; false where there is none.
bool bringFileBrowserToFront();

// Brings the browser to the front, starting it when it does not run; a window of the home folder shows where it has
// none to show.
FinderOutcome activateFileBrowser();

// Asks the browser to quit, by the command that its desktop entry or its kind has for that and otherwise as any process
// is asked, and waits until it is gone, some 5 seconds at most. Done also when it does not run. How it was started is
// remembered.
FinderOutcome quitFileBrowser();

// Starts the browser if it does not run: as it was started when it was last remembered, with the same arguments in the
// same folder, and otherwise by its desktop entry. Answers when it runs; a service answers on the bus by then.
FinderOutcome launchFileBrowser();

} // namespace mac
