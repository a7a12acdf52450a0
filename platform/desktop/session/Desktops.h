#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace mac {

// The table of desktops: what each does in its own way about sessions, settings and the programs that start at log-in.
// Supporting another one is one row. For implementations; any thread.

// A D-Bus call on the session's bus that shows the desktop's question whether to log out.
struct LogOutCall {
    std::string_view service;
    std::string_view path;
    std::string_view interface;
    std::string_view method;
    enum class Arguments {
        None,
        // The number 0: ask.
        UnsignedZero,
        // Show the dialog, and allow the session to be saved.
        TrueTrue,
    };
    Arguments arguments;
};

// A command, words divided by blanks, that prints "false" if the user wants no question before logging out.
using QuestionSetting = std::string_view;

// A column of the settings programs' panes.
enum class SettingsPanes : std::size_t { GNOME, Plasma, Xfce, Cinnamon, None };

// How the desktop starts the programs of autostart entries.
struct AutostartRules {
    // The values of Hidden that hide an entry.
    std::vector<std::string_view> hiddenWords{"true"};
    // Whether OnlyShowIn and NotShowIn name desktops in any case.
    bool ignoresCaseOfNames{false};
    // X-GNOME-Autostart-enabled=false hides an entry.
    bool knowsEnabledKey{false};
    // AutostartCondition is looked at.
    bool knowsCondition{false};
    // The keys of Xfce: X-XFCE-Autostart-Override and RunHook.
    bool knowsRunHooks{false};
    // The entries are started by systemd: X-systemd-skip and X-GNOME-Autostart-Phase hide them.
    bool startsBySystemd{false};
    // X-KDE-autostart-condition is looked at.
    bool knowsKDECondition{false};
    // The folder of a name in the data folders whose "autostart" is read between the user's and the system's; empty
    // without one.
    std::string_view dataFolder{};
};

// Where a desktop keeps the picture behind its icons.
struct PictureSettings {
    enum class Store {
        // Nowhere that programs are told of.
        None,
        GSettings,
        // The properties "last-image" of Xfce's desktop, one for each screen and workspace.
        Xfconf,
        // A file of Plasma's shell; set by a command of its own.
        Plasma,
        // The settings of LXQt's file browser, which draws the desktop; set by its command.
        PCManFM,
    };
    Store store{Store::None};
    // For GSettings: where the picture is, and its keys, the first of which is read.
    std::string_view schema{};
    std::array<std::string_view, 2> keys{};
    enum class Form { URI, Path };
    Form form{Form::URI};
};

struct DesktopKind {
    // The name in XDG_CURRENT_DESKTOP.
    std::string_view name;
    // With neither call nor command there is no log-out that asks first.
    LogOutCall const* logOutCall{nullptr};
    // A command that always asks.
    std::string_view logOutCommand{};
    QuestionSetting questionSetting{};
    // Commands that show the page of the programs that start at log-in, the first that is installed counts. Each is
    // words divided by blanks.
    std::array<char const*, 2> autostartPages{};
    // The settings program; empty without one.
    char const* settingsProgram{""};
    SettingsPanes panes{SettingsPanes::None};
    PictureSettings picture{};
    AutostartRules autostart{};
};

// The row of the desktop that this session runs; null without one.
DesktopKind const* currentDesktopKind();
// The rules of the current desktop; those that all desktops have in common without a row.
AutostartRules const& currentAutostartRules();

} // namespace mac
