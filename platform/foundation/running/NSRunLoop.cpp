#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/Log.h"
#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <memory>
#include <mutex>
#include <unistd.h>

namespace mac {

namespace {

constexpr NSTimeInterval LongestWait = 3600;

std::chrono::milliseconds waitUntil(NSDate const& date) {
    double const seconds = std::clamp(date.timeIntervalSinceNow(), 0.0, LongestWait);
    return std::chrono::milliseconds(static_cast<long long>(seconds * 1000) + 1);
}

// What other threads want done on the main thread. It stands from the first use to the program's end, so that a thread
// may call at any time; the functions run in their order when the loop gets there.
class MainThreadCalls : public QObject {
public:
    static MainThreadCalls& shared() {
        static MainThreadCalls& calls = *std::make_unique<MainThreadCalls>().release();
        return calls;
    }

    void add(std::function<void()> function) {
        std::lock_guard const guard(m_lock);
        m_functions.push_back(std::move(function));
        if (m_functions.size() == 1) wake();
    }

    // A loop that ended took the events with it that were on their way, and what was asked for before the first loop
    // has none: the next loop starts with what is left.
    void wakeNewLoop() {
        std::lock_guard const guard(m_lock);
        if (!m_functions.empty()) wake();
    }

    // Each event calls one function: a function that runs the loop itself must not delay the next ones.
    bool event(QEvent* event) override {
        if (event->type() != QEvent::User) return QObject::event(event);
        std::function<void()> function;
        {
            std::lock_guard const guard(m_lock);
            if (m_functions.empty()) return true;
            function = std::move(m_functions.front());
            m_functions.pop_front();
            if (!m_functions.empty()) wake();
        }
        guarded(function);
        return true;
    }

private:
    void wake() { QCoreApplication::postEvent(this, std::make_unique<QEvent>(QEvent::User).release()); }

    std::mutex m_lock;
    std::deque<std::function<void()>> m_functions;
};

void (*s_eventLoopSource)() = nullptr;

void wakeCallsOfNewLoop() { MainThreadCalls::shared().wakeNewLoop(); }

} // namespace

void prepareMainRunLoop() {
    MainThreadCalls::shared();
    static std::once_flag isPrepared;
    std::call_once(isPrepared, [] { qAddPreRoutine(&wakeCallsOfNewLoop); });
}

bool isMainThread() { return ::gettid() == ::getpid(); }

void setEventLoopSource(void (*newSource)()) { s_eventLoopSource = newSource; }

void requireEventLoop() {
    if (QCoreApplication::instance()) return;
    if (s_eventLoopSource) s_eventLoopSource();
    if (QCoreApplication::instance()) return;
    // The application keeps references to these as long as it lives.
    static int argumentCount = 1;
    static char name[] = "framekeeper";
    static char* arguments[] = {name, nullptr};
    static auto const application = std::make_unique<QCoreApplication>(argumentCount, arguments);
}

class NSRunLoop::Body : public ObjectBody {};

ClassDescription NSRunLoop::describeClass() {
    return {
        .name = "NSRunLoop",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSRunLoop>,
        .methods = {method<&NSRunLoop::runUntilDate_>("runUntilDate:")},
    };
}

NSRunLoop NSRunLoop::currentRunLoop() {
    static NSRunLoop const loop = adopt<NSRunLoop>();
    if (isMainThread()) requireEventLoop();
    return loop;
}

NSString NSRunLoop::currentMode() const { return *this == nil ? NSString() : currentRunLoopMode(); }

void NSRunLoop::runUntilDate_(NSDate const& date) const {
    if (*this == nil) return;
    bool isAnyHandled = false;
    do {
        isAnyHandled = runMode_beforeDate_(NSDefaultRunLoopMode, date);
    } while (date.timeIntervalSinceNow() > 0 && (isAnyHandled || isMainThread()));
}

bool NSRunLoop::runMode_beforeDate_(NSString const& mode, NSDate const& date) const {
    if (*this == nil) return false;
    RunLoopModeScope const scope(mode);
    if (!isMainThread()) return postWaitingNotifications();
    requireEventLoop();
    QEventLoop loop;
    if (loop.processEvents()) return true;
    bool isTimeOver = false;
    QTimer end;
    end.setSingleShot(true);
    QObject::connect(&end, &QTimer::timeout, &loop, [&] { isTimeOver = true; });
    end.start(waitUntil(date));
    loop.processEvents(QEventLoop::WaitForMoreEvents);
    return !isTimeOver;
}

void performSelector_withObject_afterDelay_(id const& receiver, SEL selector, id const& object, NSTimeInterval delay) {
    if (!selector) throw NSInvalidArgumentException("A delayed message needs a selector");
    if (receiver == nil) return;
    requireEventLoop();
    // A timer takes no more, which is 24 days.
    constexpr double most = std::numeric_limits<int>::max();
    double const milliseconds = std::isnan(delay) ? 0 : std::clamp(std::ceil(delay * 1000), 0.0, most);
    QTimer::singleShot(static_cast<int>(milliseconds), Qt::PreciseTimer, [receiver, selector, object] {
        guarded([&] { receiver.performSelector_withObject_(selector, object); });
    });
}

void performOnMainRunLoop(std::function<void()> function) { MainThreadCalls::shared().add(std::move(function)); }

namespace {

thread_local RunLoopModeScope const* s_innermost = nullptr;

} // namespace

RunLoopModeScope::RunLoopModeScope(NSString const& mode)
    : m_mode(mode == nil ? NSString(NSDefaultRunLoopMode) : mode), m_outer(s_innermost) {
    bool const isSame = currentRunLoopMode().isEqualToString_(m_mode);
    s_innermost = this;
    if (!isSame) wakeWaitingNotifications();
}

RunLoopModeScope::~RunLoopModeScope() {
    s_innermost = m_outer;
    if (!currentRunLoopMode().isEqualToString_(m_mode)) wakeWaitingNotifications();
}

NSString currentRunLoopMode() { return s_innermost ? s_innermost->mode() : NSString(NSDefaultRunLoopMode); }

void logCurrentException() {
    try {
        throw;
    } catch (NSException const& exception) {
        NSLog("An exception ended an event early: %s: %s", exception.name(), exception.reason());
    } catch (std::exception const& exception) {
        NSLog("An exception ended an event early: %s", exception.what());
    } catch (...) {
        NSLog("An exception ended an event early: it tells nothing of itself");
    }
}

} // namespace mac
