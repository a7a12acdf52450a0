#pragma once

#include <string>
#include <string_view>

namespace mac {

// The absolute path by which a search of the disk would come upon the item: the folder's symbolic links, "." and ".."
// are resolved by the system, at any length; a final symbolic link is not followed. A path whose folder does not exist,
// or may not be entered, stays as it is, made absolute by the current folder. Relative only where the current folder is
// gone and the path does not lead out of it: no item is there. Empty only for an empty path. Any thread.
std::string physicalPath(std::string_view path);

} // namespace mac
