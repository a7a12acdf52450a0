#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// The folders of the user's settings and data, XDG_CONFIG_HOME and XDG_DATA_HOME: bytes of an absolute path, the usual
// one in ownHomeFolder() where the environment names none. They need not exist. For implementations.
std::string configHome();
std::string dataHome();
// Likewise XDG_CACHE_HOME, for files that can be made again, and XDG_STATE_HOME, for logs and the like.
std::string cacheHome();
std::string stateHome();

// The folder of the desktop that goes by the variable's name, such as XDG_MUSIC_DIR: as the environment says, else as
// the user's list of folders, user-dirs.dirs, does. Bytes of an absolute path; nothing where neither names one. For
// implementations.
std::optional<std::string> desktopFolder(std::string const& variable);

// What such a list says of the variable: lines such as XDG_MUSIC_DIR="$HOME/Music", the last one counts. Nothing for
// what is not absolute. The home is an absolute path.
std::optional<std::string> folderInList(std::string_view list, std::string_view variable, std::string_view home);

// The parts of a variable's value between colons, without empty ones; those of the fallback where it is empty or not
// set. For implementations.
std::vector<std::string> listInEnvironment(char const* variable, std::string_view fallback);

// The folders that stand for the local computer, in the environment's FRAMEKEEPER_LOCAL_COMPUTER with colons between
// them, so that the demo and the tests narrow it; empty if it stands for itself.
std::vector<std::string> localComputerFolders();

} // namespace mac
