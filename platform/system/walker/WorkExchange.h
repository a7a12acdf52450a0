#pragma once

#include "platform/system/walker/FolderStack.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

namespace mac {

// Where the threads of a walk hand work to each other. A thread gives only when another waits, so a walk of a million
// folders passes a few hundred shares. The walk is over when every member waits and nothing is left to receive.
class WorkExchange {
public:
    // Makes one more thread a member. It must be called for a thread before that thread can receive, and for the first
    // before any other has received. False when the walk is over.
    bool enroll();
    void withdraw(); // a member that only gave, or whose thread could not be started

    // Cheap enough to ask at every folder.
    bool isHungry() const { return m_hunger.load(std::memory_order_relaxed) > 0; }
    void give(FolderShare&& share);
    // Waits for a share; nullopt once the walk is over.
    std::optional<FolderShare> receive();

    // Ends the walk, whatever is left to do. isOver() is cheap enough to ask at every folder.
    void close();
    bool isOver() const { return m_isOver.load(std::memory_order_relaxed); }
    // Waits until the walk is over; false if the time passes first.
    bool waitUntilOver(std::chrono::milliseconds time);

private:
    void end(); // m_mutex is held

    std::mutex m_mutex;
    std::condition_variable m_shareArrived;
    std::condition_variable m_ended;
    std::deque<FolderShare> m_shares;
    int m_members = 0;
    int m_waiting = 0;
    std::atomic<int> m_hunger = 0; // waiting members without a share to come
    std::atomic<bool> m_isOver = false;
};

} // namespace mac
