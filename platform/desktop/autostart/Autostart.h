#pragma once

#include "platform/system/LongPath.h"
#include "platform/system/Result.h"
#include <optional>
#include <string>
#include <vector>

namespace mac {

class DesktopEntry;
struct AutostartRules;

// The programs that the desktop starts at log-in: entries NAME.desktop in the folders "autostart" of the user's and the
// system's settings. For implementations; main thread.

// What one file says. A value.
struct AutostartEntry {
    // The entry's command line, with the escapes of the file resolved.
    std::string command{};
    // What this program wrote into an entry of its own; nullopt for the entry of another program.
    struct Own {
        // By which own entries are put behind all others.
        unsigned long order{0};
        // The text given when it was written.
        std::string note{};
    };
    std::optional<Own> own{};
    // What the rules of the current desktop make of it.
    enum class Standing {
        // No desktop entry; a file of its name in a later folder counts.
        NoEntry,
        // The entry starts nothing here, and hides files of its name in later folders.
        Masks,
        Starts,
    };
    Standing standing{Standing::NoEntry};

    static AutostartEntry of(DesktopEntry const& file, AutostartRules const& rules);
};

// A program that starts at log-in.
struct AutostartItem {
    // "NAME.desktop"
    std::string fileName{};
    std::string folder{};
    // The status of the file or symbolic link when it was read.
    FileStatus status{};
    // Whether the folder is the user's.
    bool isOfUser{false};
    AutostartEntry entry{};
    // The path of what it starts (itemStartedBy).
    std::string started{};
};

struct AutostartItems {
    // By the bytes of the file names; own entries last, in their order.
    std::vector<AutostartItem> items{};
    // What prevented the first folder or file from being read, with its path; nullopt if all were read. What does not
    // exist, and a file of the system that the user may not read, prevents nothing.
    std::optional<SystemError> problem{};
};

// The user's folder, then the system's, by precedence.
std::vector<std::string> autostartFolders();

// Reads the folders anew. A file is read again only if it changed. Files that are no entries are left out.
AutostartItems autostartItems();

// Whether one of the folders but the user's has a program of that name to start; the user's entry alone prevents that.
// Fails if a file of the name is, or may be, there and cannot be read, unless the user may not read it.
Result<bool> isStartedBySystem(std::string const& fileName);

// Whether one of the folders has an item of that name. Fails if that cannot be seen; an item in a folder of the system
// that the user may not enter is none.
Result<bool> isAutostartNameTaken(std::string const& fileName);

} // namespace mac
