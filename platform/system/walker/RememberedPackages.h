#pragma once

#include "platform/system/walker/PackageRule.h"
#include "platform/system/walker/VolumeList.h"
#include <functional>
#include <string>
#include <vector>

namespace mac {

// Those of the absolute paths at which a walk of the volumes would find a wanted package now: it is a folder, and is
// reached without a symbolic link, through folders that may be listed, on a volume of the list. In the order of the
// paths; mount points are not looked at, as that may wait for a server, and paths of more than 4096 bytes are left out.
// Ends early once `shouldStop` says so.
std::vector<std::string> packagesStillThere(std::vector<std::string> const& paths, VolumeList const& volumes,
                                            PackageRule const& packages, std::function<bool()> const& shouldStop);

} // namespace mac
