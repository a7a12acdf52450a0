#include "platform/desktop/browser/FileBrowser.h"
#include "platform/desktop/browser/FileBrowserKinds.h"
#include "platform/desktop/browser/FileBrowserService.h"
#include "platform/desktop/entries/DefaultApplications.h"
#include "platform/desktop/session/Session.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/processes/DetachedProcess.h"
#include <algorithm>
#include <fcntl.h>
#include <mutex>
#include <unistd.h>
#include <utility>

namespace mac {

namespace {

// What has to be known of the browser while it does not run.
struct Memory {
    std::mutex lock{};
    // The browser's program and the session whose processes the start was read from.
    std::string program{};
    std::optional<std::string> busAddress{};
    std::optional<ProgramStart> start{};
    // The browser's other processes when that one was asked to quit.
    std::vector<ProcessIdentity> others{};
    // The process session (setsid) that the quit command was started in, and when; 0 before the first.
    std::int32_t quitSession{0};
    std::uint64_t quitStart{0};
};

Memory& memory() {
    static Memory memory;
    return memory;
}

void rememberStart(FileBrowser const& browser, ProcessIdentity const& process) {
    std::optional<std::vector<std::string>> words = argumentsOf(process.pid);
    Result<FileDescriptor> const entries = openPath("/proc/" + std::to_string(process.pid), O_PATH | O_DIRECTORY);
    std::string folder = entries.hasValue() ? linkTextIn(entries.value(), "cwd").valueOr("") : "";
    // What was read is that process's only if it still runs.
    std::optional<RunningProcess> running = runningProcess(process);
    if (!words || words->empty() || !running) return;
    std::vector<ProcessIdentity> others = processesOf(browser);
    std::erase(others, process);
    std::lock_guard const guard(memory().lock);
    memory().others = std::move(others);
    memory().program = browser.program;
    memory().busAddress = sessionBusAddress();
    memory().start = {std::move(running->executable), std::move(*words), std::move(folder)};
}

// A session's number belongs to no other process while the session has members.
bool isOfQuitCommand(ProcessIdentity const& process) {
    std::lock_guard const guard(memory().lock);
    return memory().quitSession != 0 && process.startTime >= memory().quitStart &&
           ::getsid(process.pid) == memory().quitSession;
}

std::optional<std::vector<std::string>> quitCommandOf(FileBrowser const& browser) {
    DesktopApplication const& application = browser.application;
    std::optional<std::vector<std::string>> action =
        DesktopEntry::readFile(application.entryPath).commandOfAction("quit");
    if (action) return action;
    FileBrowserKind const* const kind = fileBrowserKindOf(application.executable);
    if (!kind || kind->quitSwitch.empty()) return std::nullopt;
    return std::vector<std::string>{application.executable, std::string(kind->quitSwitch)};
}

// Starts the browser's command to quit. False if it has none, or it cannot be started.
bool runQuitCommand(FileBrowser const& browser) {
    std::optional<std::vector<std::string>> const command = quitCommandOf(browser);
    std::optional<std::string> const program = command ? resolvedProgram(command->front()) : std::nullopt;
    std::int32_t const pid = program ? startDetached(*program, *command).valueOr(0) : 0;
    std::optional<RunningProcess> const running = runningProcess(pid);
    std::int32_t const session = running ? ::getsid(pid) : 0;
    std::lock_guard const guard(memory().lock);
    memory().quitSession = std::max(session, 0);
    memory().quitStart = running ? running->identity.startTime : 0;
    return pid > 0;
}

bool askOneToQuit(FileBrowser const& browser, ProcessIdentity const& process) {
    FileBrowserKind const* const kind = fileBrowserKindOf(browser.application.executable);
    if (kind && kind->quitCall && runningProcess(process) && callToQuit(*kind->quitCall, process.pid)) return true;
    return askToEnd(process);
}

// The command in a file of the bus's services, if it offers FileManager1 and runs the program.
std::optional<std::vector<std::string>> commandInService(std::string const& path, std::string const& program) {
    constexpr char group[] = "D-BUS Service";
    KeyFile const service = KeyFile::readFile(path);
    if (service.value(group, "Name") != FileBrowserServiceName) return std::nullopt;
    std::optional<std::string> const commandLine = service.text(group, "Exec");
    std::optional<std::vector<std::string>> words = commandLine ? wordsOfCommandLine(*commandLine) : std::nullopt;
    if (!words || words->empty() || resolvedProgram(words->front()) != program) return std::nullopt;
    return words;
}

// The file of the program that offers the service for the browser.
std::optional<std::string> serviceProgramOf(FileBrowser const& browser) {
    std::string const& program = browser.application.executable;
    FileBrowserKind const* const kind = fileBrowserKindOf(program);
    if (!kind || kind->serviceProgram == kind->program) return program;
    if (kind->serviceProgram.empty()) return std::nullopt;
    return resolvedProgram(BytePath(BytePath(program).parent()).joined(kind->serviceProgram));
}

} // namespace

std::optional<FileBrowser> defaultFileBrowser() {
    std::optional<DesktopApplication> application = defaultApplicationFor({"inode/directory"});
    if (!application) return std::nullopt;
    std::string program = programOf(*application);
    return FileBrowser{std::move(*application), std::move(program)};
}

std::optional<ProgramStart> serviceCommandOf(FileBrowser const& browser) {
    std::optional<std::string> const program = serviceProgramOf(browser);
    if (!program) return std::nullopt;
    for (std::string const& data : dataFolders()) {
        std::string const folder = BytePath(data).joined("dbus-1/services");
        for (std::string const& name : namesInFolder(folder, LinkAtEnd::IsFollowed).valueOr({})) {
            if (!name.ends_with(".service")) continue;
            std::optional<std::vector<std::string>> words = commandInService(BytePath(folder).joined(name), *program);
            if (words) return ProgramStart{.executable = *program, .words = std::move(*words)};
        }
    }
    return std::nullopt;
}

bool isFileBrowser(FileBrowser const& browser, std::string const& program, ProcessIdentity const& process) {
    return program == browser.program && !isOfQuitCommand(process) && isOfThisSession(process.pid);
}

std::vector<ProcessIdentity> processesOf(FileBrowser const& browser) {
    std::vector<ProcessIdentity> processes = sessionProcessesOf(browser.program);
    std::erase_if(processes, isOfQuitCommand);
    return processes;
}

std::optional<ProgramStart> rememberedStart(FileBrowser const& browser) {
    std::lock_guard const guard(memory().lock);
    bool const isSame = memory().program == browser.program && memory().busAddress == sessionBusAddress();
    return isSame ? memory().start : std::nullopt;
}

bool isProcessMissing(FileBrowser const& browser) {
    if (!rememberedStart(browser)) return false;
    std::vector<ProcessIdentity> const running = processesOf(browser);
    std::lock_guard const guard(memory().lock);
    return std::ranges::all_of(running, [](ProcessIdentity const& process) {
        return std::ranges::find(memory().others, process) != memory().others.end();
    });
}

bool askToQuit(FileBrowser const& browser, std::vector<ProcessIdentity> const& processes) {
    if (processes.empty()) return false;
    rememberStart(browser, processes.front());
    if (runQuitCommand(browser)) return true;
    bool isAsked = false;
    for (ProcessIdentity const& process : processes)
        isAsked = askOneToQuit(browser, process) || isAsked;
    return isAsked;
}

bool askToQuit(ProcessIdentity const& process) {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    std::optional<RunningProcess> const running = runningProcess(process);
    if (browser && running && isFileBrowser(*browser, programOf(*running), process))
        return askToQuit(*browser, {process});
    return askToEnd(process);
}

std::optional<FileBrowser> const& RecentFileBrowser::get() {
    constexpr std::chrono::seconds longest(1);
    std::chrono::steady_clock::time_point const now = m_now();
    if (!m_readAt || now - *m_readAt > longest) {
        m_fileBrowser = defaultFileBrowser();
        m_readAt = now;
    }
    return m_fileBrowser;
}

} // namespace mac
