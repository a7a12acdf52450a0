#pragma once

#include "platform/foundation/objects/Types.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// The bytes on the disk of a file name in the form of HFS, whose slashes paths show as colons; nullopt for a name that
// no item can have: with a colon, "." and "..", or without bytes in the file system. Any thread.
std::optional<std::string> fileNameOfHFSName(std::u16string_view name);

} // namespace mac
