#pragma once

#include "platform/system/walker/VolumeWalker.h"

#include <atomic>
#include <mutex>
#include <string_view>

namespace mac {

// What the threads of a walk have found, for whoever takes it. Any thread may call.
class WalkFindings {
public:
    explicit WalkFindings(std::function<void()> onNews);

    void addPackage(std::string&& path);
    void addUnreadable(std::string_view path, SystemError const& error);
    void countFolder() { m_foldersVisited.fetch_add(1, std::memory_order_relaxed); }
    void finish();

    std::vector<std::string> take();
    VolumeWalkProgress progress() const;

private:
    const std::function<void()> m_onNews;
    std::atomic<std::uint64_t> m_foldersVisited = 0;
    mutable std::mutex m_mutex; // guards the rest
    std::vector<std::string> m_packages;
    bool m_newsWereTold = false; // since the last take
    VolumeWalkProgress m_progress;
};

} // namespace mac
