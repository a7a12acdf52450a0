#pragma once

#include <string>
#include <string_view>

namespace mac {

// The absolute path by which a search of the disk would come upon the item: the folder's symbolic links, "." and ".."
// are resolved by the system, a final symbolic link is not followed. A path whose folder does not exist stays as it
// is, made absolute by the current folder. Empty only for an empty path. Any thread.
std::string physicalPath(std::string_view path);

} // namespace mac
