#include "platform/desktop/session/SessionBus.h"
#include "platform/events/DescriptorContents.h"
#include "platform/events/EventCallsDBus.h"
#include "platform/events/EventDispatch.h"
#include "platform/events/EventTransport.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/Log.h"
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>
#include <QDeadlineTimer>
#include <QMetaType>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdlib>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <unistd.h>
#include <utility>

// Why a thread of its own: while the main thread waits for a reply, incoming events and that reply must reach it and
// nothing else may, no input, timer or notification. An event loop within the loop would let all of them in, and a
// connection of the main thread's would wait for that loop. So one thread serves a private connection and leaves what
// arrives in the event queue, where both the run loop and a waiting sender find it. It also asks the bus who a peer is,
// which blocks, and sends.

namespace mac {

namespace {

// How many events without reply may wait at one receiver: half of what it lets wait in all, so that two senders find
// room.
constexpr int MostUnhandled = 512;

// Sends what is still to be sent and ends the transport's thread, if it runs.
void stopTransport();

NSString nsString(QString const& text) { return NSString::stringWithUTF8String_(text.toUtf8().constData()); }

// The end of the connection that belongs to this process. Lives on the transport's thread, and everything in it does.
class Endpoint : public QDBusVirtualObject {
public:
    Endpoint() {
        constexpr std::chrono::milliseconds betweenLooks{500};
        m_nextLook.setInterval(betweenLooks);
        connect(&m_nextLook, &QTimer::timeout, this, [this] { guarded([this] { open(); }); });
    }

    // Anew when the bus has died since.
    void open() {
        // The word that the bus died may come after a sender has found the next one.
        if (m_connection && m_connection->isConnected()) return m_nextLook.stop();
        m_peers.clear();
        m_endpoints.clear();
        m_unhandled.clear();
        m_connection = connectToSessionBus();
        if (!m_connection) return;
        m_nextLook.stop();
        // When the bus dies, others find us again on the next one only if we look for it.
        m_connection->connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                              QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), &m_nextLook,
                              SLOT(start()));
        m_connection->registerVirtualObject(EventPath, this);
        requestBusName(*m_connection, eventEndpointName(::getpid()));
        // At the exit the youngest goes first, and by now the toolkit has made all that asking a bus needs.
        static std::once_flag isEndArranged;
        std::call_once(isEndArranged, [] { std::atexit(&stopTransport); });
    }

    void close() {
        m_nextLook.stop();
        if (!m_connection) return;
        // What was sent last has left when the bus answers a question behind it.
        busNameOwner(*m_connection, eventEndpointName(::getpid()));
        closeConnection(m_connection);
    }

    // What travels to the receiver. Receivers of earlier versions refuse a deadline before they look at the event.
    enum class Form { WithDeadline, BytesAlone };

    void send(std::shared_ptr<OutgoingEvent const> const& outgoing, Form form = Form::WithDeadline) {
        OutgoingEvent const& sending = *outgoing;
        open();
        auto const isInVain = [&] { return isOver(sending.deadline) || isAbandoned(*sending.pending); };
        if (isInVain()) return fulfil(*sending.pending, {.status = errAETimeout});
        // The receiver refuses an event that comes too late, so the bus is not asked first whether it hangs.
        if (sending.expectation == Expectation::ReplyUntilDeadline && form == Form::WithDeadline) {
            QString const* const known = knownEndpoint(sending.process);
            if (known) return callUnasked(*known, outgoing);
        }
        Result<QString, SendingOutcome> const found = connectionOf(sending.process, sending.deadline);
        if (!found.hasValue()) return fulfil(*sending.pending, found.problem());
        // The sender has given up: what came now would come as a surprise.
        if (isInVain()) return fulfil(*sending.pending, {.status = errAETimeout});
        QString const& number = found.value();
        if (sending.expectation != Expectation::Nothing) return call(number, outgoing, form);
        if (m_unhandled[number] >= MostUnhandled) return fulfil(*sending.pending, {.status = memFullErr});
        ++m_unhandled[number];
        connect(watchedCall(number, "Post", {arrayOf(sending.event)}), &QDBusPendingCallWatcher::finished, this,
                [this, number](QDBusPendingCallWatcher* finished) { noteHandled(number, *finished); });
        fulfil(*sending.pending, {});
    }

    QString introspect(QString const&) const override { return eventIntrospection(); }

    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override {
        bool const isKnown = message.member() == "Send" || message.member() == "Post";
        if (message.interface() != EventInterface || !isKnown) return false;
        guarded([&] { receive(message, connection); });
        return true;
    }

private:
    // The process behind a connection.
    struct Peer : BusPeer {
        // {0, kNoProcess} if it did not run any more.
        ProcessSerialNumber serialNumber{};
    };

    // Nobody can be reached by events then.
    static SendingOutcome withoutBus() { return {.status = connectionInvalid, .hasNoEndpoint = true}; }

    // To the very connection that was looked at: the name may pass to another one.
    QDBusPendingCallWatcher* watchedCall(QString const& number, char const* member, QVariantList const& arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(number, EventPath, EventInterface, member);
        message.setArguments(arguments);
        message.setAutoStartService(false);
        // Whoever waits has a time-out of their own.
        return new QDBusPendingCallWatcher(m_connection->asyncCall(message, INT_MAX), this);
    }

    void call(QString const& number, std::shared_ptr<OutgoingEvent const> const& outgoing, Form form) {
        QVariantList arguments{arrayOf(outgoing->event)};
        if (form == Form::WithDeadline) arguments.append(qlonglong{travellingDeadline(outgoing->deadline)});
        connect(watchedCall(number, "Send", arguments), &QDBusPendingCallWatcher::finished, this,
                [this, outgoing, form](QDBusPendingCallWatcher* finished) {
                    finished->deleteLater();
                    bool const isOlder = finished->error().type() == QDBusError::InvalidArgs;
                    if (!isOlder || form == Form::BytesAlone)
                        return fulfil(*outgoing->pending, outcomeOfAnswer(finished->reply()));
                    guarded([&] { send(outgoing, Form::BytesAlone); });
                });
        noteSent(*outgoing->pending);
    }

    // The bus is asked beside the call whether it hangs. If it does, the sender is told, and the event, should it ever
    // arrive, is refused.
    void callUnasked(QString const& number, std::shared_ptr<OutgoingEvent const> const& outgoing) {
        auto const isSettled = std::make_shared<bool>(false);
        qlonglong const latest = travellingDeadline(latestArrival(outgoing->deadline));
        connect(watchedCall(number, "Send", {arrayOf(outgoing->event), latest}), &QDBusPendingCallWatcher::finished,
                this, [this, outgoing, isSettled](QDBusPendingCallWatcher* finished) {
                    finished->deleteLater();
                    if (std::exchange(*isSettled, true)) return;
                    guarded([&] { takeAnswer(*finished, outgoing); });
                });
        QDBusPendingCall const question = askWhetherBusRuns(*m_connection, timeoutUntil(outgoing->deadline));
        connect(new QDBusPendingCallWatcher(question, this), &QDBusPendingCallWatcher::finished, this,
                [this, outgoing, isSettled](QDBusPendingCallWatcher* finished) {
                    finished->deleteLater();
                    // Without a connection the call itself fails.
                    bool const isHung = finished->isError() && m_connection && m_connection->isConnected();
                    if (!isHung || std::exchange(*isSettled, true)) return;
                    fulfil(*outgoing->pending, {.status = connectionInvalid});
                });
        noteSent(*outgoing->pending);
    }

    // What reached nothing, or was refused, is sent again; now the bus is asked first. send() knows whether the
    // sender's time is over, too.
    void takeAnswer(QDBusPendingCallWatcher const& finished, std::shared_ptr<OutgoingEvent const> const& outgoing) {
        SendingOutcome const outcome = outcomeOfAnswer(finished.reply());
        QDBusError::ErrorType const error = finished.error().type();
        bool const isGone = finished.isError() && outcome.status == procNotFound;
        bool const isRefused = error == QDBusError::TimedOut || error == QDBusError::InvalidArgs;
        // What ends with the connection may have been handled: the toolkit does not tell it from what never left.
        if (!isGone && !isRefused) return fulfil(*outgoing->pending, outcome);
        m_endpoints.erase(outgoing->process.pid);
        send(outgoing, error == QDBusError::InvalidArgs ? Form::BytesAlone : Form::WithDeadline);
    }

    void receive(QDBusMessage const& message, QDBusConnection const& connection) {
        // The reply comes later, or an error now.
        message.setDelayedReply(true);
        auto const refuse = [&](QDBusError::ErrorType type, QString const& reason) {
            if (message.isReplyRequired()) connection.send(message.createErrorReply(type, reason));
        };
        std::optional<Peer> const peer = knownPeer(message.service());
        if (!peer || peer->user != ::geteuid())
            return refuse(QDBusError::AccessDenied, "Only processes of the same user are answered");
        QVariantList const arguments = message.arguments();
        bool const hasDeadline = arguments.size() == 2 && arguments[1].typeId() == QMetaType::LongLong;
        bool const isFormed = arguments.size() == 1 || hasDeadline;
        if (!isFormed || arguments[0].typeId() != QMetaType::QByteArray)
            return refuse(QDBusError::InvalidArgs, "The arguments must be a row of bytes and a deadline");
        if (hasDeadline && hasPassed(arguments[1].toLongLong()))
            return refuse(QDBusError::TimedOut, "The event came too late");
        QByteArray const bytes = arguments[0].toByteArray();
        Result<AEDesc, Failure> desc = unflattened(bytesOf(bytes));
        if (!desc.hasValue()) return refuse(QDBusError::InvalidArgs, QString::fromStdString(desc.problem().reason));
        if (!isEvent(desc.value())) return refuse(QDBusError::InvalidArgs, "This is no Apple event");
        bool const wantsReply = message.isReplyRequired() && message.member() == "Send";
        IncomingEvent incoming{.event = desc.takeValue(), .wantsReply = wantsReply, .size = bytesOf(bytes).size()};
        setOrigin(incoming.event, *peer);
        if (message.isReplyRequired()) {
            incoming.answer = [message, connection, wantsReply](OSStatus status, AppleEvent const& reply) {
                connection.send(wantsReply ? answerTo(message, status, reply) : message.createReply());
            };
        }
        if (!enqueue(std::move(incoming)))
            refuse(QDBusError::LimitsExceeded, "Too many events wait to be handled already");
    }

    // Where it came from and where it went, whatever the sender says.
    static void setOrigin(AppleEvent& event, Peer const& peer) {
        putEntry(event, keyOriginalAddressAttr, makeDescOf(typeProcessSerialNumber, peer.serialNumber), true);
        putEntry(event, keySenderPIDAttr, makeDescOf(typeSInt32, peer.pid), true);
        putEntry(event, keyAddressAttr, makeDescOf(typeProcessSerialNumber, ProcessSerialNumber{0, kCurrentProcess}),
                 true);
    }

    // The unique name of the process's connection, which the bus is asked for: nothing is sent to a bus that hangs.
    Result<QString, SendingOutcome> connectionOf(ProcessIdentity const& process, EventDeadline const& deadline) {
        if (!m_connection) return withoutBus();
        BusNameOwner owner = busNameOwner(*m_connection, eventEndpointName(process.pid), timeoutUntil(deadline));
        if (owner.number.isEmpty() && !m_connection->isConnected()) {
            // The bus died unnoticed; there may be another one by now.
            open();
            if (!m_connection) return withoutBus();
            owner = busNameOwner(*m_connection, eventEndpointName(process.pid), timeoutUntil(deadline));
        }
        OSStatus const status = owner.number.isEmpty() ? statusOfBusError(owner.errorName) : noErr;
        if (status != noErr) return SendingOutcome{.status = status, .hasNoEndpoint = status == procNotFound};
        if (!belongsTo(owner.number, process, deadline)) return SendingOutcome{.status = procNotFound};
        constexpr std::size_t mostKept = 256;
        if (m_endpoints.size() >= mostKept) m_endpoints.clear();
        m_endpoints.insert_or_assign(process.pid, ProcessEndpoint{process, owner.number});
        return owner.number;
    }

    // The unique name of the connection that was the process's when the bus was asked; null if it was not. The bus
    // gives no number twice, so nothing else is reached by it.
    QString const* knownEndpoint(ProcessIdentity const& process) {
        if (!m_connection || !m_connection->isConnected()) return nullptr;
        auto const found = m_endpoints.find(process.pid);
        return found != m_endpoints.end() && found->second.process == process ? &found->second.number : nullptr;
    }

    // Nobody waits any more who could be told that an event was not taken.
    void noteHandled(QString const& number, QDBusPendingCallWatcher& finished) {
        finished.deleteLater();
        auto const unhandled = m_unhandled.find(number);
        if (unhandled != m_unhandled.end() && --unhandled->second == 0) m_unhandled.erase(unhandled);
        if (finished.isError()) NSLog("An Apple event was not taken: %@", nsString(finished.error().message()));
    }

    // The connection is open before the bus is asked and the process runs afterwards: then its ID was that process's
    // all the time.
    bool belongsTo(QString const& number, ProcessIdentity const& process, EventDeadline const& deadline) {
        std::optional<Peer> const peer = knownPeer(number, timeoutUntil(deadline));
        return peer && peer->user == ::geteuid() && peer->pid == process.pid && runningProcess(process).has_value();
    }

    // The bus gives no number twice, so what it said of one stays true, and the connection's process stays the same.
    std::optional<Peer> knownPeer(QString const& number, BusTimeout timeout = Patience::Longest) {
        constexpr std::size_t mostKept = 256;
        auto const found = m_peers.find(number);
        if (found != m_peers.end()) return found->second;
        std::optional<BusPeer> const told = m_connection ? busPeer(*m_connection, number, timeout) : std::nullopt;
        if (!told) return std::nullopt;
        Peer peer{*told};
        bool const runs = GetProcessForPID(peer.pid, &peer.serialNumber) == noErr;
        if (!runs) peer.serialNumber = {};
        if (m_peers.size() >= mostKept) m_peers.clear();
        if (runs) m_peers.emplace(number, peer);
        return peer;
    }

    std::optional<QDBusConnection> m_connection;
    std::map<QString, Peer> m_peers;
    struct ProcessEndpoint {
        ProcessIdentity process;
        QString number;
    };
    // By process ID.
    std::map<std::int32_t, ProcessEndpoint> m_endpoints;
    // How many events without reply are under way to a connection or wait there.
    std::map<QString, int> m_unhandled;
    // Runs while the bus that died has no successor. A child, so that it moves to the thread with its parent.
    QTimer m_nextLook{this};
};

// The thread and its endpoint. The thread runs from the first need to the end of the program's event loop, without
// which the toolkit would deliver nothing, neither what is to be done nor what the bus answers.
class Transport {
public:
    static Transport& shared() {
        static Transport& transport = *std::make_unique<Transport>().release();
        return transport;
    }

    Transport() {
        // Qt's own thread for buses and its table of types are made first, so that they end after this one.
        QDBusConnection::disconnectFromBus(QStringLiteral("framekeeper-events"));
        QMetaType::fromType<QDBusArgument>().id();
        m_thread.setObjectName("Apple events");
        m_endpoint.moveToThread(&m_thread);
        // For an event loop that is never ended, should no bus be found.
        std::atexit(&stopTransport);
    }

    // What is to be done passes under a lock of our own, and nothing by the toolkit: its locks are not seen by the
    // thread sanitizer.
    void run(std::function<void(Endpoint&)> function) {
        {
            std::lock_guard const guard(m_lock);
            m_waiting.push_back(std::move(function));
            if (!std::exchange(m_isStarted, true)) start();
        }
        QMetaObject::invokeMethod(
            &m_endpoint, [] { shared().runNext(); }, Qt::QueuedConnection);
    }

    void stop() {
        if (!m_thread.isRunning()) return;
        run([](Endpoint& endpoint) {
            endpoint.close();
            QThread::currentThread()->quit();
        });
        // It may be waiting for a bus that hangs; nothing that it uses goes with it.
        if (!m_thread.wait(QDeadlineTimer(std::chrono::seconds(1)))) return;
        std::lock_guard const guard(m_lock);
        m_isStarted = false;
    }

private:
    void start() {
        m_thread.start();
        qAddPostRoutine(&stopTransport);
    }

    void runNext() {
        std::function<void(Endpoint&)> function;
        {
            std::lock_guard const guard(m_lock);
            function = std::move(m_waiting.front());
            m_waiting.pop_front();
        }
        guarded([&] { function(m_endpoint); });
    }

    std::mutex m_lock;
    bool m_isStarted = false;
    std::deque<std::function<void(Endpoint&)>> m_waiting;
    QThread m_thread;
    Endpoint m_endpoint;
};

void stopTransport() { Transport::shared().stop(); }

std::atomic<bool> s_isWanted{false};

// A program that shows windows makes its own kind of loop, so none is made here for it.
void openWantedEndpoint() {
    if (!s_isWanted || !QCoreApplication::instance()) return;
    Transport::shared().run([](Endpoint& endpoint) { endpoint.open(); });
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
    Transport::shared().run([outgoing = std::make_shared<OutgoingEvent const>(std::move(event))](Endpoint& endpoint) {
        endpoint.send(outgoing);
    });
}

} // namespace mac
