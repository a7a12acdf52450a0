#pragma once

#include "platform/system/FileDescriptor.h"
#include <string>
#include <vector>

namespace mac {

// What processes of this program that were killed have left in a folder under temporary names. Any thread.

// Removes the leftovers, and answers the names of those that are in doubt, which stay: their process may still run
// where it cannot be seen, another user may have given an item such a name, or an item that was moved aside before its
// removal is not the one that it was to be. A folder that has not changed since it was last looked at is not listed
// again. Does nothing if the folder cannot be listed.
std::vector<std::string> removeLeftovers(FileDescriptor const& folder);

// Remembers, after a change of this process's own, that the folder has been looked at.
void leaveFolder(FileDescriptor const& folder);

} // namespace mac
