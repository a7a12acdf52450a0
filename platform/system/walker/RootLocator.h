#pragma once

#include "platform/system/Result.h"
#include "platform/system/walker/VolumeList.h"
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace mac {

// Finds where the roots of a walk lie, which may block where a disk does not answer. One thread goes from root to root;
// where it is kept for longer than a glance, another one goes on behind it. Roots on which earlier walks still wait
// (VolumeVisit.h) are passed over until these have left them. Used by one thread, that of its owner.
class RootLocator {
public:
    static constexpr std::chrono::milliseconds Glance{250};
    // So many roots are looked at at once; those behind them wait.
    static constexpr std::size_t MostLooks = 8;

    // A walk's flags: whether it was stopped, which ends what the locator does but for the looks that have begun, and
    // whether it was given up (VolumeVisit.h).
    struct Flags {
        std::atomic<bool> const& wasStopped;
        std::atomic<bool> const& wasLeft;
    };

    // REQUIRES: the flags outlive the locator.
    RootLocator(std::vector<std::string> paths, Flags flags, std::chrono::milliseconds glance = Glance);
    ~RootLocator(); // waits for the roots that are being looked at
    RootLocator(RootLocator const&) = delete;
    RootLocator& operator=(RootLocator const&) = delete;

    struct Taken {
        std::vector<Result<WalkRoot>> found; // or failed, since the last take
        std::vector<std::string> left;       // those that no take has returned yet
    };
    // Has a thread look at the roots that can be looked at, waits for it no longer than a glance, and takes what was
    // found.
    Taken take();
    // Takes those away on which earlier walks still wait.
    std::vector<std::string> takeBlocked();

private:
    std::vector<std::string>::iterator nextPath();
    void startThreadIfNeeded(std::unique_lock<std::mutex>& lock);
    void lookAround(std::uint64_t thread);
    Result<WalkRoot> lookAt(std::string const& path) const;

    Flags const m_flags;
    std::chrono::milliseconds const m_glance;
    std::mutex m_mutex; // guards all below but the threads
    std::condition_variable m_changed;
    std::vector<std::string> m_paths;   // not looked at yet
    std::vector<std::string> m_looking; // looked at now
    std::vector<Result<WalkRoot>> m_found;
    // Threads are numbered. One that is no longer the last ends after the root that keeps it.
    std::uint64_t m_lastThread = 0;
    bool m_isLastAtWork = false;
    std::chrono::steady_clock::time_point m_lookStart; // of the last thread's look
    std::vector<std::thread> m_threads;
};

} // namespace mac
