#include "platform/system/walker/DescriptorBudget.h"

#include "platform/system/walker/ThreadPace.h"

#include <sys/resource.h>

#include <algorithm>

namespace mac {

DescriptorBudget DescriptorBudget::current() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return {};
    return forLimit(limit.rlim_cur);
}

DescriptorBudget DescriptorBudget::forLimit(std::uint64_t descriptorsOfProcess) {
    constexpr std::uint64_t leastPerThread = 4;
    std::uint64_t const all = std::min(descriptorsOfProcess / 2, most);
    std::uint64_t const threads = std::clamp<std::uint64_t>(all / leastPerThread, 1, ThreadPace::most);
    // One more is open while a step goes from a folder to the next.
    std::uint64_t const folders = std::max<std::uint64_t>(all / threads, 2) - 1;
    return {.threads = static_cast<unsigned>(threads), .foldersPerThread = static_cast<std::size_t>(folders)};
}

} // namespace mac
