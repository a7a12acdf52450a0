#include "tests/platform/system/walker/Rescan.h"
#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace mac::test {

namespace {

void waitForTheNextTime() {
    constexpr std::int64_t twoTicks = 20'000'000;
    std::int64_t const start = folderClock();
    while (folderClock() <= start + twoTicks) {}
}

} // namespace

Rescan::Rescan(std::function<std::int64_t()> clock) : m_clock(std::move(clock)) { restart(); }

void Rescan::restart() { m_memory = std::make_shared<WalkMemory>(folder(), m_clock); }

WalkResult Rescan::walk(VolumeWalkRequest request) {
    waitForTheNextTime();
    request.memory = m_memory;
    // A busy machine is no silent one.
    if (request.patience == VolumeWalkRequest().patience) request.patience = std::chrono::hours(1);
    VolumeWalker walker(request, nullptr);
    if (!walker.start()) throw std::runtime_error("the walk did not start");
    walker.waitUntilRemembered(std::chrono::hours(1));
    WalkResult result{.paths = walker.takeFound(), .progress = walker.progress()};
    for (std::string const& vanished : walker.vanished())
        std::erase(result.paths, vanished);
    std::ranges::sort(result.paths);
    return result;
}

} // namespace mac::test
