#pragma once

#include "platform/desktop/FileBrowser.h"
#include "platform/desktop/FileBrowserWindows.h"
#include "platform/system/SystemError.h"
#include <chrono>
#include <optional>
#include <string>
#include <vector>

// The file browser's end of the session's bus. For implementations; main thread.

namespace mac {

// How long it is waited for the browser, to start and to answer. Shorter in tests of what does not come.
struct FinderPatience {
    std::chrono::milliseconds start{15'000};
    std::chrono::milliseconds answer{10'000};
    std::chrono::milliseconds quit{5'000};
};
FinderPatience& finderPatience();

// The ways to the browser.
enum class Reach { ByBus, ByCommand, NotAtAll };
struct FileBrowserReach {
    Reach reach{Reach::NotAtAll};
    // Why it cannot be reached at all.
    FinderOutcome outcome{};
};
// Starts the browser where it is a service and nobody offers that yet.
FileBrowserReach reachFileBrowser();

// The command by which the bus would start the browser as the service: nothing for a browser that is none.
std::optional<std::vector<std::string>> serviceCommandOf(FileBrowser const& browser);

// Whether somebody offers the service now; nothing where there is no bus to ask.
std::optional<bool> isFileBrowserServiceOffered();
// Waits until somebody offers it. Not as long as it could where the process that should has ended.
FinderOutcome waitForFileBrowserService(std::int32_t pid);

// Calls a method of the service with the items.
FinderOutcome callFileBrowserService(std::string const& method, std::vector<std::string> const& paths);

// Whether a window can be shown.
bool hasDisplay();

// Of what is not there.
FinderOutcome noFileBrowser();
FinderOutcome noSessionBus();
FinderOutcome noDisplay();
// The outcome of a program that could not be started.
FinderOutcome notStarted(SystemError const& error);

} // namespace mac
