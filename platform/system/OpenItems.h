#pragma once

#include "platform/system/FileDescriptor.h"
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// What is asked of items by their descriptors rather than their paths, so that nothing else can take their place
// meanwhile. For implementations; any thread. Where there is no answer errno says why.

// A path that leads to this very item, also where its own is too long for the system.
std::string descriptorPath(FileDescriptor const& item);

// The path that the system has for the item. It says " (deleted)" behind one that is gone, but a name may end so, and
// it says nothing when the path is too long for it.
std::optional<std::string> systemsPath(FileDescriptor const& item);

// The text of a symbolic link that was opened itself, or of one in an open folder.
std::optional<std::string> linkText(FileDescriptor const& link);
std::optional<std::string> linkTextIn(FileDescriptor const& folder, std::string const& name);

// What lies there below the folder, without following a link on the way or at its end; the folder itself for an empty
// path. It names the item and does not read it. The path may be of any length.
FileDescriptor openBelow(FileDescriptor const& folder, std::string_view relativePath);
// The open folder for reading.
FileDescriptor readableFolder(FileDescriptor const& folder);

// The names in the folder are on the disk, as far as the system can see to it; true also where it cannot flush folders.
bool flushFolder(FileDescriptor const& folder);

// All of the bytes, from where the file stands.
bool writeAll(FileDescriptor const& file, std::span<std::byte const> bytes);

struct FolderEntry {
    std::string name;
    std::uint64_t inode;
};
// What is in a folder that is open for reading, without "." and "..", in the folder's order.
std::optional<std::vector<FolderEntry>> entriesOf(FileDescriptor folder);

// "a/b/c" is "a/b/" and "c".
struct SplitPath {
    std::string folder; // with the slash; empty where the path has none
    std::string name;   // empty behind a slash at the end
};
SplitPath splitPath(std::string_view path);

} // namespace mac
