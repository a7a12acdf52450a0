#include "platform/system/walker/WorkExchange.h"

#include <utility>

namespace mac {

bool WorkExchange::enroll() {
    std::lock_guard const lock(m_mutex);
    if (isOver()) return false;
    ++m_members;
    return true;
}

void WorkExchange::withdraw() {
    std::lock_guard const lock(m_mutex);
    --m_members;
    if (m_members > 0 && m_waiting == m_members && m_shares.empty()) end();
}

void WorkExchange::give(FolderShare&& share) {
    std::lock_guard const lock(m_mutex);
    m_shares.push_back(std::move(share));
    m_hunger.fetch_sub(1, std::memory_order_relaxed);
    m_shareArrived.notify_one();
}

std::optional<FolderShare> WorkExchange::receive() {
    std::unique_lock lock(m_mutex);
    ++m_waiting;
    m_hunger.fetch_add(1, std::memory_order_relaxed);
    if (m_waiting == m_members && m_shares.empty()) end();
    m_shareArrived.wait(lock, [this] { return isOver() || !m_shares.empty(); });
    if (isOver()) return std::nullopt;
    --m_waiting;
    FolderShare share = std::move(m_shares.front());
    m_shares.pop_front();
    return share;
}

void WorkExchange::close() {
    std::lock_guard const lock(m_mutex);
    end();
}

bool WorkExchange::waitUntilOver(std::chrono::milliseconds time) {
    std::unique_lock lock(m_mutex);
    return m_ended.wait_for(lock, time, [this] { return isOver(); });
}

void WorkExchange::end() {
    m_isOver.store(true, std::memory_order_relaxed);
    m_shares.clear();
    m_shareArrived.notify_all();
    m_ended.notify_all();
}

} // namespace mac
