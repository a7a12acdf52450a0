#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/Result.h"
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// Operations on items by their descriptors rather than their paths, so that no other item can take their place
// meanwhile. Any thread.

// A path that leads to this very item, also where its own path is too long for the system.
std::string descriptorPath(FileDescriptor const& item);
// Whether the path is such a one, or leads on from it. It says nothing to people.
bool isDescriptorPath(std::string_view path);

// The path that the system knows for the item. The system appends " (deleted)" if the item is gone, but a name may end
// so. Fails if the path is longer than the system reports.
Result<std::string> systemsPath(FileDescriptor const& item);

// The text of a symbolic link that was opened itself.
Result<std::string> linkText(FileDescriptor const& link);
// The text of a symbolic link in an open folder; fails with EINVAL if the name is that of another kind of item.
Result<std::string> linkTextIn(FileDescriptor const& folder, std::string const& name);

// Opens an item below the folder with O_PATH, without following a symbolic link on the way or at its end; the folder
// itself for an empty path. The path may be of any length.
Result<FileDescriptor> openBelow(FileDescriptor const& folder, std::string_view relativePath);
// Opens the folder again, for reading.
Result<FileDescriptor> readableFolder(FileDescriptor const& folder);

// Makes a folder for its owner alone, who gets all permissions whatever the umask withholds. Fails with EEXIST if the
// name is taken.
Result<void> makeOwnFolder(FileDescriptor const& parent, std::string const& name);
// Gives the owner of an item that was just made those of the permissions that the umask withheld.
Result<void> permitOwner(FileDescriptor const& item, unsigned permissions);

// Flushes the names in the folder to the disk. Also done where the file system or the permissions allow no flushing.
Result<void> flushFolder(FileDescriptor const& folder);

// Writes all of the bytes at the file's current position.
Result<void> writeAll(FileDescriptor const& file, std::span<std::byte const> bytes);
// Fails if the file system tells of a failed write when a file is closed, as network ones do. The file stays open.
Result<void> confirmWritten(FileDescriptor const& file, std::string const& name);

struct FolderEntry {
    enum class Kind {
        File,
        Folder,
        // A symbolic link or a special file.
        Other,
        // The file system does not tell.
        Unknown,
    };

    std::string name;
    std::uint64_t inode;
    Kind kind{Kind::Unknown};
};
// The entries of a folder that is open for reading, without "." and "..", in the folder's order.
Result<std::vector<FolderEntry>> entriesOf(FileDescriptor const& folder);

// "a/b/c" is "a/b/" and "c".
struct SplitPath {
    std::string folder; // with the slash; empty if the path has none
    std::string name;   // empty after a slash at the end
};
SplitPath splitPath(std::string_view path);

} // namespace mac
