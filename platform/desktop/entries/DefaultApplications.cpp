#include "platform/desktop/entries/DefaultApplications.h"
#include "platform/desktop/browser/FileBrowser.h"
#include "platform/desktop/entries/KeyFile.h"
#include "platform/desktop/session/Session.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include <algorithm>
#include <array>
#include <set>
#include <tuple>

namespace mac {

namespace {

using Names = std::vector<std::string>;

// Programs that start what the user prefers for a category, as "exo-open --launch FileManager" does.
constexpr std::array<std::string_view, 2> PreferenceLaunchers{"exo-open", "xfce4-mime-helper"};

// Applications in a role have both categories. One with the unwanted category is a tool for terminals.
struct Role {
    std::string_view identifier;
    std::array<std::string_view, 2> categories;
    std::string_view unwanted;
};

constexpr std::array<Role, 2> Roles{{
    {"com.apple.activitymonitor", {"System", "Monitor"}, "ConsoleOnly"},
    {"com.apple.systempreferences", {"Settings", "DesktopSettings"}, "ConsoleOnly"},
}};

// The user's choice for the category, or the system's default.
std::optional<std::string> preferredHelper(std::string const& category) {
    for (std::string const& folder : configFolders()) {
        KeyFile const choices = KeyFile::readFile(BytePath(folder).joined("xfce4/helpers.rc"));
        if (std::optional<std::string> name = choices.text("", category); name && !name->empty()) return name;
    }
    return std::nullopt;
}

std::optional<DesktopEntry> helperNamed(std::string const& name) {
    // A name is no path out of the folders.
    if (name.find('/') != std::string::npos) return std::nullopt;
    for (std::string const& folder : dataFolders()) {
        DesktopEntry entry = DesktopEntry::readFile(BytePath(folder).joined("xfce4/helpers/" + name + ".desktop"));
        if (entry.type() == "X-XFCE-Helper") return entry;
    }
    return std::nullopt;
}

// The words of the helper's command, in which %B stands for the program and "%s" for what is to be opened.
Names wordsOfHelper(DesktopEntry const& helper, std::string const& program) {
    for (std::string const& line : helper.list("X-XFCE-CommandsWithParameter")) {
        std::optional<Names> words = wordsOfCommandLine(line);
        if (!words || words->empty() || words->front() != "%B") continue;
        words->front() = program;
        std::ranges::replace(*words, "%s", "%u");
        return *words;
    }
    return {program, "%u"};
}

// The application that a preference launcher starts; nullopt for other applications, and for a choice whose program is
// not there.
std::optional<DesktopApplication> preferredApplication(DesktopApplication const& launcher) {
    bool const isByCategory = launcher.words.size() > 2 && launcher.words[1] == "--launch";
    bool const isLauncher =
        std::ranges::find(PreferenceLaunchers, BytePath(launcher.executable).leaf()) != PreferenceLaunchers.end();
    std::optional<std::string> const name =
        isByCategory && isLauncher ? preferredHelper(launcher.words[2]) : std::nullopt;
    std::optional<DesktopEntry> const helper = name ? helperNamed(*name) : std::nullopt;
    if (!helper) return std::nullopt;
    for (std::string const& binary : helper->list("X-XFCE-Binaries")) {
        std::optional<std::string> const program = resolvedProgram(binary);
        if (!program) continue;
        DesktopApplication chosen = launcher;
        chosen.executable = *program;
        chosen.words = wordsOfHelper(*helper, binary);
        return chosen;
    }
    return std::nullopt;
}

// The lists of default applications by precedence: in each folder the desktop's own before the common one.
Names defaultLists() {
    Names folders = configFolders();
    std::ranges::move(applicationFolders(), std::back_inserter(folders));
    Names const desktops = currentDesktops();
    Names lists;
    for (std::string const& folder : folders) {
        for (std::string const& desktop : desktops)
            lists.push_back(BytePath(folder).joined(asciiLowercase(desktop) + "-mimeapps.list"));
        lists.push_back(BytePath(folder).joined("mimeapps.list"));
    }
    return lists;
}

std::optional<DesktopApplication> firstApplication(Names const& identifiers, std::set<std::string> const& removed) {
    for (std::string const& identifier : identifiers) {
        std::optional<std::string> const path =
            removed.contains(identifier) ? std::nullopt : pathOfEntryWithID(identifier);
        std::optional<DesktopApplication> application =
            path ? applicationOfEntry(DesktopEntry::readFile(*path)) : std::nullopt;
        if (application) return preferredApplication(*application).value_or(*application);
    }
    return std::nullopt;
}

// Mostly the first list decides, so each is read only once those before it have not.
std::optional<DesktopApplication> applicationFor(std::string const& contentType) {
    std::vector<KeyFile> lists;
    for (std::string const& path : defaultLists()) {
        lists.push_back(KeyFile::readFile(path));
        Names const names = lists.back().list("Default Applications", contentType);
        if (std::optional<DesktopApplication> application = firstApplication(names, {})) return application;
    }
    // What the user removed is not added by lists of less precedence.
    std::set<std::string> removed;
    for (KeyFile const& file : lists) {
        Names const names = file.list("Added Associations", contentType);
        if (std::optional<DesktopApplication> application = firstApplication(names, removed)) return application;
        for (std::string& name : file.list("Removed Associations", contentType))
            removed.insert(std::move(name));
    }
    for (std::string const& folder : applicationFolders()) {
        Names const names =
            KeyFile::readFile(BytePath(folder).joined("mimeinfo.cache")).list("MIME Cache", contentType);
        if (std::optional<DesktopApplication> application = firstApplication(names, removed)) return application;
    }
    return std::nullopt;
}

bool fits(DesktopEntry const& entry, Role const& role) {
    Names const categories = entry.list("Categories");
    auto const has = [&](std::string_view category) {
        return std::ranges::find(categories, category) != categories.end();
    };
    return std::ranges::all_of(role.categories, has) && !has(role.unwanted);
}

std::optional<std::string> entryOfRole(Role const& role) {
    std::set<std::tuple<bool, std::string, std::string>> found;
    for (InstalledEntry const& installed : installedEntries()) {
        DesktopEntry const entry = DesktopEntry::readFile(installed.path);
        if (!fits(entry, role) || !entry.isShownHere() || !entry.canBeStarted()) continue;
        found.emplace(!entry.isMadeForThisDesktop(), installed.fileName, installed.path);
    }
    if (found.empty()) return std::nullopt;
    return std::get<2>(*found.begin());
}

} // namespace

std::optional<DesktopApplication> defaultApplicationFor(std::vector<std::string> const& contentTypes) {
    for (std::string const& contentType : contentTypes) {
        if (std::optional<DesktopApplication> application = applicationFor(contentType)) return application;
    }
    return std::nullopt;
}

std::optional<std::string> desktopEntryOfRole(std::string_view bundleIdentifier) {
    if (bundleIdentifier == "com.apple.finder") {
        std::optional<FileBrowser> const browser = defaultFileBrowser();
        return browser ? std::optional(browser->application.entryPath) : std::nullopt;
    }
    auto const* const role = std::ranges::find(Roles, bundleIdentifier, &Role::identifier);
    return role == Roles.end() ? std::nullopt : entryOfRole(*role);
}

} // namespace mac
