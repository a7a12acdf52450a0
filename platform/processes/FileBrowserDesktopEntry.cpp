#include "platform/processes/DesktopApplication.h"
#include "platform/processes/FileBrowser.h"

namespace mac {

std::optional<FileBrowser> defaultFileBrowser() {
    std::optional<DesktopApplication> const application = defaultApplicationFor({"inode/directory"});
    if (!application) return std::nullopt;
    return FileBrowser{application->entryPath, application->name, application->executable};
}

} // namespace mac
