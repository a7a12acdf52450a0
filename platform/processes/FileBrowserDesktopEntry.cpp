#include "platform/processes/DesktopApplication.h"
#include "platform/processes/FileBrowser.h"
#include "platform/processes/ProcessList.h"
#include "platform/processes/Session.h"

namespace mac {

namespace {

std::string programOf(DesktopApplication const& application) {
    if (!isInterpreter(application.executable)) return application.executable;
    std::optional<std::string> const script = scriptInCommand(application.executable, application.words);
    return script ? resolvedProgram(*script).value_or("") : "";
}

} // namespace

std::optional<FileBrowser> defaultFileBrowser() {
    std::optional<DesktopApplication> const application = defaultApplicationFor({"inode/directory"});
    if (!application) return std::nullopt;
    return FileBrowser{application->entryPath, application->name, application->executable, programOf(*application)};
}

bool isFileBrowser(FileBrowser const& browser, std::string const& program, std::int32_t pid) {
    return program == browser.program && isOfThisSession(pid);
}

} // namespace mac
