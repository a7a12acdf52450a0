#pragma once

#include "platform/desktop/entries/StartedItem.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// The text of the autostart entries that this program writes. For implementations; any thread.

// The keys of an own entry beside the usual ones.
inline constexpr char AutostartOrderKey[] = "X-Framekeeper-Order";
inline constexpr char AutostartNoteKey[] = "X-Framekeeper-Item";

// Whether every desktop reads the path in double quotes alike: valid UTF-8 without control characters and without
// " $ % ' = \ `, of which each has a meaning to one of them.
bool isReadAlikeByDesktops(std::string_view path);

struct NewAutostartEntry {
    // The program to start. Empty to let the launcher find it in the bundle at log-in.
    std::string program{};
    // The bundle, or the program again.
    std::string item{};
    unsigned long order{0};
    // A text without line ends, backslashes and blanks at its ends.
    std::string note{};
    // The path of the launcher.
    std::string launcher{loginLauncherPath()};
};

// Whether the entry's command line names the launcher: without a program, and for one whose path not every desktop
// reads alike.
bool needsLauncher(NewAutostartEntry const& entry);

// The name for people is the item's file name without ".app".
std::string textOfAutostartEntry(NewAutostartEntry const& entry);

// An entry that hides those of its name in later folders.
std::string textOfAutostartMask(std::string_view fileName);

// The beginning of a file name for the item's entry, in lowercase letters, digits and dashes:
// "framekeeper-mirror-frame".
std::string autostartNameFor(std::string_view item);

} // namespace mac
