#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace mac {

// A mutex that a thread waits for so long as it likes, for what may be held while a disk does not answer. It does the
// work of std::timed_mutex, whose locking GCC's thread sanitizer does not see: it then reports each unlocking. Any
// thread; fits std::unique_lock and std::lock_guard, which lay down the names.
class PatientMutex {
public:
    void lock();
    bool try_lock_for(std::chrono::milliseconds patience);
    void unlock();

private:
    std::mutex m_mutex; // guards m_isLocked, and is never held while the disk is asked
    std::condition_variable m_released;
    bool m_isLocked = false;
};

} // namespace mac
