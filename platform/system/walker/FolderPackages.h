#pragma once

#include "platform/system/walker/VolumeWalker.h"

namespace mac {

// The paths of the wanted packages that lie directly in the folder now, as far as the request's roots reach; none when
// it cannot be read.
std::vector<std::string> packagesInFolder(std::string const& folder, VolumeWalkRequest const& request);

} // namespace mac
