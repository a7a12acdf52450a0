#include "platform/desktop/FileBrowserProcess.h"
#include "platform/desktop/ApplicationStart.h"
#include "platform/desktop/FileBrowserService.h"
#include "platform/desktop/FileBrowserStart.h"
#include "platform/desktop/FrontProcess.h"
#include "platform/foundation/NSString.h"
#include "platform/system/FileDescriptor.h"
#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac {

namespace {

using Clock = std::chrono::steady_clock;

// Whether all have ended by then.
bool haveEnded(std::vector<FileDescriptor> const& processes, Clock::time_point end) {
    for (FileDescriptor const& process : processes) {
        int count = 0;
        do {
            auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
            pollfd waited{process.number(), POLLIN, 0};
            count = ::poll(&waited, 1, static_cast<int>(std::max<decltype(left)>(left, 0)));
        } while (count < 0 && errno == EINTR);
        if (count != 1) return false;
    }
    return true;
}

FileDescriptor openProcess(std::int32_t pid) {
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
}

std::vector<FileDescriptor> openProcesses(std::vector<ProcessIdentity> const& processes) {
    std::vector<FileDescriptor> open;
    for (ProcessIdentity const& process : processes) {
        FileDescriptor descriptor = openProcess(process.pid);
        // The ID may have become another process's before that.
        if (descriptor.isOpen() && runningProcess(process)) open.push_back(std::move(descriptor));
    }
    return open;
}

// One that could not be opened has not been seen to end.
bool noneRuns(std::vector<ProcessIdentity> const& processes) {
    return std::ranges::none_of(processes,
                                [](ProcessIdentity const& process) { return runningProcess(process).has_value(); });
}

FinderOutcome startBrowser(FileBrowser const& browser) {
    if (!hasDisplay()) return noDisplay();
    // The terminal it ran in is not known.
    if (browser.application.needsTerminal) return startApplication(browser.application, {});
    FileBrowserStart const usual{browser.application.executable, commandOf(browser.application, {}), ""};
    FileBrowserStart const start = rememberedStart(browser).value_or(usual);
    Result<std::int32_t> const process = startDetached(start.executable, start.words, start.folder);
    if (!process.hasValue()) return notStarted(process.problem());
    if (!serviceCommandOf(browser) || !isFileBrowserServiceOffered()) return {};
    return waitForFileBrowserService(process.value());
}

} // namespace

std::vector<ProcessIdentity> fileBrowserProcesses() {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    return browser ? processesOf(*browser) : std::vector<ProcessIdentity>();
}

bool bringFileBrowserToFront() {
    return std::ranges::any_of(fileBrowserProcesses(),
                               [](ProcessIdentity const& process) { return bringToFront(process.pid); });
}

FinderOutcome activateFileBrowser() {
    FinderOutcome outcome = launchFileBrowser();
    if (!outcome.isDone() || bringFileBrowserToFront()) return outcome;
    std::optional<std::string> const home = NSHomeDirectory().fileSystemRepresentation();
    return openFolders({home.value_or("/")});
}

FinderOutcome quitFileBrowser() {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return noFileBrowser();
    std::vector<ProcessIdentity> const processes = processesOf(*browser);
    if (processes.empty()) return {};
    rememberStart(*browser, processes.front());
    std::vector<FileDescriptor> open = openProcesses(processes);
    Clock::time_point const end = Clock::now() + finderPatience().quit;
    // One that has a way of its own may have something to finish first, or a question to ask.
    if (!runQuitCommand(*browser).hasValue()) std::ranges::for_each(processes, askToEnd);
    if (haveEnded(open, end) && noneRuns(processes)) return {};
    return {FinderProblem::NoAnswer, "The file browser does not quit"};
}

FinderOutcome launchFileBrowser() {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return noFileBrowser();
    return processesOf(*browser).empty() ? startBrowser(*browser) : FinderOutcome();
}

} // namespace mac
