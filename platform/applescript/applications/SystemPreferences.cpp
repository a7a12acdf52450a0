#include "platform/applescript/applications/ApplicationList.h"
#include "platform/applescript/applications/ApplicationModel.h"
#include "platform/applescript/applications/Program.h"
#include "platform/applescript/applications/TermTable.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/desktop/Desktops.h"
#include <algorithm>
#include <array>

// The application of the system's settings. Linux: its panes are shown by the settings program of the desktop.

namespace mac::applescript {

namespace {

constexpr std::int32_t CannotStartPreferences = -10810;

// How each desktop shows a pane: words of a command line, divided by blanks.
struct Pane {
    std::u16string_view name;
    std::u16string_view identifier;
    std::array<char const*, 4> commands;
};

// The commands are in the order of SettingsPanes.
constexpr auto Panes = std::to_array<Pane>({
    {u"Accounts",
     u"com.apple.preferences.users",
     {"gnome-control-center user-accounts", "systemsettings kcm_users", "users-admin", "cinnamon-settings user"}},
    {u"Appearance",
     u"com.apple.preference.general",
     {"gnome-control-center background", "systemsettings kcm_lookandfeel", "xfce4-appearance-settings",
      "cinnamon-settings themes"}},
    {u"Bluetooth",
     u"com.apple.preferences.Bluetooth",
     {"gnome-control-center bluetooth", "systemsettings kcm_bluetooth", "blueman-manager",
      "cinnamon-settings blueman"}},
    {u"Date & Time",
     u"com.apple.preference.datetime",
     {"gnome-control-center datetime", "systemsettings kcm_clock", "time-admin", "cinnamon-settings calendar"}},
    {u"Desktop & Screen Saver",
     u"com.apple.preference.desktopscreeneffect",
     {"gnome-control-center background", "systemsettings kcm_screenlocker", "xfdesktop-settings",
      "cinnamon-settings backgrounds"}},
    {u"Displays",
     u"com.apple.preference.displays",
     {"gnome-control-center display", "systemsettings kcm_kscreen", "xfce4-display-settings",
      "cinnamon-settings display"}},
    {u"Energy Saver",
     u"com.apple.preference.energysaver",
     {"gnome-control-center power", "systemsettings powerdevilprofilesconfig", "xfce4-power-manager-settings",
      "cinnamon-settings power"}},
    {u"Keyboard",
     u"com.apple.preference.keyboard",
     {"gnome-control-center keyboard", "systemsettings kcm_keyboard", "xfce4-keyboard-settings",
      "cinnamon-settings keyboard"}},
    {u"Mouse",
     u"com.apple.preference.mouse",
     {"gnome-control-center mouse", "systemsettings kcm_mouse", "xfce4-mouse-settings", "cinnamon-settings mouse"}},
    {u"Network",
     u"com.apple.preference.network",
     {"gnome-control-center network", "systemsettings kcm_networkmanagement", "nm-connection-editor",
      "cinnamon-settings network"}},
    {u"Print & Fax",
     u"com.apple.preference.printfax",
     {"gnome-control-center printers", "systemsettings kcm_printer_manager", "system-config-printer",
      "cinnamon-settings printers"}},
    {u"Sound",
     u"com.apple.preference.sound",
     {"gnome-control-center sound", "systemsettings kcm_pulseaudio", "pavucontrol", "cinnamon-settings sound"}},
});

constexpr auto Programs =
    std::to_array<char const*>({"gnome-control-center", "systemsettings", "xfce4-settings-manager", "cinnamon-settings",
                                "lxqt-config", "mate-control-center", "budgie-control-center"});

// Where a script finds the login items; the desktops have a page of their own for them.
constexpr std::u16string_view AccountsPane = u"Accounts";

constexpr auto PreferencesClasses = std::to_array<ClassTerm>({
    {u"pane", u"panes", codeOf("xppb")},
    {u"anchor", u"anchors", codeOf("xppa")},
});
constexpr auto PreferencesProperties = std::to_array<PropertyTerm>({
    {u"current pane", codeOf("xpcp")},
    {u"localized name", codeOf("locn")},
    {u"preferences window", codeOf("prfw")},
    {u"show all", codeOf("xpsa")},
});

Terminology const& systemPreferencesTerms() {
    static Terminology const terms =
        terminologyOf({.classes = PreferencesClasses, .properties = PreferencesProperties});
    return terms;
}

Value itself() { return makeObject<ApplicationObject>(ValueKind::Application, u"System Preferences", false); }

std::vector<std::string> wordsOf(std::string_view command) {
    std::vector<std::string> words;
    while (!command.empty()) {
        std::string_view const word = command.substr(0, command.find(' '));
        command.remove_prefix(std::min(word.size() + 1, command.size()));
        words.emplace_back(word);
    }
    return words;
}

ScriptError cannotRun() { return plainError(CannotStartPreferences); }

bool startOneOf(std::span<char const* const> commands) {
    return std::ranges::any_of(
        commands, [](char const* command) { return command && *command && startProgram(wordsOf(command)); });
}

// The current desktop's program before those of others that may be installed.
void startSettings() {
    DesktopKind const* const desktop = currentDesktopKind();
    bool const isStarted = (desktop && startOneOf({&desktop->settingsProgram, 1})) || startOneOf(Programs);
    if (!isStarted) throw cannotRun();
}

void startPane(Pane const& pane) {
    DesktopKind const* const desktop = currentDesktopKind();
    if (desktop && pane.name == AccountsPane && startOneOf(desktop->autostartPages)) return;
    auto const column = static_cast<std::size_t>(desktop ? desktop->panes : SettingsPanes::None);
    bool const isStarted =
        (column < pane.commands.size() && startOneOf({&pane.commands[column], 1})) || startOneOf(pane.commands);
    if (!isStarted) throw cannotRun();
}

class PaneObject final : public ModelObject {
public:
    explicit PaneObject(Pane const& pane) : m_pane(pane) {}

    Code type() const override { return codeOf("xppb"); }
    Value specifier() const override {
        return elementSpecifier(Form::Identifier, codeOf("xppb"), itself(),
                                Value::text(std::u16string(m_pane.identifier)));
    }
    std::optional<Value> property(Code code) override {
        switch (code) {
        case codeOf("pcls"):
            return Value::type(codeOf("xppb"));
        case codeOf("pnam"):
        case codeOf("locn"):
            return Value::text(std::u16string(m_pane.name));
        case codeOf("ID  "):
            return Value::text(std::u16string(m_pane.identifier));
        default:
            return {};
        }
    }
    std::vector<Code> propertyCodes() const override {
        return {codeOf("pcls"), codeOf("pnam"), codeOf("ID  "), codeOf("locn")};
    }
    // Linux: the settings programs have no places to jump to inside a pane.
    std::optional<std::vector<ModelPointer>> elements(Code elementType) override {
        if (elementType == codeOf("xppa")) return std::vector<ModelPointer>();
        return {};
    }
    Pane const& pane() const { return m_pane; }

private:
    Pane const& m_pane;
};

// The pane that a script has shown; the settings program does not tell which one it shows.
Pane const*& shownPane() {
    static Pane const* shown = nullptr;
    return shown;
}

void show(Pane const& pane) {
    startPane(pane);
    shownPane() = &pane;
}

class SystemPreferencesRoot final : public ModelObject {
public:
    Code type() const override { return codeOf("capp"); }
    Value specifier() const override { return itself(); }

    std::optional<Value> property(Code code) override {
        switch (code) {
        case codeOf("pcls"):
            return Value::type(codeOf("capp"));
        case codeOf("pnam"):
            return Value::text(u"System Preferences");
        case codeOf("ID  "):
            return Value::text(u"com.apple.systempreferences");
        case codeOf("vers"):
            return Value::text(u"8.0");
        case codeOf("prun"):
            return Value::boolean(systemPreferencesApplication().isRunning());
        case codeOf("xpcp"):
            return shownPane() ? PaneObject(*shownPane()).specifier() : Value::missing();
        default:
            return {};
        }
    }

    bool setProperty(Code code, Value const& value, TextContext const& context) override;

    std::optional<std::vector<ModelPointer>> elements(Code elementType) override {
        if (elementType != codeOf("xppb")) return {};
        std::vector<ModelPointer> all;
        all.reserve(std::size(Panes));
        for (Pane const& pane : Panes)
            all.push_back(std::make_shared<PaneObject>(pane));
        return all;
    }
};

class SystemPreferences final : public ModelApplication {
public:
    std::u16string name() const override { return u"System Preferences"; }
    std::u16string identifier() const override { return u"com.apple.systempreferences"; }
    Terminology const* terms() const override { return &systemPreferencesTerms(); }
    bool isRunning() const override { return isProgramRunning(Programs); }

    Pane const& paneOf(Value const& meant, TextContext const& context) {
        std::vector<ModelPointer> const found = objects(meant, context);
        bool const isPane = found.size() == 1 && found.front()->type() == codeOf("xppb");
        if (!isPane) throw plainError(-10010);
        return static_cast<PaneObject const&>(*found.front()).pane();
    }

protected:
    ModelPointer root() override { return std::make_shared<SystemPreferencesRoot>(); }

    std::optional<Value> carryOut(Evaluator& evaluator, ApplicationCommand const& command) override {
        switch (command.term.code) {
        case eventOf("miscactv"):
        case eventOf("ascrnoop"):
        case eventOf("aevtoapp"):
        case eventOf("aevtrapp"):
            startSettings();
            return Value();
        case eventOf("miscmvis"):
            show(paneOf(command.direct, evaluator.context()));
            return PaneObject(*shownPane()).specifier();
        case eventOf("aevtquit"):
            quitPrograms(Programs);
            shownPane() = nullptr;
            return Value();
        default:
            return {};
        }
    }
};

SystemPreferences& systemPreferences() {
    static SystemPreferences application;
    return application;
}

bool SystemPreferencesRoot::setProperty(Code code, Value const& value, TextContext const& context) {
    if (code != codeOf("xpcp")) return false;
    show(systemPreferences().paneOf(value, context));
    return true;
}

} // namespace

Application& systemPreferencesApplication() { return systemPreferences(); }

} // namespace mac::applescript
