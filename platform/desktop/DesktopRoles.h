#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mac {

// The desktop's own applications in the roles that Mac OS X's have. For implementations; any thread.

// The file of the desktop entry in the role of the bundle identifier, given in lowercase: "com.apple.finder",
// "com.apple.activitymonitor", "com.apple.systempreferences". Nothing for others, and where the desktop has none.
//
// The file browser is the default application for folders. The others are told by their categories, as the desktop's
// menus tell them: of the entries that this desktop shows and whose program is there, those made for it first, then by
// the entries' names.
std::optional<std::string> desktopEntryOfRole(std::string_view bundleIdentifier);

} // namespace mac
