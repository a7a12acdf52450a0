#pragma once

#include "platform/files/TrashFolder.h"

namespace mac {

// Adds a folder that has come into the trash to the trash's file of sizes, unless it is so large that adding up would
// take long: then others add up when they need it. Nothing depends on the file, so nothing is said when it fails.
void addDirectorySize(TrashFolder const& trash, std::string const& name);

// Removes from the file what is not in the trash any more.
void removeOldDirectorySizes(TrashFolder const& trash);

} // namespace mac
