#pragma once

#include "platform/system/walker/VolumeWalker.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string_view>
#include <unordered_set>

namespace mac {

// What the threads of a walk have found, for whoever takes it. Any thread may call.
class WalkFindings {
public:
    enum class Keeping { UntilTaken, Always };
    // `Always` keeps the packages for takePackagesOfWalk() as well.
    WalkFindings(std::function<void()> onNews, Keeping keeping);

    // Packages that are there, of which the walk has not told yet, or none; once, before any other is found.
    void addRemembered(std::vector<std::string>&& paths);
    // Returns when addRemembered has been called; false if that takes longer than the patience.
    bool waitUntilRecalled(std::chrono::milliseconds patience) const;
    void addPackage(std::string&& path);
    void addUnreadable(std::string_view path, SystemError const& error);
    void countFolder() { m_foldersVisited.fetch_add(1, std::memory_order_relaxed); }
    void countListRead() { m_listsRead.fetch_add(1, std::memory_order_relaxed); }
    void finish();
    // Forgets onNews, which is not called once this has returned.
    void silence();

    std::vector<std::string> take();
    // The remembered packages that were not taken yet, if there are at most as many; else none are taken.
    std::vector<std::string> takeRemembered(std::size_t most);
    VolumeWalkProgress progress() const;
    // At most VolumeWalker::maximumUnreadableListed.
    std::vector<SystemError> unreadable() const;
    // The remembered packages that the walk did not come to; none before it has finished.
    std::vector<std::string> vanished() const;
    // All packages that the walk came to, once. REQUIRES: Keeping::Always.
    std::vector<std::string> takePackagesOfWalk();

private:
    void tellNews();

    std::mutex m_newsMutex; // guards m_onNews, also while it is called
    std::function<void()> m_onNews;
    Keeping const m_keeping;
    std::atomic<std::uint64_t> m_foldersVisited = 0;
    std::atomic<std::uint64_t> m_listsRead = 0;
    mutable std::mutex m_mutex; // guards the rest
    mutable std::condition_variable m_recalled;
    bool m_isRecalled = false;
    std::vector<std::string> m_packages; // those that are remembered come first
    std::size_t m_rememberedToTake = 0;
    std::vector<std::string> m_packagesOfWalk;
    std::unordered_set<std::string> m_unconfirmed; // remembered, and not yet found by the walk
    std::vector<SystemError> m_unreadable;
    bool m_newsWereTold = false; // since the last take
    VolumeWalkProgress m_progress;
};

} // namespace mac
