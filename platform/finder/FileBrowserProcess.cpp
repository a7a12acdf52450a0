#include "platform/finder/FileBrowserProcess.h"
#include "platform/finder/DetachedProcess.h"
#include "platform/finder/FileBrowserService.h"
#include "platform/foundation/LongPath.h"
#include "platform/foundation/NSString.h"
#include "platform/processes/DesktopApplication.h"
#include "platform/processes/FrontProcess.h"
#include "platform/processes/KeyFile.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac {

namespace {

// How the browser was started when it was last asked to quit.
struct RememberedStart {
    std::string executable{};
    std::vector<std::string> words{};
    std::string folder{};
};

RememberedStart& rememberedStart() {
    static RememberedStart start;
    return start;
}

std::optional<std::string> linkText(std::string const& path) {
    std::array<char, PATH_MAX> text;
    ssize_t const length = ::readlink(path.c_str(), text.data(), text.size());
    if (length <= 0) return std::nullopt;
    return std::string(text.data(), static_cast<std::size_t>(length));
}

// In no language.
std::string lowercase(std::string text) {
    for (char& character : text) {
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
    }
    return text;
}

// What the browser's entry or its kind has for it; nothing where there is neither.
std::optional<std::vector<std::string>> quitCommandOf(FileBrowser const& browser) {
    KeyFile const entry = KeyFile::readFile(browser.entryPath);
    for (std::string const& action : entry.list("Desktop Entry", "Actions")) {
        std::optional<std::string> const commandLine = entry.text("Desktop Action " + action, "Exec");
        if (lowercase(action) == "quit" && commandLine) return wordsOfCommandLine(*commandLine);
    }
    std::string const name = lowercase(browser.executable.substr(browser.executable.rfind('/') + 1));
    for (char const* const kind : {"thunar", "nautilus", "nemo", "caja"}) {
        if (name == kind) return std::vector<std::string>{browser.executable, "-q"};
    }
    return std::nullopt;
}

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

// The process that does it; none where there is no command, or it cannot be started.
FileDescriptor runQuitCommand(FileBrowser const& browser) {
    std::optional<std::vector<std::string>> const command = quitCommandOf(browser);
    std::optional<std::string> const program =
        command && !command->empty() ? resolvedProgram(command->front()) : std::nullopt;
    std::int32_t const pid = program ? startDetached(*program, *command).pid : 0;
    return pid > 0 ? openProcess(pid) : FileDescriptor();
}

FinderOutcome startBrowser(FileBrowser const& browser) {
    if (!hasDisplay()) return noDisplay();
    RememberedStart const& start = rememberedStart();
    bool const isRemembered = start.executable == browser.executable && !start.words.empty();
    std::optional<DesktopApplication> const application = defaultApplicationFor({"inode/directory"});
    if (!isRemembered && !application) return noFileBrowser();
    std::vector<std::string> const words = isRemembered ? start.words : commandOf(*application, {});
    DetachedProcess const process = startDetached(browser.executable, words, isRemembered ? start.folder : "");
    if (process.pid == 0) return notStarted();
    if (!serviceCommandOf(browser) || !isFileBrowserServiceOffered()) return {};
    return waitForFileBrowserService(process.pid);
}

} // namespace

std::vector<ProcessIdentity> fileBrowserProcesses() {
    std::vector<ProcessIdentity> processes;
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return processes;
    for (RunningProcess const& process : runningProcesses()) {
        if (isFileBrowser(*browser, programOf(process), process.identity.pid)) processes.push_back(process.identity);
    }
    return processes;
}

FinderOutcome activateFileBrowser() {
    FinderOutcome outcome = launchFileBrowser();
    if (!outcome.isDone()) return outcome;
    for (ProcessIdentity const& process : fileBrowserProcesses()) {
        if (bringToFront(process.pid)) return {};
    }
    std::optional<std::string> const home = NSHomeDirectory().fileSystemRepresentation();
    return openFolders({home.value_or("/")});
}

bool rememberFileBrowserStart() {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    std::vector<ProcessIdentity> const processes = fileBrowserProcesses();
    if (!browser || processes.empty()) return false;
    std::int32_t const pid = processes.front().pid;
    RememberedStart start{browser->executable, argumentsOf(pid).value_or(std::vector<std::string>()),
                          linkText("/proc/" + std::to_string(pid) + "/cwd").value_or("")};
    if (start.words.empty() || !runningProcess(processes.front())) return false;
    rememberedStart() = std::move(start);
    return true;
}

void forgetFileBrowserStart() { rememberedStart() = {}; }

FinderOutcome quitFileBrowser() {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return noFileBrowser();
    std::vector<ProcessIdentity> const processes = fileBrowserProcesses();
    if (processes.empty()) return {};
    rememberFileBrowserStart();
    std::vector<FileDescriptor> open = openProcesses(processes);
    Clock::time_point const end = Clock::now() + finderPatience().quit;
    if (FileDescriptor command = runQuitCommand(*browser); command.isOpen()) {
        // It is the browser's program, too, and looks like one that still runs.
        open.push_back(std::move(command));
        // Half of the time for its own way.
        if (haveEnded(open, end - finderPatience().quit / 2) && noneRuns(processes)) return {};
    }
    for (ProcessIdentity const& process : processes)
        askToEnd(process);
    if (haveEnded(open, end) && noneRuns(processes)) return {};
    return {FinderProblem::NoAnswer, "The file browser does not quit"};
}

FinderOutcome launchFileBrowser() {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return noFileBrowser();
    return fileBrowserProcesses().empty() ? startBrowser(*browser) : FinderOutcome();
}

} // namespace mac
