#include "platform/desktop/FileBrowser.h"
#include "platform/desktop/FileBrowserStart.h"
#include "platform/desktop/Session.h"

namespace mac {

std::optional<FileBrowser> defaultFileBrowser() {
    std::optional<DesktopApplication> application = defaultApplicationFor({"inode/directory"});
    if (!application) return std::nullopt;
    std::string program = programOf(*application);
    return FileBrowser{std::move(*application), std::move(program)};
}

bool isFileBrowser(FileBrowser const& browser, std::string const& program, ProcessIdentity const& process) {
    return program == browser.program && !isQuitCommand(process) && isOfThisSession(process.pid);
}

std::vector<ProcessIdentity> processesOf(FileBrowser const& browser) {
    std::vector<ProcessIdentity> processes = sessionProcessesOf(browser.program);
    std::erase_if(processes, isQuitCommand);
    return processes;
}

} // namespace mac
