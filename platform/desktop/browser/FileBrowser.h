#pragma once

#include "platform/desktop/entries/DesktopApplication.h"
#include "platform/system/processes/ProcessList.h"
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// Which program shows folders on this desktop, which processes run it, how those were started, and how they are asked
// to quit. For implementations; any thread unless said otherwise.

namespace mac {

// The desktop's default application for folders, which stands in the Finder's role.
struct FileBrowser {
    DesktopApplication application;
    // What programOf answers for its processes; empty if only an interpreter is known.
    std::string program;
};

// The default application for folders, looked up anew; nullopt if no application is set for them.
std::optional<FileBrowser> defaultFileBrowser();

// The command by which the bus would start the browser as the service org.freedesktop.FileManager1; nullopt for a
// browser that is not installed as that.
std::optional<ProgramStart> serviceCommandOf(FileBrowser const& browser);

// Whether the process, which runs the program as programOf answers it, is this session's file browser. The command that
// makes the browser quit is not, nor are that command's children, though they mostly run the same program.
bool isFileBrowser(FileBrowser const& browser, std::string const& program, ProcessIdentity const& process);

// The browser's processes in this session, in the order of their start.
std::vector<ProcessIdentity> processesOf(FileBrowser const& browser);

// How the browser was started when it was last asked to quit in this session, so that it can be started alike; nullopt
// if it was not, or was another browser.
std::optional<ProgramStart> rememberedStart(FileBrowser const& browser);

// Whether the process that was last asked to quit has ended while others that ran then still run, as with a browser
// that has a process for each window, and none has been started since.
bool isProcessMissing(FileBrowser const& browser);

// Asks the browser to quit as a user would, by the action "quit" of its desktop entry, else by its program's own way,
// else by SIGTERM, and does not wait. Remembers how the first of the processes was started. False if no process was
// given or none could be asked.
bool askToQuit(FileBrowser const& browser, std::vector<ProcessIdentity> const& processes);

// Asks any process to quit and does not wait: the file browser as above, others by SIGTERM. False if it has ended
// already, or may not be asked. Main thread.
bool askToQuit(ProcessIdentity const& process);

// The desktop's file browser as it was a second ago at most: to look it up takes as long as to read a hundred
// processes, each of which is compared with it. One thread at a time.
class RecentFileBrowser {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    explicit RecentFileBrowser(Clock clock = &std::chrono::steady_clock::now) : m_now(std::move(clock)) {}

    // nullopt if there is no file browser.
    std::optional<FileBrowser> const& get();
    // Has the next get look it up, however short the last one is ago.
    void forget() { m_readAt.reset(); }

private:
    Clock m_now;
    std::optional<FileBrowser> m_fileBrowser;
    std::optional<std::chrono::steady_clock::time_point> m_readAt;
};

} // namespace mac
