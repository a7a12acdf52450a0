#pragma once

#include "platform/system/FileDescriptor.h"
#include <functional>
#include <string>

namespace mac {

// Parts of a copy. False when they fail; errno says why. For implementations; any thread.

// The bytes of a file open for reading into one open for writing, holes as holes.
bool copyContents(FileDescriptor const& from, FileDescriptor const& to, std::function<bool()> const& goesOn);
// Attributes, owner, permissions and dates, in an order that never lets anybody see more than before. `path` leads to
// the copy, for attributes that the volume has no place for.
bool copyMetadata(FileDescriptor const& from, FileDescriptor const& to, std::string const& path);
// What is neither file nor folder, as the name in the folder.
bool copySpecial(FileDescriptor const& fromFolder, std::string const& from, FileDescriptor const& toFolder,
                 std::string const& to);

} // namespace mac
