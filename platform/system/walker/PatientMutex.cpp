#include "platform/system/walker/PatientMutex.h"

namespace mac {

void PatientMutex::lock() {
    std::unique_lock own(m_mutex);
    m_released.wait(own, [this] { return !m_isLocked; });
    m_isLocked = true;
}

bool PatientMutex::try_lock_for(std::chrono::milliseconds patience) {
    std::unique_lock own(m_mutex);
    if (!m_released.wait_for(own, patience, [this] { return !m_isLocked; })) return false;
    m_isLocked = true;
    return true;
}

void PatientMutex::unlock() {
    std::lock_guard const own(m_mutex);
    m_isLocked = false;
    m_released.notify_one();
}

} // namespace mac
