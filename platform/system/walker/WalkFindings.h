#pragma once

#include "platform/system/walker/VolumeWalker.h"

#include <atomic>
#include <mutex>
#include <string_view>
#include <unordered_set>

namespace mac {

// What the threads of a walk have found, for whoever takes it. Any thread may call.
class WalkFindings {
public:
    enum class Keeping { UntilTaken, Always };
    // `Always` keeps the packages for packagesOfWalk() as well.
    WalkFindings(std::function<void()> onNews, Keeping keeping);

    // Packages that are there, of which the walk has not told yet; once, before any other is found.
    void addRemembered(std::vector<std::string>&& paths);
    void addPackage(std::string&& path);
    void addUnreadable(std::string_view path, SystemError const& error);
    void countFolder() { m_foldersVisited.fetch_add(1, std::memory_order_relaxed); }
    void countListRead() { m_listsRead.fetch_add(1, std::memory_order_relaxed); }
    void finish();

    std::vector<std::string> take();
    VolumeWalkProgress progress() const;
    // At most VolumeWalker::maximumUnreadableListed.
    std::vector<SystemError> unreadable() const;
    // The remembered packages that the walk did not come to; none before it has finished.
    std::vector<std::string> vanished() const;
    // All packages that the walk came to. REQUIRES: Keeping::Always.
    std::vector<std::string> packagesOfWalk() const;

private:
    const std::function<void()> m_onNews;
    Keeping const m_keeping;
    std::atomic<std::uint64_t> m_foldersVisited = 0;
    std::atomic<std::uint64_t> m_listsRead = 0;
    mutable std::mutex m_mutex; // guards the rest
    std::vector<std::string> m_packages;
    std::vector<std::string> m_packagesOfWalk;
    std::unordered_set<std::string> m_unconfirmed; // remembered, and not yet found by the walk
    std::vector<SystemError> m_unreadable;
    bool m_newsWereTold = false; // since the last take
    VolumeWalkProgress m_progress;
};

} // namespace mac
