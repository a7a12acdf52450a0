#pragma once

#include "platform/desktop/entries/DesktopApplication.h"
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Which application the desktop uses for what. All is looked up anew at each call. For implementations; any thread.

namespace mac {

// The default application for the first of the content types ("text/plain") that has one: by the user's and the
// system's lists of defaults, then by the applications known for the type. An application whose program is not there is
// skipped. Of an Xfce entry that starts what the user prefers ("exo-open --launch FileManager"), the preferred
// application, with the entry's name and path.
std::optional<DesktopApplication> defaultApplicationFor(std::vector<std::string> const& contentTypes);

// The path of the desktop entry in the role of a Mac OS X application, by its bundle identifier in lowercase:
// "com.apple.finder", "com.apple.activitymonitor", "com.apple.systempreferences". nullopt for other identifiers, and if
// the desktop has no such application.
//
// The Finder is the default application for folders. The others are found by their categories, as menus find them:
// among the entries that this desktop shows and whose program is there, those made for this desktop first, then by file
// name.
std::optional<std::string> desktopEntryOfRole(std::string_view bundleIdentifier);

} // namespace mac
