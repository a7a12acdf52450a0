#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac {

// All answer false when the file system refuses; errno then says why. A path is its bytes; a symbolic link at its end
// is followed. For implementations; any thread.

// Written beside the file, flushed to the disk and renamed over it: whoever opens the file finds the old or the new
// bytes whole, also after a crash. The file keeps its permissions, and its owner where that is allowed; a new one gets
// those of the umask. What is no regular file is left alone.
bool replaceFileAtPath(std::string const& path, std::span<std::byte const> bytes, unsigned newFileMode = 0666);

// The same in an open folder, where a symbolic link of the name is not followed but left alone.
bool replaceFileInFolder(int folder, std::string const& name, std::span<std::byte const> bytes, unsigned newFileMode);

// Written in place; what was there is gone even when it fails. Waits for nobody: a pipe without reader is a failure.
bool overwriteFileAtPath(std::string const& path, std::span<std::byte const> bytes);

} // namespace mac
