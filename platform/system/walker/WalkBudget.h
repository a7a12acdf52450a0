#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace mac {

// How many threads a walk should have. Reading what is in memory keeps as many busy as there are cores; when the disk
// is read, threads mostly wait for it, and it serves many at once faster than one after the other.
class ThreadPace {
public:
    static constexpr unsigned most = 32; // the last doubling measured to gain something
    static constexpr std::chrono::milliseconds interval{4};

    ThreadPace(unsigned cores, unsigned limit, std::uint64_t blocksRead);

    unsigned threads() const { return m_threads; }
    bool canGrow() const { return m_threads < m_limit; }
    // To be called at every interval with the blocks read by then.
    void look(std::uint64_t blocksRead);

private:
    unsigned const m_limit;
    unsigned m_threads;
    std::uint64_t m_blocksRead;
};

// How many blocks this process has read from disks so far, which what comes from memory does not raise.
std::uint64_t blocksReadByProcess();

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
