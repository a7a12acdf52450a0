#pragma once

#include "platform/foundation/bundles/BundleReading.h"
#include <atomic>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace mac {

// Reads the information files of many bundles in threads of its own, while the thread that made it takes what they read
// in the same order. Few bundles are not worth a thread.
class BundleReadAhead {
public:
    // Those of the bundles whose indexes are listed, in rising order. REQUIRES: both lists outlive the object.
    BundleReadAhead(std::span<std::string const> bundlePaths, std::span<std::size_t const> indexes);
    // Waits until the threads have read what they are at.
    ~BundleReadAhead();
    BundleReadAhead(BundleReadAhead const&) = delete;
    BundleReadAhead& operator=(BundleReadAhead const&) = delete;

    // What was read of the bundle, for which it waits. nullopt if that is not the next of the listed ones, and if its
    // file was not read, here or at all.
    std::optional<ReadSummary> take(std::size_t index);

private:
    struct Block {
        std::vector<std::optional<ReadSummary>> summaries{};
        std::atomic<bool> isRead{false};
    };

    void startThreads();
    void readBlocks();
    void readBlock(std::size_t number);

    std::span<std::string const> const m_paths;
    std::span<std::size_t const> const m_indexes;
    std::vector<Block> m_blocks;
    std::atomic<std::size_t> m_nextBlock{0};
    std::size_t m_taken{0};
    std::vector<std::thread> m_threads;
};

} // namespace mac
