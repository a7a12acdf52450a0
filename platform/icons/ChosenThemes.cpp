#include "platform/desktop/entries/KeyFile.h"
#include "platform/desktop/session/Session.h"
#include "platform/icons/IconTheme.h"
#include "platform/icons/PictureToolkit.h"
#include "platform/system/BytePath.h"
#include <algorithm>

namespace mac {

namespace {

// The settings in which desktops keep the name of the theme.
struct ThemeSetting {
    char const* file;
    char const* group;
    char const* key;
};
constexpr ThemeSetting PlasmaSetting{"kdeglobals", "Icons", "Theme"};
constexpr ThemeSetting GTKSetting{"gtk-3.0/settings.ini", "Settings", "gtk-icon-theme-name"};

std::string textOfSetting(ThemeSetting const& setting) {
    for (std::string const& folder : configFolders()) {
        KeyFile const file = KeyFile::readFile(BytePath(folder).joined(setting.file));
        std::string name = file.text(setting.group, setting.key).value_or("");
        if (!name.empty()) return name;
    }
    return {};
}

std::string themeInSettings() {
    std::vector<std::string> const desktops = currentDesktops();
    bool const isPlasma = std::ranges::find(desktops, "KDE") != desktops.end();
    std::string name = textOfSetting(isPlasma ? PlasmaSetting : GTKSetting);
    return name.empty() ? textOfSetting(isPlasma ? GTKSetting : PlasmaSetting) : name;
}

// The toolkit names the last resort where the desktop tells it none.
std::string themeOfToolkit() {
    std::string name = pictureToolkit().iconThemeName();
    return name == "hicolor" ? std::string() : name;
}

} // namespace

std::vector<std::string> chosenThemes() {
    std::vector<std::string> names;
    for (std::string const& name :
         {themeOfToolkit(), themeInSettings(), std::string("hicolor"), std::string("Adwaita"), std::string("breeze")}) {
        bool const isName = !name.empty() && name.find('/') == std::string::npos && !name.starts_with('.');
        if (isName && std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    return names;
}

} // namespace mac
