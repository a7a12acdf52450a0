#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/Result.h"
#include <functional>
#include <string>

namespace mac {

// The parts of copying one item. Any thread.

// Copies the bytes of a file open for reading into one open for writing; holes stay holes. ECANCELED once
// shouldContinue answers false; ESTALE if the file was truncated meanwhile.
Result<void> copyContents(FileDescriptor const& from, FileDescriptor const& to,
                          std::function<bool()> const& shouldContinue);
// Copies attributes, owner, permissions and dates, in an order that never lets a user see more than before. Attributes
// that the copy's file system cannot hold go to its sidecar.
Result<void> copyMetadata(FileDescriptor const& from, FileDescriptor const& to);
// Copies an item that is neither file nor folder, to a name in the folder.
Result<void> copySpecial(FileDescriptor const& fromFolder, std::string const& from, FileDescriptor const& toFolder,
                         std::string const& to);

} // namespace mac
