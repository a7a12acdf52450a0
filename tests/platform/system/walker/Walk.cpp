#include "tests/platform/system/walker/Walk.h"
#include "tests/support/CommandOutput.h"
#include <algorithm>
#include <semaphore>
#include <stdexcept>

namespace mac::test {

WalkResult walk(VolumeWalkRequest const& request) {
    std::binary_semaphore finished{0};
    VolumeWalker* started = nullptr;
    VolumeWalker walker(request, [&started, &finished] {
        if (started->progress().isFinished) finished.release();
    });
    started = &walker;
    if (!walker.start()) throw std::runtime_error("the walk did not start");
    finished.acquire();
    WalkResult result{.paths = walker.takeFound(), .progress = walker.progress()};
    std::sort(result.paths.begin(), result.paths.end());
    return result;
}

std::vector<std::string> pathsOfWalk(VolumeWalkRequest const& request) { return walk(request).paths; }

std::vector<std::string> packagesByFind(std::string const& folder) {
    std::string const output = outputOf({"find", folder, "-type", "d", "-name", "?*.app", "-prune", "-print0"});
    std::vector<std::string> paths;
    for (std::size_t start = 0; start < output.size(); start = output.find('\0', start) + 1)
        paths.emplace_back(output.c_str() + start);
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace mac::test
