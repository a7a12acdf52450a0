#pragma once

#include <string>
#include <string_view>

namespace mac::applescript {

// HFS text paths and POSIX paths. Linux: the whole file system is one volume of a made-up name.
inline constexpr std::u16string_view VolumeName = u"Macintosh HD";

// "/a/b:c" is "Macintosh HD:a:b/c"; a final slash becomes a final colon.
std::u16string hfsPathOf(std::u16string_view posixPath);
// The way back; a path that does not begin with the volume's name is taken to be a volume below /Volumes.
std::u16string posixPathOf(std::u16string_view hfsPath);

bool existsAt(std::u16string_view posixPath);
bool isFolderAt(std::u16string_view posixPath);

} // namespace mac::applescript
