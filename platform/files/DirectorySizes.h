#pragma once

#include "platform/files/TrashPlaces.h"

namespace mac {

// The trash's file "directorysizes", a cache of the sizes of the folders in it. Failures are ignored, since other
// programs add up the sizes that are missing. Any thread.

// Adds the size of a folder that was trashed, unless the folder holds too many items to add up quickly.
void addDirectorySize(TrashPlace const& trash, std::string const& name);

// Removes the sizes of folders that are no longer in the trash.
void removeOldDirectorySizes(TrashPlace const& trash);

} // namespace mac
