#include "platform/system/walker/WalkFindings.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace mac {

WalkFindings::WalkFindings(std::function<void()> onNews, Keeping keeping)
    : m_onNews(std::move(onNews)), m_keeping(keeping) {}

void WalkFindings::addRemembered(std::vector<std::string>&& paths) {
    bool const isAny = !paths.empty();
    {
        std::lock_guard const lock(m_mutex);
        m_progress.packagesFound += paths.size();
        m_rememberedToTake = paths.size();
        m_unconfirmed.insert(paths.begin(), paths.end());
        m_packages = std::move(paths);
        m_newsWereTold = isAny;
        m_isRecalled = true;
    }
    m_recalled.notify_all();
    if (isAny) tellNews();
}

bool WalkFindings::waitUntilRecalled(std::chrono::milliseconds patience) const {
    std::unique_lock lock(m_mutex);
    return m_recalled.wait_for(lock, patience, [this] { return m_isRecalled; });
}

void WalkFindings::addPackage(std::string&& path) {
    {
        std::lock_guard const lock(m_mutex);
        if (m_keeping == Keeping::Always) m_packagesOfWalk.push_back(path);
        if (m_unconfirmed.erase(path) > 0) return; // was told already
        m_packages.push_back(std::move(path));
        ++m_progress.packagesFound;
        if (std::exchange(m_newsWereTold, true)) return;
    }
    tellNews();
}

void WalkFindings::addUnreadable(std::string_view path, SystemError const& error) {
    std::lock_guard const lock(m_mutex);
    ++m_progress.unreadableFolders;
    if (m_unreadable.size() < VolumeWalker::maximumUnreadableListed)
        m_unreadable.push_back({.code = error.code, .operation = error.operation, .item = std::string(path)});
}

void WalkFindings::finish() {
    {
        std::lock_guard const lock(m_mutex);
        m_progress.isFinished = true;
        m_progress.packagesFound -= m_unconfirmed.size();
    }
    tellNews();
}

void WalkFindings::tellNews() {
    std::lock_guard const lock(m_newsMutex);
    if (m_onNews) m_onNews();
}

void WalkFindings::silence() {
    std::lock_guard const lock(m_newsMutex);
    m_onNews = nullptr;
}

std::vector<std::string> WalkFindings::take() {
    std::lock_guard const lock(m_mutex);
    m_newsWereTold = false;
    m_rememberedToTake = 0;
    return std::exchange(m_packages, {});
}

std::vector<std::string> WalkFindings::takeRemembered(std::size_t most) {
    std::lock_guard const lock(m_mutex);
    if (m_rememberedToTake > most) return {};
    auto const end = m_packages.begin() + static_cast<std::ptrdiff_t>(std::exchange(m_rememberedToTake, 0));
    std::vector<std::string> taken(std::make_move_iterator(m_packages.begin()), std::make_move_iterator(end));
    m_packages.erase(m_packages.begin(), end);
    if (m_packages.empty()) m_newsWereTold = false;
    return taken;
}

VolumeWalkProgress WalkFindings::progress() const {
    std::lock_guard const lock(m_mutex);
    VolumeWalkProgress progress = m_progress;
    progress.packagesToTake = m_packages.size();
    progress.isRemembered = m_rememberedToTake > 0;
    std::size_t const kept = std::min(m_unreadable.size(), VolumeWalker::maximumUnreadableKept);
    progress.firstUnreadable.assign(m_unreadable.begin(), m_unreadable.begin() + static_cast<std::ptrdiff_t>(kept));
    progress.foldersVisited = m_foldersVisited.load(std::memory_order_relaxed);
    progress.listsRead = m_listsRead.load(std::memory_order_relaxed);
    return progress;
}

std::vector<SystemError> WalkFindings::unreadable() const {
    std::lock_guard const lock(m_mutex);
    return m_unreadable;
}

std::vector<std::string> WalkFindings::vanished() const {
    std::lock_guard const lock(m_mutex);
    if (!m_progress.isFinished) return {};
    return {m_unconfirmed.begin(), m_unconfirmed.end()};
}

std::vector<std::string> WalkFindings::takePackagesOfWalk() {
    std::lock_guard const lock(m_mutex);
    return std::exchange(m_packagesOfWalk, {});
}

} // namespace mac
