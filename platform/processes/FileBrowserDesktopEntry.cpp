#include "platform/processes/FileBrowser.h"
#include "platform/processes/Session.h"

namespace mac {

std::optional<FileBrowser> defaultFileBrowser() {
    std::optional<DesktopApplication> application = defaultApplicationFor({"inode/directory"});
    if (!application) return std::nullopt;
    std::string program = programOf(*application);
    return FileBrowser{std::move(*application), std::move(program)};
}

bool isFileBrowser(FileBrowser const& browser, std::string const& program, std::int32_t pid) {
    return program == browser.program && isOfThisSession(pid);
}

std::vector<ProcessIdentity> processesOf(FileBrowser const& browser) { return sessionProcessesOf(browser.program); }

} // namespace mac
