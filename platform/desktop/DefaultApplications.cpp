#include "platform/desktop/DesktopApplication.h"
#include "platform/desktop/KeyFile.h"
#include "platform/desktop/XfceApplications.h"
#include "platform/system/ASCII.h"
#include "platform/system/XDGFolders.h"
#include <set>
#include <unistd.h>

namespace mac {

namespace {

using Names = std::vector<std::string>;

// The lists of default applications, the weightiest first: in each folder the desktop's own before the common one.
std::vector<std::string> defaultLists() {
    std::vector<std::string> folders = configFolders();
    for (std::string const& folder : applicationFolders())
        folders.push_back(folder);
    std::vector<std::string> const desktops = listInEnvironment("XDG_CURRENT_DESKTOP", "");
    std::vector<std::string> lists;
    for (std::string const& folder : folders) {
        for (std::string const& desktop : desktops)
            lists.push_back(std::string(folder).append("/").append(asciiLowercase(desktop)).append("-mimeapps.list"));
        lists.push_back(folder + "/mimeapps.list");
    }
    return lists;
}

// The entry of that name in one of the folders; a dash in the name may stand for a folder's end.
std::optional<std::string> entryPath(std::string name) {
    // A name is no path out of the folders.
    if (name.find('/') != std::string::npos) return std::nullopt;
    for (std::size_t dash = 0; dash != std::string::npos; dash = name.find('-', dash + 1)) {
        if (name[dash] == '-') name[dash] = '/';
        for (std::string const& folder : applicationFolders()) {
            std::string path = folder;
            path.append("/").append(name);
            if (::access(path.c_str(), R_OK) == 0) return path;
        }
    }
    return std::nullopt;
}

std::optional<DesktopApplication> firstApplication(Names const& names, std::set<std::string> const& removed) {
    for (std::string const& name : names) {
        std::optional<std::string> const path = removed.contains(name) ? std::nullopt : entryPath(name);
        std::optional<DesktopApplication> application = path ? applicationOfEntryAtPath(*path) : std::nullopt;
        if (application) return xfceApplication(*application).value_or(*application);
    }
    return std::nullopt;
}

// Most often the first list that there is decides: the others are not read before that is known.
std::optional<DesktopApplication> applicationFor(std::string const& contentType) {
    std::vector<KeyFile> lists;
    for (std::string const& path : defaultLists()) {
        lists.push_back(KeyFile::readFile(path));
        Names const names = lists.back().list("Default Applications", contentType);
        if (std::optional<DesktopApplication> application = firstApplication(names, {})) return application;
    }
    // What the user took away does not come back from lists that count less.
    std::set<std::string> removed;
    for (KeyFile const& file : lists) {
        Names const names = file.list("Added Associations", contentType);
        if (std::optional<DesktopApplication> application = firstApplication(names, removed)) return application;
        for (std::string& name : file.list("Removed Associations", contentType))
            removed.insert(std::move(name));
    }
    for (std::string const& folder : applicationFolders()) {
        Names const names = KeyFile::readFile(folder + "/mimeinfo.cache").list("MIME Cache", contentType);
        if (std::optional<DesktopApplication> application = firstApplication(names, removed)) return application;
    }
    return std::nullopt;
}

} // namespace

std::optional<DesktopApplication> defaultApplicationFor(std::vector<std::string> const& contentTypes) {
    for (std::string const& contentType : contentTypes) {
        if (std::optional<DesktopApplication> application = applicationFor(contentType)) return application;
    }
    return std::nullopt;
}

std::vector<std::string> configFolders() {
    std::vector<std::string> folders{configHome()};
    for (std::string& folder : listInEnvironment("XDG_CONFIG_DIRS", "/etc/xdg"))
        folders.push_back(std::move(folder));
    return folders;
}

std::vector<std::string> dataFolders() {
    std::vector<std::string> folders{dataHome()};
    for (std::string& folder : listInEnvironment("XDG_DATA_DIRS", "/usr/local/share:/usr/share"))
        folders.push_back(std::move(folder));
    return folders;
}

std::vector<std::string> applicationFolders() {
    std::vector<std::string> folders = dataFolders();
    for (std::string& folder : folders)
        folder += "/applications";
    return folders;
}

} // namespace mac
