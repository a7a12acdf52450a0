#include "platform/events/EventEndpointDBus.h"
#include "platform/events/EventTransport.h"
#include "platform/foundation/running/EventLoop.h"
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QMetaType>
#include <QThread>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <unistd.h>
#include <utility>

// The transport has a thread of its own because a main thread that waits for a reply must receive that reply and
// incoming events, and nothing else: no input, timer or notification. A nested event loop would let all of them in, and
// a connection of the main thread would be served by that loop alone. So one thread serves a private connection and
// puts incoming events into the event queue, where both the run loop and a waiting sender find them. It also sends, and
// asks the bus which process a peer is, which blocks.

namespace mac {

namespace {

// How long the end of the program waits for the transport, which may be sending an event to a bus that hangs.
constexpr std::chrono::seconds LongestEnd{3};

// Sends what is still to be sent and ends the transport's thread, if it runs.
void stopTransport();

// The thread and its endpoint. The thread runs from the first use to the end of the program's event loop, without which
// the toolkit would deliver neither tasks nor answers of the bus.
class Transport {
public:
    static Transport& shared() {
        static Transport& transport = *std::make_unique<Transport>().release();
        return transport;
    }

    Transport() {
        // Qt's own bus thread and its table of types are created first, so that they are destroyed after this thread.
        QDBusConnection::disconnectFromBus(QStringLiteral("framekeeper-events"));
        QMetaType::fromType<QDBusArgument>().id();
        m_thread.setObjectName("Apple events");
        m_endpoint.moveToThread(&m_thread);
        // Stops the thread if the event loop never ends and no bus is found.
        std::atexit(&stopTransport);
    }

    // Runs the function on the thread. It is passed under a lock of our own, since the thread sanitizer does not see
    // the toolkit's locks.
    void run(std::function<void(EventEndpoint&)> function) {
        {
            std::lock_guard const guard(m_lock);
            m_waiting.push_back(std::move(function));
            if (!std::exchange(m_isStarted, true)) start();
        }
        QMetaObject::invokeMethod(
            &m_endpoint, [] { shared().runNext(); }, Qt::QueuedConnection);
    }

    // The main thread.
    void stop() {
        bool const isAskedAgain = std::exchange(m_isEnding, true);
        if (!isAskedAgain && m_thread.isRunning())
            run([](EventEndpoint& endpoint) {
                endpoint.close();
                QThread::currentThread()->quit();
            });
        // A thread that takes longer is left running, and not waited for again.
        if (!m_thread.wait(isAskedAgain ? QDeadlineTimer(0) : QDeadlineTimer(LongestEnd))) return;
        m_isEnding = false;
        std::lock_guard const guard(m_lock);
        m_isStarted = false;
    }

private:
    // Exit handlers run in reverse order, and once there is a connection the toolkit has created all that asking a bus
    // needs.
    static void stopAtExit() {
        static std::once_flag isArranged;
        std::call_once(isArranged, [] { std::atexit(&stopTransport); });
    }

    void start() {
        m_thread.start();
        qAddPostRoutine(&stopTransport);
    }

    void runNext() {
        std::function<void(EventEndpoint&)> function;
        {
            std::lock_guard const guard(m_lock);
            function = std::move(m_waiting.front());
            m_waiting.pop_front();
        }
        guarded([&] { function(m_endpoint); });
    }

    std::mutex m_lock;
    bool m_isStarted = false;
    // The main thread's.
    bool m_isEnding = false;
    std::deque<std::function<void(EventEndpoint&)>> m_waiting;
    QThread m_thread;
    EventEndpoint m_endpoint{&stopAtExit};
};

void stopTransport() { Transport::shared().stop(); }

std::atomic<bool> s_isWanted{false};

// Opens the endpoint if it is wanted and there is an event loop. A program with windows makes a loop of its own kind,
// so none is made here.
void openWantedEndpoint() {
    if (!s_isWanted || !QCoreApplication::instance()) return;
    Transport::shared().run([](EventEndpoint& endpoint) { endpoint.open(); });
}

} // namespace

void prepareEventEndpoint() {
    static std::once_flag isPrepared;
    std::call_once(isPrepared, [] { qAddPreRoutine(&openWantedEndpoint); });
}

void openEventEndpoint() {
    s_isWanted = true;
    openWantedEndpoint();
}

void sendToProcess(OutgoingEvent event) {
    s_isWanted = true;
    if (::gettid() == ::getpid()) requireEventLoop();
    if (!QCoreApplication::instance()) return fulfil(*event.pending, {.status = connectionInvalid});
    Transport::shared().run([outgoing = std::make_shared<OutgoingEvent const>(std::move(event))](
                                EventEndpoint& endpoint) { endpoint.send(outgoing); });
}

} // namespace mac
