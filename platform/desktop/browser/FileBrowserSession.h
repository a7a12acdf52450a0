#pragma once

#include "platform/desktop/DesktopProblem.h"
#include "platform/desktop/browser/FileBrowser.h"
#include "platform/desktop/browser/FileBrowserService.h"
#include <chrono>
#include <string>
#include <vector>

namespace mac {

// How long the browser is waited for, to start, to answer and to quit; to start and to answer for no longer than the
// thread's patience lasts.
struct FileBrowserTimeouts {
    std::chrono::milliseconds start{15'000};
    std::chrono::milliseconds answer{10'000};
    std::chrono::milliseconds quit{5'000};
};

// What the Finder does, done by the desktop's file browser. For implementations; main thread. Paths are bytes and
// absolute. Each call waits for the browser within the timeouts; meanwhile the thread handles no events.
//
// A browser that runs, or can be started, as the service org.freedesktop.FileManager1 is asked through the session's
// bus. If no process offers the service, the default browser is started by its own command, since the bus might start
// another. A browser that is no such service is started anew with the folder.
//
// There is no call to refresh what a browser shows (the event 'fupd'): browsers watch the folders that they show.
class FileBrowserSession {
public:
    explicit FileBrowserSession(FileBrowserTimeouts timeouts = {}) : m_timeouts(timeouts) {}

    // Shows the items selected in windows of their folders; a browser that is no service shows the folders alone.
    DesktopOutcome revealItems(std::vector<std::string> const& paths) const;
    // Shows each folder in a window.
    DesktopOutcome openFolders(std::vector<std::string> const& paths) const;
    // Shows windows with information about the items. Refused for a browser that is no service.
    DesktopOutcome showInformation(std::vector<std::string> const& paths) const;
    // Opens a folder in the browser, and starts the default application with any other item, without waiting for it.
    DesktopOutcome openItem(std::string const& path) const;

    // Starts the browser if it does not run: as it was started when it was last asked to quit, with the same arguments
    // in the same folder, so that one that draws the desktop draws it again; else by its desktop entry. Of a browser
    // with a process for each window, starts the process that was asked to quit and is gone. Done once it runs and, if
    // it is a service, is on the bus.
    DesktopOutcome launch() const;
    // Brings the browser to the front, starting it if it does not run; shows the home folder if it has no window.
    DesktopOutcome activate() const;
    // Asks the browser to quit and waits until its processes have ended; also done if it does not run.
    DesktopOutcome quit() const;

private:
    enum class Way { ByBus, ByCommand };
    // Starts the browser as the service if it is one and no process offers that yet.
    DesktopResult<Way> reach() const;
    DesktopOutcome start(FileBrowser const& browser) const;
    DesktopOutcome show(FileBrowserRequest request, std::vector<std::string> const& paths) const;
    DesktopOutcome ask(FileBrowserRequest request, std::vector<std::string> const& paths) const;
    // nullopt if the browser left the bus without having said that it did it.
    std::optional<DesktopOutcome> askOnce(FileBrowserRequest request, std::vector<std::string> const& paths) const;

    FileBrowserTimeouts m_timeouts;
};

// The default browser's processes in this session, in the order of their start; empty without a browser. Any thread.
std::vector<ProcessIdentity> fileBrowserProcesses();

// Brings the browser's topmost window to the front. False if it has none. Any thread.
bool bringFileBrowserToFront();

} // namespace mac
