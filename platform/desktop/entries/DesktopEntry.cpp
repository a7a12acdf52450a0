#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/desktop/session/Session.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <unistd.h>

namespace mac {

namespace {

constexpr char EntryGroup[] = "Desktop Entry";
constexpr char ActionGroup[] = "Desktop Action ";
constexpr std::string_view Extension = ".desktop";

std::optional<DesktopEntry::Words> wordsOf(std::optional<std::string> const& commandLine) {
    std::optional<DesktopEntry::Words> words = commandLine ? wordsOfCommandLine(*commandLine) : std::nullopt;
    return words && !words->empty() ? std::move(words) : std::nullopt;
}

bool haveCommon(DesktopEntry::Words const& some, DesktopEntry::Words const& others) {
    return std::ranges::any_of(
        some, [&](std::string const& word) { return std::ranges::find(others, word) != others.end(); });
}

bool isNoText(std::optional<std::string> const& text) { return !text || text->empty(); }

} // namespace

DesktopEntry DesktopEntry::readFile(std::string const& path) {
    DesktopEntry entry;
    entry.m_path = path;
    entry.m_file = KeyFile::readFile(path);
    return entry;
}

DesktopEntry DesktopEntry::read(std::string_view text, std::string path) {
    DesktopEntry entry;
    entry.m_path = std::move(path);
    entry.m_file = KeyFile::read(text);
    return entry;
}

std::optional<std::string> DesktopEntry::text(std::string const& key) const { return m_file.text(EntryGroup, key); }

DesktopEntry::Words DesktopEntry::list(std::string const& key) const { return m_file.list(EntryGroup, key); }

bool DesktopEntry::isTrue(std::string const& key) const { return m_file.value(EntryGroup, key) == "true"; }

std::optional<std::string> DesktopEntry::name() const {
    std::optional<std::string> name = text("Name");
    return isNoText(name) ? std::nullopt : std::move(name);
}

std::optional<std::string> DesktopEntry::localizedName(Words const& languages) const {
    for (std::string const& language : languages) {
        std::optional<std::string> name = text("Name[" + language + "]");
        if (!isNoText(name)) return name;
    }
    return name();
}

std::optional<DesktopEntry::Words> DesktopEntry::command() const { return wordsOf(text("Exec")); }

std::optional<DesktopEntry::Words> DesktopEntry::commandOfAction(std::string_view name) const {
    for (std::string const& action : list("Actions")) {
        if (asciiLowercase(action) != asciiLowercase(name)) continue;
        std::optional<std::string> const commandLine = m_file.text(ActionGroup + action, "Exec");
        if (commandLine) return wordsOf(commandLine);
    }
    return std::nullopt;
}

bool DesktopEntry::isShownHere() const {
    if (type() != "Application" || isHidden() || isTrue("NoDisplay")) return false;
    bool const isForAll = list("OnlyShowIn").empty();
    return (isForAll || isMadeForThisDesktop()) && !haveCommon(list("NotShowIn"), currentDesktops());
}

bool DesktopEntry::isMadeForThisDesktop() const { return haveCommon(list("OnlyShowIn"), currentDesktops()); }

bool DesktopEntry::canBeStarted() const {
    std::optional<Words> const words = isHidden() ? std::nullopt : command();
    if (!words || !resolvedProgram(words->front())) return false;
    std::optional<std::string> const condition = text("TryExec");
    return isNoText(condition) || resolvedProgram(*condition);
}

std::string_view InstalledEntry::identifier() const {
    return std::string_view(fileName).substr(0, fileName.size() - Extension.size());
}

std::vector<std::string> applicationFolders() {
    std::vector<std::string> folders = dataFolders();
    for (std::string& folder : folders)
        appendComponent(folder, "applications");
    return folders;
}

std::vector<InstalledEntry> installedEntries() {
    std::vector<InstalledEntry> entries;
    std::set<std::string> seen;
    for (std::string const& folder : applicationFolders()) {
        for (std::string const& name : namesInFolder(folder, LinkAtEnd::IsFollowed).valueOr({})) {
            if (name.ends_with(Extension) && seen.insert(name).second)
                entries.push_back({name, BytePath(folder).joined(name)});
        }
    }
    return entries;
}

std::optional<std::string> pathOfEntryWithID(std::string identifier) {
    // An ID is no path out of the folders.
    if (identifier.find('/') != std::string::npos) return std::nullopt;
    for (std::size_t dash = 0; dash != std::string::npos; dash = identifier.find('-', dash + 1)) {
        if (identifier[dash] == '-') identifier[dash] = '/';
        for (std::string const& folder : applicationFolders()) {
            std::string path = BytePath(folder).joined(identifier);
            if (::access(path.c_str(), R_OK) == 0) return path;
        }
    }
    return std::nullopt;
}

std::optional<std::string> resolvedProgram(std::string const& word) {
    std::vector<std::string> paths{word};
    if (word.find('/') == std::string::npos) {
        paths = listInEnvironment("PATH", "/usr/local/bin:/usr/bin:/bin");
        for (std::string& path : paths)
            path = BytePath(path).joined(word);
    }
    for (std::string const& path : paths) {
        if (::access(path.c_str(), X_OK) != 0) continue;
        std::unique_ptr<char, decltype(&::free)> const resolved(::realpath(path.c_str(), nullptr), &::free);
        if (resolved) return std::string(resolved.get());
    }
    return std::nullopt;
}

} // namespace mac
