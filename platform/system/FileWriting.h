#pragma once

#include "platform/system/LongPath.h"
#include <functional>
#include <span>
#include <string_view>

namespace mac {

// Writing whole files. A path is bytes, of any length; a symbolic link at its end is followed. Only regular files are
// replaced: a folder fails with EISDIR, another kind with EINVAL. Any thread.

// What a replacement requires beyond the bytes.
struct FileReplacement {
    // Permissions of a file that does not exist yet, less the umask.
    unsigned newFileMode{0666};
    // If set, a file that does not exist yet takes its owner, group and read and write permissions from this item.
    FileDescriptor const* newFileIsLike{nullptr};
    // If set, the file must still be in `state`, or still be missing if `state` is nullopt; else the replacement fails
    // with EAGAIN or EEXIST.
    bool hasToBe{false};
    std::optional<FileStatus> state{};
    // Called with the new file once it is written and before it is flushed to the disk, to change it; a failure cancels
    // the replacement.
    std::function<Result<void>(FileDescriptor const&)> beforeFlushing{};
    // Called with the new file once it is on the disk and directly before it is renamed, to look at the old one once
    // more; a failure cancels the replacement.
    std::function<Result<void>(FileDescriptor const&)> beforeRenaming{};
    // Called with the new file once it has the name; a failure is the answer, but the file stays replaced.
    std::function<Result<void>(FileDescriptor const&)> afterRenaming{};
};

// Writes a new file beside the old one, flushes it to the disk and renames it over the old one, so that every reader
// finds the old or the new bytes whole, also after a crash. The file keeps its permissions, access list and extended
// attributes, and its owner where that is allowed; no user gets more access than before. Nothing is written if an
// attribute cannot be kept: EACCES for a file with attributes that may be written but not read. A new file has the
// permissions that `how` asks for.
Result<void> replaceFileAtPath(std::string const& path, std::span<std::byte const> bytes,
                               FileReplacement const& how = {});

// Replaces the file of a name in an open folder; a symbolic link of that name is not followed but fails with EINVAL.
Result<void> replaceFileInFolder(FileDescriptor const& folder, std::string const& name,
                                 std::span<std::byte const> bytes, FileReplacement const& how = {});

// Truncates the file and writes it in place; its old bytes are lost also if that fails. Never blocks: a pipe without
// reader is a failure.
Result<void> overwriteFileAtPath(std::string const& path, std::span<std::byte const> bytes);

// Makes the folder, and those above it that are missing, for this user alone. Also done if it exists already; fails
// with ENOTDIR if another kind of item has its path.
Result<void> makeFolderAtPath(std::string_view path);

} // namespace mac
