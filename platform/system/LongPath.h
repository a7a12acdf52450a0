#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/Result.h"
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// Files by paths of any length: a path longer than the system's limit is opened folder by folder. Paths are the file
// system's bytes, without NUL; relative ones start at the current folder; symbolic links are followed. Errors name the
// path. Any thread.

// The state of a file. Two equal ones describe the same state of the same file, to the precision of the file system's
// clock.
struct FileStatus {
    enum class Kind { File, Folder, Other };

    Kind kind{Kind::Other};
    std::uint64_t device{0};
    std::uint64_t inode{0};
    // In bytes.
    std::uint64_t size{0};
    // Nanoseconds since 1970.
    std::int64_t modified{0};
    std::int64_t changed{0};

    bool operator==(FileStatus const&) const = default;
};

Result<FileStatus> fileStatusAtPath(std::string_view path);
// The status of a name in an open folder; a symbolic link is not followed.
Result<FileStatus> fileStatusInFolder(FileDescriptor const& folder, std::string const& name);
Result<FileStatus> fileStatusOf(FileDescriptor const& file);

// How many symbolic links the kernel follows in one path.
inline constexpr unsigned MostLinksInPath = 40;

// The absolute path (bytes) with its symbolic links followed as far as they exist, and its ".." resolved after them.
// Components that do not exist stay as they are; the path is returned unchanged if its links form a cycle.
std::string resolvedPath(std::string const& path);

// Whether the path leads to an item; symbolic links are followed.
bool pathExists(std::string const& path);

// Takes the flags of the system's open; O_CLOEXEC is always set. The descriptor is open if there is a value.
Result<FileDescriptor> openPath(std::string_view path, int flags);

// A file's contents and the state they were read in.
struct FileContents {
    std::vector<std::byte> bytes;
    FileStatus status;
};

// Reads a regular file of at most so many bytes whole. A larger file fails with EFBIG, a folder with EISDIR, another
// kind of file with EINVAL: it is not opened, since that may block or have side effects.
Result<FileContents> readFileAtPath(std::string_view path, std::size_t mostBytes);
// Reads a file that is open for reading, from its current position.
Result<FileContents> readOpenFile(FileDescriptor const& file, std::size_t mostBytes);

// The absolute path by which a search of the disk would come upon the item: the folder's symbolic links, "." and ".."
// are resolved by the system, at any length; a final symbolic link is not followed. A path whose folder does not exist,
// or may not be entered, stays as it is, made absolute by the current folder. Relative only where the current folder is
// gone and the path does not lead out of it: no item is there. Empty only for an empty path. Any thread.
std::string physicalPath(std::string_view path);

} // namespace mac
