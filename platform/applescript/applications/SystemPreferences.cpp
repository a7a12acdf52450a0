#include "platform/applescript/applications/ApplicationModel.h"
#include "platform/applescript/applications/CommonTerms.h"
#include "platform/applescript/applications/Program.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/desktop/session/Desktops.h"
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

constexpr Code PaneCode = codeOf("xppb");
constexpr Code AnchorCode = codeOf("xppa");

class PaneObject final : public ModelObject {
public:
    explicit PaneObject(Pane const& pane) : m_pane(pane) {}

    ClassRow const& row() const override;
    Value specifier() const override { return elementSpecifier(Form::Identifier, PaneCode, itself(), identifier()); }
    Value name() const { return Value::text(std::u16string(m_pane.name)); }
    Value identifier() const { return Value::text(std::u16string(m_pane.identifier)); }
    // Linux: the settings programs have no places to jump to inside a pane.
    std::optional<std::vector<ModelPointer>> anchors(Code /*elementType*/) const { return std::vector<ModelPointer>(); }
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

constexpr auto PaneProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&PaneObject::name>},
    {u"localized name", codeOf("locn"), codes::TextType, reading<&PaneObject::name>},
    {u"id", codes::Identifier, codes::TextType, reading<&PaneObject::identifier>},
});
constexpr auto PaneElements = std::to_array<ElementRow>({{AnchorCode, listing<&PaneObject::anchors>}});
constexpr ClassRow PaneRow{
    .name = u"pane", .plural = u"panes", .code = PaneCode, .properties = PaneProperties, .elements = PaneElements};
constexpr ClassRow AnchorRow{.name = u"anchor", .plural = u"anchors", .code = AnchorCode};

ClassRow const& PaneObject::row() const { return PaneRow; }

Pane const& paneOf(Value const& meant, TextContext const& context);

class SystemPreferencesRoot final : public ModelObject {
public:
    ClassRow const& row() const override;
    Value specifier() const override { return itself(); }

    Value name() const { return Value::text(u"System Preferences"); }
    Value identifier() const { return Value::text(u"com.apple.systempreferences"); }
    Value version() const { return Value::text(u"8.0"); }
    Value isRunning() const { return Value::boolean(systemPreferencesApplication().isRunning()); }
    Value currentPane() const { return shownPane() ? PaneObject(*shownPane()).specifier() : Value::missing(); }
    bool setCurrentPane(Value const& value, TextContext const& context) {
        show(paneOf(value, context));
        return true;
    }
    std::optional<std::vector<ModelPointer>> panes(Code /*elementType*/) const {
        std::vector<ModelPointer> all;
        all.reserve(std::size(Panes));
        for (Pane const& pane : Panes)
            all.push_back(std::make_shared<PaneObject>(pane));
        return all;
    }
};

constexpr auto PreferencesProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&SystemPreferencesRoot::name>},
    {u"id", codes::Identifier, codes::TextType, reading<&SystemPreferencesRoot::identifier>},
    {u"version", codes::Version, codes::TextType, reading<&SystemPreferencesRoot::version>},
    {u"running", codes::Running, codes::BooleanType, reading<&SystemPreferencesRoot::isRunning>},
    {u"current pane", codeOf("xpcp"), codes::ReferenceType, reading<&SystemPreferencesRoot::currentPane>,
     writing<&SystemPreferencesRoot::setCurrentPane>},
});
constexpr auto PreferencesElements = std::to_array<ElementRow>({{PaneCode, listing<&SystemPreferencesRoot::panes>}});
constexpr ClassRow PreferencesRow{.name = u"",
                                  .plural = u"",
                                  .code = codes::Application,
                                  .properties = PreferencesProperties,
                                  .elements = PreferencesElements};

ClassRow const& SystemPreferencesRoot::row() const { return PreferencesRow; }

Value startPreferences(ModelApplication& /*application*/, Evaluator& /*evaluator*/,
                       ApplicationCommand const& /*command*/) {
    startSettings();
    return {};
}

Value revealPane(ModelApplication& /*application*/, Evaluator& evaluator, ApplicationCommand const& command) {
    show(paneOf(command.direct, evaluator.context()));
    return PaneObject(*shownPane()).specifier();
}

Value quitPreferences(ModelApplication& /*application*/, Evaluator& /*evaluator*/,
                      ApplicationCommand const& /*command*/) {
    quitPrograms(Programs);
    shownPane() = nullptr;
    return {};
}

constexpr auto PreferencesCommands = std::to_array<CommandRow>({
    {common::Activate, startPreferences},
    {common::Launch, startPreferences},
    {common::Run, startPreferences},
    {common::Reopen, startPreferences},
    {common::Reveal, revealPane},
    {common::Quit, quitPreferences},
});
constexpr auto PreferencesClasses = std::to_array<ClassRow const*>({&PreferencesRow, &PaneRow, &AnchorRow});

class SystemPreferences final : public ModelApplication {
public:
    std::u16string name() const override { return u"System Preferences"; }
    std::u16string identifier() const override { return u"com.apple.systempreferences"; }
    bool isRunning() const override { return isProgramRunning(Programs); }
    Dictionary const& dictionary() const override {
        static Dictionary const all{.classes = PreferencesClasses, .commands = PreferencesCommands};
        return all;
    }

protected:
    ModelPointer root() override { return std::make_shared<SystemPreferencesRoot>(); }
};

SystemPreferences& systemPreferences() {
    static SystemPreferences application;
    return application;
}

Pane const& paneOf(Value const& meant, TextContext const& context) {
    std::vector<ModelPointer> const found = systemPreferences().objects(meant, context);
    bool const isPane = found.size() == 1 && found.front()->type() == PaneCode;
    if (!isPane) throw plainError(errors::NotOfThisClass);
    return static_cast<PaneObject const&>(*found.front()).pane();
}

} // namespace

Application& systemPreferencesApplication() { return systemPreferences(); }

} // namespace mac::applescript
