#include "platform/desktop/session/Desktops.h"
#include "platform/desktop/session/Session.h"
#include <algorithm>

namespace mac {

namespace {

// Four desktops share the name on the bus; the variable tells which one runs.
constexpr LogOutCall GNOMELogOut{.service = "org.gnome.SessionManager",
                                 .path = "/org/gnome/SessionManager",
                                 .interface = "org.gnome.SessionManager",
                                 .method = "Logout",
                                 .arguments = LogOutCall::Arguments::UnsignedZero};
constexpr LogOutCall XfceLogOut{.service = "org.xfce.SessionManager",
                                .path = "/org/xfce/SessionManager",
                                .interface = "org.xfce.Session.Manager",
                                .method = "Logout",
                                .arguments = LogOutCall::Arguments::TrueTrue};
// Calls the service that asks, not the one that ends the session at once.
constexpr LogOutCall PlasmaLogOut{.service = "org.kde.LogoutPrompt",
                                  .path = "/LogoutPrompt",
                                  .interface = "org.kde.LogoutPrompt",
                                  .method = "promptLogout",
                                  .arguments = LogOutCall::Arguments::None};

constexpr PictureSettings GNOMEPicture{.store = PictureSettings::Store::GSettings,
                                       .schema = "org.gnome.desktop.background",
                                       .keys = {"picture-uri", "picture-uri-dark"}};

std::vector<DesktopKind> const& desktopKinds() {
    static std::vector<DesktopKind> const kinds{
        // Before GNOME, since it calls itself that, too.
        {.name = "Budgie",
         .logOutCall = &GNOMELogOut,
         .questionSetting = "gsettings get org.gnome.SessionManager logout-prompt",
         .autostartPages = {"budgie-desktop-settings"},
         .settingsProgram = "budgie-control-center",
         .panes = SettingsPanes::GNOME,
         .picture = GNOMEPicture,
         .autostart =
             {.hiddenWords = {"true", "1"}, .knowsEnabledKey = true, .knowsCondition = true, .dataFolder = "gnome"}},
        {.name = "GNOME",
         .logOutCall = &GNOMELogOut,
         .questionSetting = "gsettings get org.gnome.SessionManager logout-prompt",
         .autostartPages = {"gnome-tweaks", "gnome-control-center applications"},
         .settingsProgram = "gnome-control-center",
         .panes = SettingsPanes::GNOME,
         .picture = GNOMEPicture,
         .autostart =
             {.hiddenWords = {"true", "1"}, .knowsEnabledKey = true, .knowsCondition = true, .dataFolder = "gnome"}},
        {.name = "KDE",
         .logOutCall = &PlasmaLogOut,
         .autostartPages = {"systemsettings kcm_autostart", "systemsettings5 kcm_autostart"},
         .settingsProgram = "systemsettings",
         .panes = SettingsPanes::Plasma,
         .picture = {.store = PictureSettings::Store::Plasma},
         .autostart = {.hiddenWords = {"true", "1", "True"}, .startsBySystemd = true, .knowsKDECondition = true}},
        {.name = "LXQt",
         // Its call on the bus, and its command with "--logout", ask only if the user wished so; the plain command
         // shows a dialog.
         .logOutCommand = "lxqt-leave",
         .autostartPages = {"lxqt-config-session"},
         .settingsProgram = "lxqt-config",
         .picture = {.store = PictureSettings::Store::PCManFM},
         .autostart = {.hiddenWords = {"true", "1", "True"}, .ignoresCaseOfNames = true}},
        {.name = "MATE",
         .logOutCall = &GNOMELogOut,
         .questionSetting = "gsettings get org.mate.session logout-prompt",
         .autostartPages = {"mate-session-properties"},
         .settingsProgram = "mate-control-center",
         .picture = {.store = PictureSettings::Store::GSettings,
                     .schema = "org.mate.background",
                     .keys = {"picture-filename"},
                     .form = PictureSettings::Form::Path},
         .autostart = {.hiddenWords = {"true", "1"}, .knowsCondition = true, .dataFolder = "mate"}},
        {.name = "X-Cinnamon",
         .logOutCall = &GNOMELogOut,
         .questionSetting = "gsettings get org.cinnamon.SessionManager logout-prompt",
         .autostartPages = {"cinnamon-settings startup"},
         .settingsProgram = "cinnamon-settings",
         .panes = SettingsPanes::Cinnamon,
         .picture = {.store = PictureSettings::Store::GSettings,
                     .schema = "org.cinnamon.desktop.background",
                     .keys = {"picture-uri"}},
         .autostart = {.hiddenWords = {"true", "1"}, .knowsEnabledKey = true, .knowsCondition = true}},
        {.name = "XFCE",
         .logOutCall = &XfceLogOut,
         .questionSetting = "xfconf-query -c xfce4-session -p /general/PromptOnLogout",
         .autostartPages = {"xfce4-session-settings"},
         .settingsProgram = "xfce4-settings-manager",
         .panes = SettingsPanes::Xfce,
         .picture = {.store = PictureSettings::Store::Xfconf},
         .autostart = {.hiddenWords = {"true", "True"}, .ignoresCaseOfNames = true, .knowsRunHooks = true}},
    };
    return kinds;
}

} // namespace

DesktopKind const* currentDesktopKind() {
    std::vector<DesktopKind> const& kinds = desktopKinds();
    for (std::string const& name : currentDesktops()) {
        auto const kind = std::ranges::find(kinds, std::string_view(name), &DesktopKind::name);
        if (kind != kinds.end()) return &*kind;
    }
    return nullptr;
}

AutostartRules const& currentAutostartRules() {
    static AutostartRules const common{};
    DesktopKind const* const kind = currentDesktopKind();
    return kind ? kind->autostart : common;
}

} // namespace mac
