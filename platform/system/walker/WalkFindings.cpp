#include "platform/system/walker/WalkFindings.h"

#include <utility>

namespace mac {

WalkFindings::WalkFindings(std::function<void()> onNews) : m_onNews(std::move(onNews)) {}

void WalkFindings::addPackage(std::string&& path) {
    {
        std::lock_guard const lock(m_mutex);
        m_packages.push_back(std::move(path));
        ++m_progress.packagesFound;
        if (std::exchange(m_newsWereTold, true)) return;
    }
    if (m_onNews) m_onNews();
}

void WalkFindings::addUnreadable(std::string_view path, SystemError const& error) {
    std::lock_guard const lock(m_mutex);
    ++m_progress.unreadableFolders;
    if (m_progress.firstUnreadable.size() < VolumeWalker::maximumUnreadableKept)
        m_progress.firstUnreadable.push_back(
            {.code = error.code, .operation = error.operation, .item = std::string(path)});
}

void WalkFindings::finish() {
    {
        std::lock_guard const lock(m_mutex);
        m_progress.isFinished = true;
    }
    if (m_onNews) m_onNews();
}

std::vector<std::string> WalkFindings::take() {
    std::lock_guard const lock(m_mutex);
    m_newsWereTold = false;
    return std::exchange(m_packages, {});
}

VolumeWalkProgress WalkFindings::progress() const {
    std::lock_guard const lock(m_mutex);
    VolumeWalkProgress progress = m_progress;
    progress.packagesToTake = m_packages.size();
    progress.foldersVisited = m_foldersVisited.load(std::memory_order_relaxed);
    return progress;
}

} // namespace mac
