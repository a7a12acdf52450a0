#pragma once

#include "platform/icons/Picture.h"
#include <array>
#include <string>
#include <vector>

namespace mac {

// The sides in pixels in which icons of items are shown: small, large, huge and thumbnail.
inline constexpr std::array IconSides{16, 32, 48, 128};

// The pictures of an icon in the sides above, the smallest first, and larger ones behind them; each is shown at as many
// points as it has pixels. Sides that are missing are scaled from the next larger picture, else from the largest.
// Pictures that are no squares get transparent edges. Empty for no pictures.
std::vector<SharedPicture> picturesInIconSides(std::vector<Picture> pictures);

// The pictures, in the sides above, of the first of the names that the icon theme has; empty where it has none. The
// theme is the desktop's, with those that it inherits from; behind them "hicolor", "Adwaita" and "breeze". What was
// looked up is remembered until settings or folders of themes change. For implementations; any thread.
//
// Linux: the theme is the toolkit's where there is an application object, else the one named in kdeglobals (Plasma) or
// gtk-3.0/settings.ini.
std::vector<SharedPicture> picturesInTheme(std::vector<std::string> const& names);

// The pictures of a picture's file by its path, whichever of the formats of themes it has (PNG, SVG, XPM); empty for
// another file. For implementations; any thread.
std::vector<SharedPicture> picturesInThemeFile(std::string const& path);

// The names of the themes in which pictures are looked up before those that they inherit from.
std::vector<std::string> chosenThemes();

} // namespace mac
