#include "platform/appkit/arrangement/LateRelease.h"
#include "platform/foundation/running/EventLoop.h"
#include <QElapsedTimer>
#include <QPointer>
#include <QThread>

namespace mac {

namespace {

// What can go at once unfelt, and what goes between two looks at the clock.
constexpr std::size_t FewObjects = 5000;
constexpr std::size_t ObjectsAStep = 200;
constexpr qint64 TurnMilliseconds = 4;

} // namespace

void LateRelease::add(std::vector<id> objects) {
    bool const isLoopRunning = QThread::currentThread()->loopLevel() > 0;
    if (objects.size() <= FewObjects || !isLoopRunning) return;
    m_waiting.push_back(std::move(objects));
    if (!m_timer) {
        m_timer = std::make_unique<QTimer>();
        QObject::connect(m_timer.get(), &QTimer::timeout, m_timer.get(), [this] { guarded([&] { releaseSome(); }); });
    }
    m_timer->start();
}

void LateRelease::releaseSome() {
    QElapsedTimer turn;
    turn.start();
    QPointer<QTimer> const timer = m_timer.get();
    while (!m_waiting.empty() && turn.elapsed() < TurnMilliseconds) {
        // Taken out first: a dying object may do anything, such as adding to what waits, or taking us with it.
        std::vector<id> some;
        std::vector<id>& objects = m_waiting.front();
        for (; some.size() < ObjectsAStep && !objects.empty(); objects.pop_back())
            some.push_back(std::move(objects.back()));
        if (objects.empty()) m_waiting.pop_front();
        some.clear();
        if (!timer) return;
    }
    if (m_waiting.empty()) m_timer->stop();
}

} // namespace mac
