#include "platform/launchservices/DesktopEntries.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/processes/KeyFile.h"
#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace mac {

namespace {

constexpr char EntryGroup[] = "Desktop Entry";

std::string environment(char const* name, std::string const& fallback) {
    char const* const value = std::getenv(name);
    return value && *value ? value : fallback;
}

bool liesIn(std::string_view path, std::string_view folder) {
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

} // namespace

std::vector<std::string> applicationEntryFolders() {
    std::vector<std::string> folders{environment("XDG_DATA_HOME", environment("HOME", "/") + "/.local/share")};
    std::string const list = environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    for (std::size_t begin = 0; begin <= list.size();) {
        std::size_t const end = std::min(list.find(':', begin), list.size());
        // A relative folder is none, the standard says.
        if (end > begin && list[begin] == '/') folders.push_back(list.substr(begin, end - begin));
        begin = end + 1;
    }
    for (std::string& folder : folders)
        folder += "/applications";
    return folders;
}

bool isTrustedDesktopEntry(DiskItem const& item) {
    if (item.kind != DiskItem::Kind::File || item.extension() != "desktop") return false;
    return item.mayRun || std::ranges::any_of(applicationEntryFolders(),
                                              [&](std::string const& folder) { return liesIn(item.path, folder); });
}

NSString nameOfDesktopEntry(std::string const& path, std::vector<std::string> const& languages) {
    return nameInDesktopEntry(KeyFile::readFile(path), languages);
}

NSString nameInDesktopEntry(KeyFile const& entry, std::vector<std::string> const& languages) {
    for (std::string const& language : languages) {
        std::optional<std::string> const name = entry.text(EntryGroup, "Name[" + language + "]");
        if (name && !name->empty()) return NSString::stringWithFileSystemRepresentation_(*name);
    }
    std::optional<std::string> const name = entry.text(EntryGroup, "Name");
    if (!name || name->empty()) return nil;
    return NSString::stringWithFileSystemRepresentation_(*name);
}

} // namespace mac
