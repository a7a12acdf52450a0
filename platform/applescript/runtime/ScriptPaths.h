#pragma once

#include <string>
#include <string_view>

namespace mac::applescript {

// Paths as scripts write them, by the volumes that are mounted now (platform/files/references/HFSPaths.h).

// "/a/b:c" is "Macintosh HD:a:b/c"; a final slash becomes a final colon.
std::u16string hfsPathOf(std::u16string_view posixPath);
// The way back; a volume that is not mounted is taken to be one below /Volumes.
std::u16string posixPathOf(std::u16string_view hfsPath);

bool existsAt(std::u16string_view posixPath);
bool isFolderAt(std::u16string_view posixPath);

} // namespace mac::applescript
