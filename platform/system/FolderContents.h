#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

class FileDescriptor;

enum class LinkAtEnd { IsFollowed, IsNotFollowed };

// The names in a folder, without "." and "..", sorted by their bytes; nothing
// for what is no folder that can be read. The path is bytes, of any length. For
// implementations; any thread.
std::optional<std::vector<std::string>> namesInFolder(std::string_view path, LinkAtEnd linkAtEnd);

// The same of an open folder, which need not be open for reading.
std::optional<std::vector<std::string>> namesInOpenFolder(FileDescriptor const& folder);

// Whether both are files of the same bytes, links of the same text or folders
// of the same contents; links are not followed.
bool haveEqualContents(std::string const& path, std::string const& otherPath);

} // namespace mac
