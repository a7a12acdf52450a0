#pragma once

#include "platform/system/walker/VolumeWalker.h"
#include <string>
#include <vector>

namespace mac::test {

struct WalkResult {
    std::vector<std::string> paths; // sorted
    VolumeWalkProgress progress;
};

// Walks to the end.
WalkResult walk(VolumeWalkRequest const& request);
std::vector<std::string> pathsOfWalk(VolumeWalkRequest const& request);

// The packages that find lists below the folder, sorted: those ending in .app, and none in another.
std::vector<std::string> packagesByFind(std::string const& folder);

} // namespace mac::test
