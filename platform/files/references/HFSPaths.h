#pragma once

#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/objects/Types.h"
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// Converts paths between the form of HFS and that of POSIX: "STICK:letters:12/3.txt" is
// "/media/ann/STICK/letters/12:3.txt". A colon in a name of one form is a slash in the other. The disk is not read, and
// paths are not normalised. Texts are UTF-16 code units; lone surrogates pass through. Any thread.
//
// Linux: a path on a browsable volume starts with the volume's name; every other path starts with the startup volume's,
// also on a mount of the system's own, such as /tmp.

// A relative path becomes one that starts with a colon. A path ends with a colon if `isFolder` says so, if it ends with
// a slash, and if it is a volume's root.
std::u16string hfsPathFromPOSIXPath(std::u16string_view path, bool isFolder);
// The case of letters in a volume's name does not count. A volume that is not mounted is one in /Volumes; a text
// without colon that names no volume is an item of the root, as is the empty text. A text that begins with a slash is
// no HFS path and is returned unchanged.
std::u16string posixPathFromHFSPath(std::u16string_view path);

// Conversion by a given list of volumes.
std::u16string hfsPathFromPOSIXPath(std::u16string_view path, bool isFolder, std::vector<MountedVolume> const& volumes);
std::u16string posixPathFromHFSPath(std::u16string_view path, std::vector<MountedVolume> const& volumes);

// The bytes on the disk of a file name in the form of HFS, whose slashes paths show as colons; nullopt for a name that
// no item can have: with a colon, "." and "..", or without bytes in the file system. Any thread.
std::optional<std::string> fileNameOfHFSName(std::u16string_view name);

} // namespace mac
