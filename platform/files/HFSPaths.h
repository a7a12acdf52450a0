#pragma once

#include "platform/files/Volumes.h"
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// Paths as text in the form of HFS and in that of POSIX, one from the other: "STICK:letters:12/3.txt" is
// "/media/ann/STICK/letters/12:3.txt". A name shows as a slash in one what is a colon in the other. Nothing is looked
// for on the disk, and nothing is normalised. The texts are code units; what has no form on the disk passes through.
// For implementations; any thread.
//
// Linux: the volumes that are to be browsed have their names at the front; what lies anywhere else lies on the startup
// volume, also where that is a mount of the system's own, such as /tmp.

// Relative paths keep being relative: a colon first. What is said to be a folder, ends with a slash or is a volume
// itself ends with a colon.
std::u16string hfsPathFromPOSIXPath(std::u16string_view path, bool isFolder);
// The way back. Upper and lower case in a volume's name are the same; a volume that is not mounted is taken to be one
// in /Volumes, and a text without colon that names none to be an item of the root, as is the empty one. A text that
// begins with a slash is no HFS path and stays.
std::u16string posixPathFromHFSPath(std::u16string_view path);

// The same with these volumes.
std::u16string hfsPathFromPOSIXPath(std::u16string_view path, bool isFolder, std::vector<MountedVolume> const& volumes);
std::u16string posixPathFromHFSPath(std::u16string_view path, std::vector<MountedVolume> const& volumes);

} // namespace mac
