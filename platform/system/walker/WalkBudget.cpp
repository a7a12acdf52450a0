#include "platform/system/walker/WalkBudget.h"
#include <algorithm>
#include <sys/resource.h>

namespace mac {

ThreadPace::ThreadPace(unsigned cores, unsigned limit, std::uint64_t blocksRead)
    : m_limit(std::clamp(limit, 1U, most)), m_threads(std::clamp(cores, 1U, m_limit)), m_blocksRead(blocksRead) {}

void ThreadPace::look(std::uint64_t blocksRead) {
    if (blocksRead != m_blocksRead) m_threads = std::min(m_threads * 2, m_limit);
    m_blocksRead = blocksRead;
}

std::uint64_t blocksReadByProcess() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint64_t>(usage.ru_inblock);
}

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
