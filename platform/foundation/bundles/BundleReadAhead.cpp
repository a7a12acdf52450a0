#include "platform/foundation/bundles/BundleReadAhead.h"
#include <algorithm>
#include <system_error>
#include <utility>

namespace mac {

namespace {

// Long enough that threads seldom meet, and short enough that none waits for another's last one.
constexpr std::size_t BundlesInBlock = 256;

// Whoever asks for a bundle that could not be read here reads it there, and meets the exception.
std::optional<ReadSummary> summaryUnlessRaised(std::string const& bundlePath) {
    try {
        return readLikelySummary(bundlePath);
    } catch (...) {
        return std::nullopt;
    }
}

} // namespace

BundleReadAhead::BundleReadAhead(std::span<std::string const> bundlePaths, std::span<std::size_t const> indexes)
    : m_paths(bundlePaths), m_indexes(indexes), m_blocks((indexes.size() + BundlesInBlock - 1) / BundlesInBlock) {
    if (m_blocks.size() > 1) startThreads();
}

BundleReadAhead::~BundleReadAhead() {
    m_nextBlock = m_blocks.size();
    for (std::thread& thread : m_threads)
        thread.join();
}

void BundleReadAhead::startThreads() {
    std::size_t const processors = std::max(std::thread::hardware_concurrency(), 1U);
    try {
        while (m_threads.size() < std::min(processors, m_blocks.size()))
            m_threads.emplace_back([this] { readBlocks(); });
    } catch (std::system_error const&) {
        // As many as the system gives; with none the files are read when they are asked for.
    }
}

void BundleReadAhead::readBlocks() {
    for (std::size_t number = m_nextBlock++; number < m_blocks.size(); number = m_nextBlock++)
        readBlock(number);
}

void BundleReadAhead::readBlock(std::size_t number) {
    std::size_t const begin = number * BundlesInBlock;
    std::size_t const end = std::min(begin + BundlesInBlock, m_indexes.size());
    Block& block = m_blocks[number];
    block.summaries.reserve(end - begin);
    for (std::size_t next = begin; next < end; ++next)
        block.summaries.push_back(summaryUnlessRaised(m_paths[m_indexes[next]]));
    block.isRead = true;
    block.isRead.notify_one();
}

std::optional<ReadSummary> BundleReadAhead::take(std::size_t index) {
    bool const isNext = !m_threads.empty() && m_taken < m_indexes.size() && m_indexes[m_taken] == index;
    if (!isNext) return std::nullopt;
    Block& block = m_blocks[m_taken / BundlesInBlock];
    block.isRead.wait(false);
    return std::exchange(block.summaries[m_taken++ % BundlesInBlock], std::nullopt);
}

} // namespace mac
