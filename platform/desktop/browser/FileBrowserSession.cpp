#include "platform/desktop/browser/FileBrowserSession.h"
#include "platform/desktop/entries/DefaultApplications.h"
#include "platform/desktop/entries/MIMETypes.h"
#include "platform/desktop/session/FrontProcess.h"
#include "platform/desktop/session/Patience.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/LongPath.h"
#include "platform/system/Users.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <set>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac {

namespace {

using Clock = std::chrono::steady_clock;
using Paths = std::vector<std::string>;
using enum DesktopProblem::Kind;

DesktopProblem noFileBrowser() { return {NoApplication, "The desktop has no default application for folders"}; }

DesktopProblem noTimeLeft() { return {NoAnswer, "The file browser has not answered before, and is not asked again"}; }

DesktopProblem silentBus() { return {NoAnswer, "The session bus does not answer"}; }

bool isTimeOver() { return Patience::left() <= std::chrono::milliseconds::zero(); }

bool isBusSilent() {
    Patience const patience;
    return !isFileBrowserServiceOffered() && isTimeOver();
}

DesktopProblem nothingAtPath() { return {NotThere, "There is nothing at the path"}; }

std::optional<DesktopProblem> problemOf(Paths const& paths) {
    if (paths.empty()) return DesktopProblem{NotThere, "Nothing is to be shown"};
    for (std::string const& path : paths) {
        if (!BytePath(path).isAbsolute() || !openPath(path, O_PATH | O_NOFOLLOW).hasValue()) return nothingAtPath();
    }
    return std::nullopt;
}

// The folders that show the items, each once.
Paths foldersToShow(FileBrowserRequest request, Paths const& paths) {
    std::set<std::string> folders;
    for (std::string const& path : paths) {
        if (request == FileBrowserRequest::ShowItems)
            folders.emplace(BytePath(path).parent());
        else
            folders.insert(path);
    }
    return {folders.begin(), folders.end()};
}

// Whether all processes have ended by then.
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

std::vector<FileDescriptor> openProcesses(std::vector<ProcessIdentity> const& processes) {
    std::vector<FileDescriptor> open;
    for (ProcessIdentity const& process : processes) {
        FileDescriptor descriptor(static_cast<int>(::syscall(SYS_pidfd_open, process.pid, 0)));
        // Before it was opened, the ID may have become another process's.
        if (descriptor.isOpen() && runningProcess(process)) open.push_back(std::move(descriptor));
    }
    return open;
}

bool noneRuns(std::vector<ProcessIdentity> const& processes) {
    return std::ranges::none_of(processes,
                                [](ProcessIdentity const& process) { return runningProcess(process).has_value(); });
}

} // namespace

DesktopResult<FileBrowserSession::Way> FileBrowserSession::reach() const {
    std::optional<bool> const isOffered = isFileBrowserServiceOffered();
    if (isOffered == true) return Way::ByBus;
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return noFileBrowser();
    std::optional<ProgramStart> const command = serviceCommandOf(*browser);
    if (!command) return Way::ByCommand;
    if (!isOffered) return isTimeOver() ? silentBus() : noSessionBus();
    if (isTimeOver()) return noTimeLeft();
    DesktopResult<std::int32_t> const started = startProgram(*command);
    if (!started.hasValue()) return started.problem();
    DesktopOutcome const outcome =
        waitForFileBrowserService(started.value(), std::min(m_timeouts.start, Patience::left()));
    return outcome.isDone() ? DesktopResult<Way>(Way::ByBus) : DesktopResult<Way>(outcome.problem());
}

DesktopOutcome FileBrowserSession::show(FileBrowserRequest request, Paths const& paths) const {
    if (std::optional<DesktopProblem> const problem = problemOf(paths)) return *problem;
    Patience const patience;
    if (isTimeOver()) return noTimeLeft();
    DesktopOutcome outcome = ask(request, paths);
    // A time-out may be a moment early.
    if (!outcome.isDone() && outcome.problem().kind == NoAnswer) Patience::end();
    return outcome;
}

// A browser that has just been told to quit may still be the service, and so may the command that told it. Its windows
// end with it; what it may have handed on to another process is shown twice then.
DesktopOutcome FileBrowserSession::ask(FileBrowserRequest request, Paths const& paths) const {
    std::optional<DesktopOutcome> outcome = askOnce(request, paths);
    if (!outcome) outcome = askOnce(request, paths);
    return outcome ? *outcome : DesktopProblem{NoAnswer, "The file browser has left the session bus"};
}

std::optional<DesktopOutcome> FileBrowserSession::askOnce(FileBrowserRequest request, Paths const& paths) const {
    DesktopResult<Way> const way = reach();
    if (!way.hasValue()) return way.problem();
    if (way.value() == Way::ByBus)
        return callFileBrowserService(request, paths, std::min(m_timeouts.answer, Patience::left()));
    if (request == FileBrowserRequest::ShowItemProperties)
        return DesktopProblem{Refused, "The file browser shows no windows with information when it is asked to"};
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return noFileBrowser();
    for (std::string const& folder : foldersToShow(request, paths)) {
        if (isTimeOver()) return noTimeLeft();
        DesktopOutcome outcome = startApplication(browser->application, {folder});
        if (!outcome.isDone()) return outcome;
    }
    return DesktopOutcome();
}

DesktopOutcome FileBrowserSession::revealItems(Paths const& paths) const {
    return show(FileBrowserRequest::ShowItems, paths);
}

DesktopOutcome FileBrowserSession::openFolders(Paths const& paths) const {
    return show(FileBrowserRequest::ShowFolders, paths);
}

DesktopOutcome FileBrowserSession::showInformation(Paths const& paths) const {
    return show(FileBrowserRequest::ShowItemProperties, paths);
}

DesktopOutcome FileBrowserSession::openItem(std::string const& path) const {
    if (!BytePath(path).isAbsolute()) return nothingAtPath();
    Result<FileStatus> const status = fileStatusAtPath(path);
    if (!status.hasValue()) return nothingAtPath();
    if (status.value().kind == FileStatus::Kind::Folder) return openFolders({path});
    std::optional<DesktopApplication> const application =
        defaultApplicationFor(mimeTypeAndAncestors(mimeTypeOfItem(path, LinkAtEnd::IsFollowed)));
    if (!application) return DesktopProblem{NoApplication, "No application is known for the item"};
    return startApplication(*application, {path});
}

DesktopOutcome FileBrowserSession::start(FileBrowser const& browser) const {
    // The terminal that it ran in is not known.
    if (browser.application.needsTerminal) return startApplication(browser.application, {});
    ProgramStart const usual{browser.application.executable, commandOf(browser.application, {})};
    DesktopResult<std::int32_t> const started = startProgram(rememberedStart(browser).value_or(usual));
    if (!started.hasValue()) return started.problem();
    std::optional<ProgramStart> const service = serviceCommandOf(browser);
    bool const isService = service && service->executable == browser.application.executable;
    if (!isService || !isFileBrowserServiceOffered()) return {};
    return waitForFileBrowserService(started.value(), std::min(m_timeouts.start, Patience::left()));
}

DesktopOutcome FileBrowserSession::launch() const {
    Patience const patience;
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return noFileBrowser();
    bool const isWanted = processesOf(*browser).empty() || isProcessMissing(*browser);
    return isWanted ? start(*browser) : DesktopOutcome();
}

DesktopOutcome FileBrowserSession::activate() const {
    Patience const patience;
    DesktopOutcome outcome = launch();
    if (!outcome.isDone() || bringFileBrowserToFront()) return outcome;
    return openFolders({ownHomeFolder()});
}

DesktopOutcome FileBrowserSession::quit() const {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return noFileBrowser();
    std::vector<ProcessIdentity> const processes = processesOf(*browser);
    std::vector<FileDescriptor> const open = openProcesses(processes);
    // A command that asks the browser by a bus that hangs would be obeyed as soon as the bus wakes up.
    if (!processes.empty() && isBusSilent()) return silentBus();
    Clock::time_point const end = Clock::now() + m_timeouts.quit;
    // A browser with a way of its own gets no signal besides: it may have to finish something, or ask the user.
    askToQuit(*browser, processes);
    // A process that could not be opened has not been seen to end.
    if (haveEnded(open, end) && noneRuns(processes)) return {};
    return DesktopProblem{NoAnswer, "The file browser does not quit"};
}

std::vector<ProcessIdentity> fileBrowserProcesses() {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    return browser ? processesOf(*browser) : std::vector<ProcessIdentity>();
}

bool bringFileBrowserToFront() {
    return std::ranges::any_of(fileBrowserProcesses(),
                               [](ProcessIdentity const& process) { return bringToFront(process.pid); });
}

} // namespace mac
