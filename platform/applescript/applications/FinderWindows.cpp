#include "platform/applescript/Evaluator.h"
#include "platform/applescript/applications/Finder.h"
#include "platform/processes/FileBrowser.h"
#include "platform/processes/ProcessList.h"
#include <algorithm>

// What the Finder shows: the windows of the desktop's file browser.

namespace mac::applescript::finder {

bool isRunning() {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    return browser && std::ranges::any_of(runningProcesses(), [&](RunningProcess const& process) {
               return process.executable == browser->executable;
           });
}

} // namespace mac::applescript::finder
