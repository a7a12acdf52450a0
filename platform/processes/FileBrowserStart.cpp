#include "platform/processes/FileBrowserStart.h"
#include "platform/foundation/ASCII.h"
#include "platform/foundation/LongPath.h"
#include "platform/foundation/OpenItems.h"
#include "platform/processes/KeyFile.h"
#include <fcntl.h>
#include <mutex>
#include <utility>

namespace mac {

namespace {

// How one browser was started, by its program.
class RememberedStart {
public:
    static RememberedStart& shared() {
        static RememberedStart start;
        return start;
    }

    void set(std::string const& program, FileBrowserStart start) {
        std::lock_guard const guard(m_lock);
        m_start.emplace(program, std::move(start));
    }
    std::optional<FileBrowserStart> of(std::string const& program) {
        std::lock_guard const guard(m_lock);
        return m_start && m_start->first == program ? std::optional(m_start->second) : std::nullopt;
    }
    void forget() {
        std::lock_guard const guard(m_lock);
        m_start.reset();
    }

private:
    std::mutex m_lock;
    std::optional<std::pair<std::string, FileBrowserStart>> m_start;
};

class LastQuitCommand {
public:
    static LastQuitCommand& shared() {
        static LastQuitCommand command;
        return command;
    }

    void set(ProcessIdentity const& process) {
        std::lock_guard const guard(m_lock);
        m_process = process;
    }
    bool is(ProcessIdentity const& process) {
        std::lock_guard const guard(m_lock);
        return m_process == process;
    }

private:
    std::mutex m_lock;
    ProcessIdentity m_process;
};

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
    RememberedStart::shared().set(browser.program,
                                  {std::move(running->executable), std::move(*words), std::move(folder).value_or("")});
    return true;
}

std::optional<FileBrowserStart> rememberedStart(FileBrowser const& browser) {
    return RememberedStart::shared().of(browser.program);
}

void forgetFileBrowserStart() { RememberedStart::shared().forget(); }

DetachedProcess runQuitCommand(FileBrowser const& browser) {
    std::optional<std::vector<std::string>> const command = quitCommandOf(browser.application);
    std::optional<std::string> const program =
        command && !command->empty() ? resolvedProgram(command->front()) : std::nullopt;
    DetachedProcess const process = program ? startDetached(*program, *command) : DetachedProcess();
    std::optional<RunningProcess> const running = runningProcess(process.pid);
    LastQuitCommand::shared().set(running ? running->identity : ProcessIdentity());
    return process;
}

bool isQuitCommand(ProcessIdentity const& process) { return LastQuitCommand::shared().is(process); }

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
