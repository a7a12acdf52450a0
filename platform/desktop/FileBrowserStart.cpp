#include "platform/desktop/FileBrowserStart.h"
#include "platform/desktop/KeyFile.h"
#include "platform/system/ASCII.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <utility>

namespace mac {

namespace {

// What has to be known of the browser while it does not run.
struct Memory {
    std::mutex lock;
    // The program whose start is remembered.
    std::string program;
    std::optional<FileBrowserStart> start;
    ProcessIdentity quitCommand;
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
    Result<FileDescriptor> const entries = openPath("/proc/" + std::to_string(process.pid), O_PATH | O_DIRECTORY);
    std::string folder = entries.hasValue() ? linkTextIn(entries.value(), "cwd").valueOr("") : std::string();
    // What was read is that process's only while it runs.
    std::optional<RunningProcess> running = runningProcess(process);
    if (!words || words->empty() || !running) return false;
    std::lock_guard const guard(memory().lock);
    memory().program = browser.program;
    memory().start = {std::move(running->executable), std::move(*words), std::move(folder)};
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

Result<std::int32_t> runQuitCommand(FileBrowser const& browser) {
    std::optional<std::vector<std::string>> const command = quitCommandOf(browser.application);
    std::optional<std::string> const program =
        command && !command->empty() ? resolvedProgram(command->front()) : std::nullopt;
    Result<std::int32_t> process = SystemError{.code = ENOENT, .operation = "exec"};
    if (program) process = startDetached(*program, *command);
    std::optional<RunningProcess> const running = process.hasValue() ? runningProcess(process.value()) : std::nullopt;
    std::lock_guard const guard(memory().lock);
    memory().quitCommand = running ? running->identity : ProcessIdentity();
    return process;
}

bool isQuitCommand(ProcessIdentity const& process) {
    std::lock_guard const guard(memory().lock);
    return process == memory().quitCommand;
}

bool askToQuit(ProcessIdentity const& process) {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    std::optional<RunningProcess> const running = runningProcess(process);
    if (browser && running && isFileBrowser(*browser, programOf(*running), process)) {
        rememberStart(*browser, process);
        if (runQuitCommand(*browser).hasValue()) return true;
    }
    return askToEnd(process);
}

} // namespace mac
