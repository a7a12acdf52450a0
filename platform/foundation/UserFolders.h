#pragma once

#include <optional>
#include <string>

namespace mac {

// The folder of a user of that name (bytes) in the user database; nothing for an unknown one. For implementations.
std::optional<std::string> homeFolderOfUser(std::string const& name);

} // namespace mac
