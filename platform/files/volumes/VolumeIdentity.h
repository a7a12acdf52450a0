#pragma once

#include "platform/files/volumes/Volumes.h"
#include <optional>

namespace mac {

// Tells a volume from others wherever and whenever it is mounted: the identifier that its file system bears, else the
// one that its disk has for it, else what the system makes of it. Bytes of no particular form; empty if unknown. May
// ask the volume's server, if it has one.
std::string identityOfVolume(MountedVolume const& volume);

// The path of an item on the volume from the top of the file system, of which the volume may show a part; the item's
// path is absolute. Empty if it does not lie on the volume.
std::string pathOnVolume(MountedVolume const& volume, std::string_view path);
// The absolute path of an item from its path on the volume, the inverse of pathOnVolume. nullopt if the volume does not
// show that part of the file system.
std::optional<std::string> pathFromVolume(MountedVolume const& volume, std::string_view pathOnVolume);

} // namespace mac
