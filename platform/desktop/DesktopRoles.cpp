#include "platform/desktop/DesktopRoles.h"
#include "platform/desktop/DesktopApplication.h"
#include "platform/desktop/FileBrowser.h"
#include "platform/desktop/KeyFile.h"
#include "platform/system/FolderContents.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <array>
#include <set>
#include <tuple>

namespace mac {

namespace {

constexpr char EntryGroup[] = "Desktop Entry";

using Words = std::vector<std::string>;

// Categories that an application in the role has, all of them; and one that it has not, since tools for one thing alone
// stand beside the application for all.
struct Role {
    std::string_view identifier;
    std::array<std::string_view, 2> categories;
    std::string_view unwanted;
};

constexpr std::array<Role, 2> Roles{{
    {"com.apple.activitymonitor", {"System", "Monitor"}, "ConsoleOnly"},
    {"com.apple.systempreferences", {"Settings", "DesktopSettings"}, "ConsoleOnly"},
}};

bool has(Words const& words, std::string_view word) { return std::ranges::find(words, word) != words.end(); }

bool isOneOf(Words const& desktops, Words const& listed) {
    return std::ranges::any_of(listed, [&](std::string const& desktop) { return has(desktops, desktop); });
}

// Its program is there, and what else it says that it needs.
bool canBeStarted(std::string const& path, KeyFile const& entry) {
    std::string const needed = entry.text(EntryGroup, "TryExec").value_or("");
    return applicationOfEntryAtPath(path) && (needed.empty() || resolvedProgram(needed));
}

bool isShown(KeyFile const& entry, Words const& desktops) {
    if (entry.value(EntryGroup, "Type") != "Application") return false;
    if (entry.value(EntryGroup, "Hidden") == "true" || entry.value(EntryGroup, "NoDisplay") == "true") return false;
    Words const only = entry.list(EntryGroup, "OnlyShowIn");
    return (only.empty() || isOneOf(desktops, only)) && !isOneOf(desktops, entry.list(EntryGroup, "NotShowIn"));
}

bool fits(KeyFile const& entry, Role const& role) {
    Words const categories = entry.list(EntryGroup, "Categories");
    return !has(categories, role.unwanted) &&
           std::ranges::all_of(role.categories, [&](std::string_view category) { return has(categories, category); });
}

// Of entries of one name those in weightier folders hide the others.
std::optional<std::string> entryOf(Role const& role) {
    Words const desktops = listInEnvironment("XDG_CURRENT_DESKTOP", "");
    std::set<std::string> seen;
    std::set<std::tuple<bool, std::string, std::string>> found;
    for (std::string const& folder : applicationFolders()) {
        for (std::string const& name : namesInFolder(folder, LinkAtEnd::IsFollowed).valueOr({})) {
            if (!name.ends_with(".desktop") || !seen.insert(name).second) continue;
            std::string const path = std::string(folder).append("/").append(name);
            KeyFile const entry = KeyFile::readFile(path);
            if (!fits(entry, role) || !isShown(entry, desktops) || !canBeStarted(path, entry)) continue;
            bool const isForOthers = !isOneOf(desktops, entry.list(EntryGroup, "OnlyShowIn"));
            found.emplace(isForOthers, name, path);
        }
    }
    if (found.empty()) return std::nullopt;
    return std::get<2>(*found.begin());
}

} // namespace

std::optional<std::string> desktopEntryOfRole(std::string_view bundleIdentifier) {
    if (bundleIdentifier == "com.apple.finder") {
        std::optional<FileBrowser> const browser = defaultFileBrowser();
        return browser ? std::optional(browser->application.entryPath) : std::nullopt;
    }
    auto const* const role = std::ranges::find(Roles, bundleIdentifier, &Role::identifier);
    return role == Roles.end() ? std::nullopt : entryOf(*role);
}

} // namespace mac
