#pragma once

#include "platform/system/walker/VolumeList.h"
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace mac {

// Finds where the roots of a walk lie, which takes for ever where a disk does not answer. One thread goes from root to
// root; where it is kept for longer than a glance, another one goes on behind it. Roots on which earlier walks still
// wait (VolumeVisit.h) are passed over until these have left them. Used by one thread, that of its owner.
class RootLocator {
public:
    static constexpr std::chrono::milliseconds Glance{250};

    // `wasLeft` says whether the walk was given up. REQUIRES: it outlives the locator.
    RootLocator(std::vector<std::string> paths, std::atomic<bool> const& wasLeft);
    ~RootLocator(); // waits for the roots that are being looked at
    RootLocator(RootLocator const&) = delete;
    RootLocator& operator=(RootLocator const&) = delete;

    // Begins to look at the roots that may be looked at now, and returns what was found since the last call, once they
    // have all been looked at or a glance has passed.
    std::vector<Result<WalkRoot>> take();
    // Whether a root is being looked at, so that it will be found, or fail, sooner or later.
    bool isLooking() const;
    // The roots that are neither found nor failed.
    std::vector<std::string> left() const;

private:
    std::vector<std::string>::iterator nextPath();
    void goOn(std::unique_lock<std::mutex>& lock);
    void lookAround(std::uint64_t thread);
    Result<WalkRoot> lookAt(std::string const& path) const;

    std::atomic<bool> const& m_wasLeft;
    mutable std::mutex m_mutex; // guards all below but the threads
    std::condition_variable m_changed;
    std::vector<std::string> m_paths;   // not looked at yet
    std::vector<std::string> m_looking; // looked at now
    std::vector<Result<WalkRoot>> m_found;
    // Threads are numbered. All but the last end with the look that keeps them.
    std::uint64_t m_lastThread = 0;
    bool m_isLastAtWork = false;
    std::chrono::steady_clock::time_point m_lookStart; // of the last thread's look
    std::vector<std::thread> m_threads;
};

} // namespace mac
