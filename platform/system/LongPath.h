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

// Files by paths of any length: what is too long for one call to the system is walked piece by piece. Paths are the
// file system's bytes, without NUL; relative ones start at the current folder; links are followed. Any thread.

// What the system tells of a file. Two that are equal tell of the same state of the same file, as far as its clock
// tells.
struct FileStatus {
    enum class Kind { File, Folder, Other };

    Kind kind{Kind::Other};
    std::uint64_t device{0};
    std::uint64_t inode{0};
    std::uint64_t size{0};
    // Nanoseconds since 1970.
    std::int64_t modified{0};
    std::int64_t changed{0};

    bool operator==(FileStatus const&) const = default;
};

// Nothing when it cannot be had; errno says why.
std::optional<FileStatus> fileStatusAtPath(std::string_view path);

// The same of a name in an open folder, and of an open file; a link is meant itself.
std::optional<FileStatus> fileStatusInFolder(FileDescriptor const& folder, std::string const& name);
std::optional<FileStatus> fileStatusOf(FileDescriptor const& file);

// The flags are open's; the descriptor is closed on exec. None when it fails; errno says why.
FileDescriptor openPath(std::string_view path, int flags);

// A file's contents and the state they were read in.
struct FileContents {
    std::vector<std::byte> bytes;
    FileStatus status;
};

// A regular file of at most so many bytes, whole. Other files are not opened: to open one can wait for ever, or do
// things.
Result<FileContents, Failure> readFileAtPath(std::string_view path, std::size_t mostBytes);
// The same of a file open for reading, from where it stands.
Result<FileContents, Failure> readOpenFile(FileDescriptor const& file, std::size_t mostBytes);

} // namespace mac
