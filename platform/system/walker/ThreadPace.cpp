#include "platform/system/walker/ThreadPace.h"

#include <sys/resource.h>

#include <algorithm>

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

} // namespace mac
