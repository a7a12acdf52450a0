#pragma once

#include "platform/applescript/language/ScriptSymbol.h"
#include <optional>
#include <string>

namespace mac::applescript {

// Folders that the system keeps for a purpose, by the codes that `path to` and System Events have for them.
namespace folders {
inline constexpr Code Applications = codeOf("apps");
inline constexpr Code ApplicationSupport = codeOf("asup");
inline constexpr Code Desktop = codeOf("desk");
inline constexpr Code Documents = codeOf("docs");
inline constexpr Code Downloads = codeOf("down");
inline constexpr Code Fonts = codeOf("font");
inline constexpr Code Home = codeOf("cusr");
inline constexpr Code Library = codeOf("dlib");
inline constexpr Code Movies = codeOf("mdoc");
inline constexpr Code Music = codeOf("%doc");
inline constexpr Code Pictures = codeOf("pdoc");
inline constexpr Code Preferences = codeOf("pref");
inline constexpr Code Public = codeOf("pubb");
inline constexpr Code StartupDisk = codeOf("boot");
inline constexpr Code TemporaryItems = codeOf("temp");
inline constexpr Code Trash = codeOf("trsh");
inline constexpr Code Users = codeOf("usrs");
inline constexpr Code Utilities = codeOf("uti$");
} // namespace folders

// The owner of a folder: the user's, that of all users of this computer, or the system's own.
enum class FolderDomain { User, Local, System };

// The path of the folder, in bytes; it need not exist. nullopt if the domain has none. Main thread.
//
// Linux: the user's folders are the desktop's, by their variables (XDG_MUSIC_DIR) or their usual names; those of all
// users lie below /usr/local/share, the system's below /usr/share, and preferences of both below /etc/xdg.
std::optional<std::string> standardFolder(Code folder, FolderDomain domain);

} // namespace mac::applescript
