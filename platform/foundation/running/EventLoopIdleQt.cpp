#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/NSRunLoop.h"
#include <QCoreApplication>
#include <deque>
#include <memory>
#include <utility>

namespace mac {

namespace {

// A timer of interval 0 fires once in each pass of the event loop. The loop is idle if the program got no other event
// between two of them. The toolkit's own signal before it waits comes also while events are due.
class IdleWatch : public QObject {
public:
    static IdleWatch& shared() {
        static IdleWatch& watch = *std::make_unique<IdleWatch>().release();
        return watch;
    }

    void add(std::function<void()> function) {
        m_functions.push_back(std::move(function));
        startSoon();
    }

    bool eventFilter(QObject* receiver, QEvent*) override {
        if (receiver == this) return false;
        m_wasBusyBefore = std::exchange(m_wasBusy, true);
        return false;
    }

    void disregardCurrentEvent() { m_wasBusy = m_wasBusyBefore; }

protected:
    void timerEvent(QTimerEvent*) override {
        if (std::exchange(m_wasBusy, false)) return;
        // Stopped first: a function that runs the loop itself must not hold up those behind it.
        stop();
        std::function<void()> const function = std::move(m_functions.front());
        m_functions.pop_front();
        if (!m_functions.empty()) startSoon();
        guarded(function);
    }

private:
    // The timer belongs to the event loop, of which there may be none yet.
    void startSoon() {
        if (std::exchange(m_isStarted, true)) return;
        performOnMainRunLoop([this] { start(); });
    }

    void start() {
        QCoreApplication* const loop = QCoreApplication::instance();
        loop->installEventFilter(this);
        m_loopEnds = QObject::connect(loop, &QObject::destroyed, this, [this] { loopEnded(); });
        m_timer = startTimer(0);
        // What is due by now has not been seen.
        m_wasBusy = true;
    }

    void stop() {
        killTimer(std::exchange(m_timer, 0));
        QObject::disconnect(m_loopEnds);
        QCoreApplication::instance()->removeEventFilter(this);
        m_isStarted = false;
    }

    void loopEnded() {
        m_timer = 0;
        m_isStarted = false;
        if (!m_functions.empty()) startSoon();
    }

    std::deque<std::function<void()>> m_functions{};
    QMetaObject::Connection m_loopEnds{};
    int m_timer{0};
    bool m_isStarted{false};
    bool m_wasBusy{true};
    // Before the event that is being handled.
    bool m_wasBusyBefore{true};
};

} // namespace

void performWhenMainRunLoopIsIdle(std::function<void()> function) { IdleWatch::shared().add(std::move(function)); }

void disregardCallForIdleness() { IdleWatch::shared().disregardCurrentEvent(); }

} // namespace mac
