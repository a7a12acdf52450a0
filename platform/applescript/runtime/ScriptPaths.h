#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mac::applescript {

// Paths as scripts write them, by the volumes that are mounted now (platform/files/references/HFSPaths.h).

// "/a/b:c" is "Macintosh HD:a:b/c"; a final slash becomes a final colon.
std::u16string hfsPathOf(std::u16string_view posixPath);
// The inverse of hfsPathOf; a volume that is not mounted is taken to be one below /Volumes.
std::u16string posixPathOf(std::u16string_view hfsPath);

bool existsAt(std::u16string_view posixPath);
bool isFolderAt(std::u16string_view posixPath);

// The URL of a path's bytes; a relative path is taken from the process's folder.
std::string fileURL(std::string_view path);
// The bytes of a file URL's path; nothing for another kind of URL, another computer's, and for escapes that are none or
// stand for a NUL character.
std::optional<std::string> pathOfFileURL(std::string_view url);

// An application's name as a URL, and back.
std::string applicationURL(std::u16string_view name);
std::optional<std::u16string> nameOfApplicationURL(std::string_view url);

// Teaches descriptors of files the way to text, which is their HFS path, and to each other.
void installFileCoercions();

} // namespace mac::applescript
