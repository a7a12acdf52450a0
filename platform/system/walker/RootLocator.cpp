#include "platform/system/walker/RootLocator.h"

#include "platform/system/walker/VolumeVisit.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace mac {

RootLocator::RootLocator(std::vector<std::string> paths, std::atomic<bool> const& wasLeft)
    : m_wasLeft(wasLeft), m_paths(std::move(paths)) {}

RootLocator::~RootLocator() {
    {
        std::lock_guard const lock(m_mutex);
        m_paths.clear();
    }
    for (std::thread& thread : m_threads)
        thread.join();
}

std::vector<Result<WalkRoot>> RootLocator::take() {
    std::unique_lock lock(m_mutex);
    goOn(lock);
    m_changed.wait_until(lock, m_lookStart + Glance, [this] { return !m_isLastAtWork; });
    return std::exchange(m_found, {});
}

bool RootLocator::isLooking() const {
    std::lock_guard const lock(m_mutex);
    return !m_looking.empty();
}

std::vector<std::string> RootLocator::left() const {
    std::lock_guard const lock(m_mutex);
    std::vector<std::string> paths = m_looking;
    paths.insert(paths.end(), m_paths.begin(), m_paths.end());
    return paths;
}

std::vector<std::string>::iterator RootLocator::nextPath() {
    return std::ranges::find_if(m_paths, [](std::string const& path) { return mayBeVisited({.path = path}); });
}

// Starts a thread if there is something to look at and none that will come to it.
void RootLocator::goOn(std::unique_lock<std::mutex>& lock) {
    auto const now = std::chrono::steady_clock::now();
    bool const isKept = m_isLastAtWork && now - m_lookStart >= Glance;
    if ((m_isLastAtWork && !isKept) || nextPath() == m_paths.end()) return;
    std::uint64_t const number = ++m_lastThread;
    m_isLastAtWork = true;
    m_lookStart = now;
    try {
        m_threads.emplace_back([this, number] { lookAround(number); });
    } catch (std::system_error const&) {
        lock.unlock();
        lookAround(number);
        lock.lock();
    }
}

void RootLocator::lookAround(std::uint64_t thread) {
    std::unique_lock lock(m_mutex);
    while (thread == m_lastThread) {
        auto const next = nextPath();
        if (next == m_paths.end()) {
            m_isLastAtWork = false;
            break;
        }
        std::string const path = std::move(*next);
        m_paths.erase(next);
        m_looking.push_back(path);
        m_lookStart = std::chrono::steady_clock::now();
        lock.unlock();
        Result<WalkRoot> found = lookAt(path);
        lock.lock();
        m_looking.erase(std::ranges::find(m_looking, path));
        m_found.push_back(std::move(found));
    }
    m_changed.notify_all();
}

Result<WalkRoot> RootLocator::lookAt(std::string const& path) const {
    VolumeVisit const visit({.path = path}, m_wasLeft);
    return locateRoot(path);
}

} // namespace mac
