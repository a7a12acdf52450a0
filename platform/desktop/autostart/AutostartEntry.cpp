#include "platform/desktop/autostart/Autostart.h"
#include "platform/desktop/autostart/AutostartText.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/desktop/session/Desktops.h"
#include "platform/desktop/session/Session.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <charconv>

namespace mac {

namespace {

bool isFalse(DesktopEntry const& entry, char const* key) { return entry.text(key) == "false"; }

bool isAnyOf(std::vector<std::string_view> const& words, std::string const& word) {
    return std::ranges::find(words, word) != words.end();
}

bool namesThisDesktop(DesktopEntry::Words const& names, AutostartRules const& rules) {
    if (names.empty()) return false;
    std::vector<std::string> const current = currentDesktops();
    return std::ranges::any_of(names, [&](std::string const& name) {
        return std::ranges::any_of(current, [&](std::string const& desktop) {
            return name == desktop || (rules.ignoresCaseOfNames && asciiLowercase(name) == asciiLowercase(desktop));
        });
    });
}

bool isForThisDesktop(DesktopEntry const& entry, AutostartRules const& rules) {
    if (namesThisDesktop(entry.list("NotShowIn"), rules)) return false;
    if (rules.knowsRunHooks && entry.text("X-XFCE-Autostart-Override") == "true") return true;
    DesktopEntry::Words const names = entry.list("OnlyShowIn");
    return names.empty() || namesThisDesktop(names, rules);
}

// "if-exists FILE" or "unless-exists FILE", in the user's settings; other conditions are taken to hold.
bool meetsCondition(DesktopEntry const& entry) {
    std::string const condition = entry.text("AutostartCondition").value_or("");
    std::size_t const blank = condition.find(' ');
    if (blank == std::string::npos) return true;
    bool const exists = pathExists(BytePath(configHome()).joined(condition.substr(blank + 1)));
    if (condition.starts_with("if-exists ")) return exists;
    return !condition.starts_with("unless-exists ") || !exists;
}

// "FILE:GROUP:KEY:DEFAULT": a truth value in a file of the user's settings.
bool meetsKDECondition(DesktopEntry const& entry) {
    std::string const condition = entry.text("X-KDE-autostart-condition").value_or("");
    std::size_t const first = condition.find(':');
    std::size_t const second = condition.find(':', first + 1);
    std::size_t const third = condition.find(':', second + 1);
    if (first == std::string::npos || second == std::string::npos || third == std::string::npos) return true;
    KeyFile const file = KeyFile::readFile(BytePath(configHome()).joined(condition.substr(0, first)));
    std::string const fallback = condition.substr(third + 1);
    std::string const value =
        file.text(condition.substr(first + 1, second - first - 1), condition.substr(second + 1, third - second - 1))
            .value_or(fallback);
    return asciiLowercase(value) == "true";
}

bool isLeftOutBySystemd(DesktopEntry const& entry) {
    return entry.text("X-systemd-skip") == "true" || !entry.text("X-GNOME-Autostart-Phase").value_or("").empty();
}

bool startsHere(DesktopEntry const& entry, AutostartRules const& rules) {
    std::string const type = entry.type();
    if (!type.empty() && type != "Application") return false;
    if (isAnyOf(rules.hiddenWords, entry.text("Hidden").value_or(""))) return false;
    if (!isForThisDesktop(entry, rules)) return false;
    if (rules.knowsEnabledKey && isFalse(entry, "X-GNOME-Autostart-enabled")) return false;
    if (rules.knowsCondition && !meetsCondition(entry)) return false;
    if (rules.knowsKDECondition && !meetsKDECondition(entry)) return false;
    if (rules.startsBySystemd && isLeftOutBySystemd(entry)) return false;
    // Run hooks other than 0 start it at other events than the log-in.
    if (rules.knowsRunHooks && entry.text("RunHook").value_or("0") != "0") return false;
    std::string const condition = entry.text("TryExec").value_or("");
    return condition.empty() || resolvedProgram(condition);
}

std::optional<AutostartEntry::Own> ownPartOf(DesktopEntry const& entry) {
    std::optional<std::string> const text = entry.text(AutostartOrderKey);
    if (!text) return std::nullopt;
    AutostartEntry::Own own{.note = entry.text(AutostartNoteKey).value_or("")};
    std::from_chars(text->data(), text->data() + text->size(), own.order);
    return own;
}

} // namespace

AutostartEntry AutostartEntry::of(DesktopEntry const& file, AutostartRules const& rules) {
    AutostartEntry entry{.command = file.text("Exec").value_or("")};
    bool const isEntry = !entry.command.empty() || !file.type().empty() || file.name() || file.text("Hidden");
    if (!isEntry) return entry;
    entry.own = ownPartOf(file);
    bool const hasCommand = entry.command.find_first_not_of(" \t") != std::string::npos;
    entry.standing = hasCommand && startsHere(file, rules) ? Standing::Starts : Standing::Masks;
    return entry;
}

} // namespace mac
