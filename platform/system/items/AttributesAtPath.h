#pragma once

#include "platform/system/FolderContents.h"
#include "platform/system/items/AttributesOnItem.h"
#include <optional>

namespace mac {

// Short ways to the attributes of the item at a path, in as few system calls as there can be: for what the file system
// alone tells of usual items. nullopt means that the item has to be opened to answer, and is no failure. Any thread.

// The value's length in bytes, and the value in the bytes unless they are empty. Finder information and resource forks
// are not answered.
std::optional<std::size_t> valueAtPath(char const* path, AttributeName const& name, std::span<std::byte> bytes,
                                       LinkAtEnd linkAtEnd);

// The names of a file's or folder's attributes, if nothing has the name of its AppleDouble sidecar. Not answered for a
// symbolic link, nor if a name needs its value to be looked at.
std::optional<std::vector<std::string>> namesAtPath(char const* path);

} // namespace mac
