#pragma once

#include "platform/system/LongPath.h"
#include <functional>
#include <span>

namespace mac {

// All answer false when the file system refuses; errno then says why. A path is its bytes; a symbolic link at its end
// is followed. For implementations; any thread.

// What else is wanted when a file is replaced.
struct FileReplacement {
    // Of a file that is not there yet; the umask takes from it.
    unsigned newFileMode{0666};
    // Such a file has the owner, the group and the rights to read and write of this item instead.
    FileDescriptor const* newFileIsLike{nullptr};
    // The file has to be as it was then, or still be missing, else EAGAIN and EEXIST.
    bool hasToBe{false};
    std::optional<FileStatus> state{};
    // Done to the new file when all is written and before anybody finds it; false gives up.
    std::function<bool(FileDescriptor const&)> beforeRenaming{};
    std::function<bool(FileDescriptor const&)> afterRenaming{};
};

// Written beside the file, flushed to the disk and renamed over it: whoever opens the file finds the old or the new
// bytes whole, also after a crash. The file keeps its permissions, access list and named attributes, and its owner
// where that is allowed; nobody gets more than he had. A new one gets the permissions of the umask. What is no regular
// file is left alone.
bool replaceFileAtPath(std::string const& path, std::span<std::byte const> bytes, FileReplacement const& how = {});

// The same in an open folder, where a symbolic link of the name is not followed but left alone.
bool replaceFileInFolder(FileDescriptor const& folder, std::string const& name, std::span<std::byte const> bytes,
                         FileReplacement const& how = {});

// Written in place; what was there is gone even when it fails. Waits for nobody: a pipe without reader is a failure.
bool overwriteFileAtPath(std::string const& path, std::span<std::byte const> bytes);

} // namespace mac
