#include "platform/desktop/DesktopEntries.h"
#include "platform/desktop/DesktopApplication.h"
#include "platform/desktop/KeyFile.h"
#include "platform/launchservices/DiskItem.h"
#include <algorithm>
#include <string_view>

namespace mac {

namespace {

constexpr char EntryGroup[] = "Desktop Entry";

bool liesIn(std::string_view path, std::string_view folder) {
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

} // namespace

bool isTrustedDesktopEntry(DiskItem const& item) {
    if (item.kind != DiskItem::Kind::File || item.extension() != "desktop") return false;
    return item.mayRun || std::ranges::any_of(applicationFolders(),
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
