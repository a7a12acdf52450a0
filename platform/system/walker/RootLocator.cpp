#include "platform/system/walker/RootLocator.h"

#include "platform/system/walker/VolumeVisit.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

namespace mac {

namespace {

// How often a take that waits looks whether the walk was stopped.
constexpr std::chrono::milliseconds BetweenLooks{4};

bool isBlocked(std::string const& path) { return !mayBeVisited({.path = path}); }

} // namespace

RootLocator::RootLocator(std::vector<std::string> paths, Flags flags, std::chrono::milliseconds glance)
    : m_flags(flags), m_glance(glance), m_paths(std::move(paths)) {}

RootLocator::~RootLocator() {
    {
        std::lock_guard const lock(m_mutex);
        m_paths.clear();
    }
    for (std::thread& thread : m_threads)
        thread.join();
}

RootLocator::Taken RootLocator::take() {
    std::unique_lock lock(m_mutex);
    startThreadIfNeeded(lock);
    auto const end = m_lookStart + m_glance;
    while (m_isLastAtWork && !m_flags.wasStopped && std::chrono::steady_clock::now() < end)
        m_changed.wait_for(lock, BetweenLooks);
    Taken taken{.found = std::exchange(m_found, {}), .left = m_looking};
    std::ranges::copy(m_paths, std::back_inserter(taken.left));
    return taken;
}

std::vector<std::string> RootLocator::takeBlocked() {
    std::lock_guard const lock(m_mutex);
    auto const rest = std::stable_partition(m_paths.begin(), m_paths.end(), isBlocked);
    std::vector<std::string> blocked(std::make_move_iterator(m_paths.begin()), std::make_move_iterator(rest));
    m_paths.erase(m_paths.begin(), rest);
    return blocked;
}

std::vector<std::string>::iterator RootLocator::nextPath() {
    if (m_flags.wasStopped || m_looking.size() >= MostLooks) return m_paths.end();
    return std::ranges::find_if_not(m_paths, isBlocked);
}

// Starts a thread if there is a root to look at and no thread that will come to it.
void RootLocator::startThreadIfNeeded(std::unique_lock<std::mutex>& lock) {
    auto const now = std::chrono::steady_clock::now();
    bool const isKept = m_isLastAtWork && now - m_lookStart >= m_glance;
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
    VolumeVisit const visit({.path = path}, m_flags.wasLeft);
    return locateRoot(path);
}

} // namespace mac
