#pragma once

#include "platform/appkit/workspace/NSImage.h"
#include "tests/support/TemporaryFolder.h"
#include <functional>
#include <string>
#include <vector>

namespace mac::test {

// An item whose icon the page shows.
struct PageItem {
    std::string label;
    // A new image trimmed to so many pixels.
    std::function<NSImage(int side)> icon;
};

// Makes items of many kinds in the folder, which is the home. The folder of samples holds files of icons.
std::vector<PageItem> makePageItems(TemporaryFolder const& home, std::string const& samples);

} // namespace mac::test
