#include "platform/desktop/FileBrowserWindows.h"
#include "platform/desktop/ApplicationStart.h"
#include "platform/desktop/FileBrowserService.h"
#include "platform/desktop/MIMETypes.h"
#include "platform/launchservices/ContentTypes.h"
#include "platform/system/LongPath.h"
#include <algorithm>
#include <fcntl.h>
#include <set>

namespace mac {

namespace {

FinderOutcome nothingThere() { return {FinderProblem::NotThere, "There is nothing at the path"}; }

std::optional<FinderOutcome> complaintAbout(std::vector<std::string> const& paths) {
    if (paths.empty()) return FinderOutcome{FinderProblem::NotThere, "Nothing is to be shown"};
    for (std::string const& path : paths) {
        if (!path.starts_with('/') || !openPath(path, O_PATH | O_NOFOLLOW).hasValue()) return nothingThere();
    }
    return std::nullopt;
}

std::string folderOf(std::string path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    std::size_t const slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The file's own first, then what that is a kind of.
std::vector<std::string> contentTypesOf(std::string const& path) {
    std::vector<std::string> types{mimeTypeOfItem(path, true)};
    for (std::size_t index = 0; index < types.size(); ++index) {
        for (std::string& parent : parentsOfMIMEType(types[index])) {
            if (std::ranges::find(types, parent) == types.end()) types.push_back(std::move(parent));
        }
    }
    return types;
}

// By a browser that is no service: a window for each folder.
FinderOutcome startWithFolders(std::set<std::string> const& folders) {
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return noFileBrowser();
    for (std::string const& folder : folders) {
        FinderOutcome outcome = startApplication(browser->application, {folder});
        if (!outcome.isDone()) return outcome;
    }
    return {};
}

} // namespace

FinderOutcome revealItems(std::vector<std::string> const& paths) {
    if (std::optional<FinderOutcome> const complaint = complaintAbout(paths)) return *complaint;
    FileBrowserReach const browser = reachFileBrowser();
    if (browser.reach == Reach::ByBus) return callFileBrowserService("ShowItems", paths);
    if (browser.reach == Reach::NotAtAll) return browser.outcome;
    std::set<std::string> folders;
    for (std::string const& path : paths)
        folders.insert(folderOf(path));
    return startWithFolders(folders);
}

FinderOutcome openFolders(std::vector<std::string> const& paths) {
    if (std::optional<FinderOutcome> const complaint = complaintAbout(paths)) return *complaint;
    FileBrowserReach const browser = reachFileBrowser();
    if (browser.reach == Reach::ByBus) return callFileBrowserService("ShowFolders", paths);
    if (browser.reach == Reach::NotAtAll) return browser.outcome;
    return startWithFolders({paths.begin(), paths.end()});
}

FinderOutcome showInformation(std::vector<std::string> const& paths) {
    if (std::optional<FinderOutcome> const complaint = complaintAbout(paths)) return *complaint;
    FileBrowserReach const browser = reachFileBrowser();
    if (browser.reach == Reach::ByBus) return callFileBrowserService("ShowItemProperties", paths);
    if (browser.reach == Reach::NotAtAll) return browser.outcome;
    return {FinderProblem::Refused, "The file browser shows no windows with information when it is asked to"};
}

FinderOutcome openItem(std::string const& path) {
    if (!path.starts_with('/')) return nothingThere();
    Result<FileStatus> const status = fileStatusAtPath(path);
    if (!status.hasValue()) return nothingThere();
    if (status.value().kind == FileStatus::Kind::Folder) return openFolders({path});
    std::optional<DesktopApplication> const application = defaultApplicationFor(contentTypesOf(path));
    if (!application) return {FinderProblem::NoApplication, "No application is known for the item"};
    return startApplication(*application, {path});
}

} // namespace mac
