#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// The folders of the user's settings and data, XDG_CONFIG_HOME and XDG_DATA_HOME: bytes of an absolute path; the
// standard's default in ownHomeFolder() if the environment names none. They need not exist. For implementations.
std::string configHome();
std::string dataHome();
// The folders XDG_CACHE_HOME, for files that can be made again, and XDG_STATE_HOME, for logs and the like, in the same
// form.
std::string cacheHome();
std::string stateHome();

// The user's folder that a variable such as XDG_MUSIC_DIR names, in the environment or else in the user's list of
// folders, user-dirs.dirs. Bytes of an absolute path; nullopt if neither names one. For implementations.
std::optional<std::string> desktopFolder(std::string const& variable);

// The folder that the text of user-dirs.dirs names for the variable, in lines such as XDG_MUSIC_DIR="$HOME/Music", of
// which the last counts. nullopt if there is none or if it is not absolute. REQUIRES: `home` is an absolute path.
std::optional<std::string> folderInList(std::string_view list, std::string_view variable, std::string_view home);

// The non-empty parts of an environment variable's value between colons; those of `fallback` if the variable is empty
// or not set. For implementations.
std::vector<std::string> listInEnvironment(char const* variable, std::string_view fallback);

// The folders that searches of the local computer are limited to, from the environment variable
// FRAMEKEEPER_LOCAL_COMPUTER, separated by colons; for the demo and the tests. Empty if there is no limit.
std::vector<std::string> localComputerFolders();

} // namespace mac
