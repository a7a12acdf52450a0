#include "platform/desktop/FileBrowserStart.h"
#include "platform/desktop/KeyFile.h"
#include "platform/system/ASCII.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <algorithm>
#include <fcntl.h>
#include <mutex>
#include <unistd.h>
#include <utility>

namespace mac {

namespace {

// What has to be known of the browser while it does not run.
struct Memory {
    std::mutex lock;
    // The program whose start is remembered.
    std::string program;
    std::optional<FileBrowserStart> start;
    // The session (setsid) that the quit command was started in, and when; 0 before the first.
    std::int32_t quitSession{0};
    std::uint64_t quitStart{0};
};

Memory& memory() {
    static Memory memory;
    return memory;
}

// What the browser's entry or its kind has for it; nothing where there is neither.
std::optional<std::vector<std::string>> quitCommandOf(DesktopApplication const& browser) {
    KeyFile const entry = KeyFile::readFile(browser.entryPath);
    for (std::string const& action : entry.list("Desktop Entry", "Actions")) {
        std::optional<std::string> const commandLine = entry.text("Desktop Action " + action, "Exec");
        if (asciiLowercase(action) == "quit" && commandLine) return wordsOfCommandLine(*commandLine);
    }
    std::string const name = asciiLowercase(browser.executable.substr(browser.executable.rfind('/') + 1));
    for (char const* const kind : {"thunar", "nautilus", "nemo", "caja"}) {
        if (name == kind) return std::vector<std::string>{browser.executable, "-q"};
    }
    return std::nullopt;
}

} // namespace

bool rememberStart(FileBrowser const& browser, ProcessIdentity const& process) {
    std::optional<std::vector<std::string>> words = argumentsOf(process.pid);
    FileDescriptor const entries = openPath("/proc/" + std::to_string(process.pid), O_PATH | O_DIRECTORY);
    std::optional<std::string> folder = entries.isOpen() ? linkTextIn(entries, "cwd") : std::nullopt;
    // What was read is that process's only while it runs.
    std::optional<RunningProcess> running = runningProcess(process);
    if (!words || words->empty() || !running) return false;
    std::lock_guard const guard(memory().lock);
    memory().program = browser.program;
    memory().start = {std::move(running->executable), std::move(*words), std::move(folder).value_or("")};
    return true;
}

std::optional<FileBrowserStart> rememberedStart(FileBrowser const& browser) {
    std::lock_guard const guard(memory().lock);
    return memory().program == browser.program ? memory().start : std::nullopt;
}

void forgetFileBrowserStart() {
    std::lock_guard const guard(memory().lock);
    memory().start.reset();
}

DetachedProcess runQuitCommand(FileBrowser const& browser) {
    std::optional<std::vector<std::string>> const command = quitCommandOf(browser.application);
    std::optional<std::string> const program =
        command && !command->empty() ? resolvedProgram(command->front()) : std::nullopt;
    DetachedProcess const process = program ? startDetached(*program, *command) : DetachedProcess();
    std::optional<RunningProcess> const running = runningProcess(process.pid);
    std::int32_t const session = running ? ::getsid(process.pid) : 0;
    std::lock_guard const guard(memory().lock);
    memory().quitSession = std::max(session, 0);
    memory().quitStart = running ? running->identity.startTime : 0;
    return process;
}

bool isQuitCommand(ProcessIdentity const& process) {
    std::lock_guard const guard(memory().lock);
    // The system gives the session's number to no other process while the session has members.
    return memory().quitSession != 0 && process.startTime >= memory().quitStart &&
           ::getsid(process.pid) == memory().quitSession;
}

bool askToQuit(ProcessIdentity const& process) {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    std::optional<RunningProcess> const running = runningProcess(process);
    if (browser && running && isFileBrowser(*browser, programOf(*running), process)) {
        rememberStart(*browser, process);
        if (runQuitCommand(*browser).pid > 0) return true;
    }
    return askToEnd(process);
}

} // namespace mac
