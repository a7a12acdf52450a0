#pragma once

#include <cstddef>
#include <cstdint>

namespace mac {

// How many descriptors a walk may hold open at once, so that the rest of the process is left at least half of those it
// is allowed.
struct DescriptorBudget {
    static constexpr std::uint64_t most = 512;

    unsigned threads = 1;             // at most so many
    std::size_t foldersPerThread = 1; // each may keep so many open between two steps

    static DescriptorBudget current();
    static DescriptorBudget forLimit(std::uint64_t descriptorsOfProcess);
};

} // namespace mac
