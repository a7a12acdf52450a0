#include "platform/events/EventEndpointDBus.h"
#include "platform/events/DescriptorContents.h"
#include "platform/events/EventDispatch.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/Log.h"
#include <QDBusError>
#include <QMetaType>
#include <climits>
#include <unistd.h>
#include <utility>

namespace mac {

namespace {

// The most events without reply that may wait at one receiver: half of the receiver's queue, so that two senders find
// room.
constexpr int MostUnhandled = 512;

// How long the end of the transport waits for the bus.
constexpr std::chrono::milliseconds LongestQuestionAtEnd{500};
// A bus that refuses a connection does so at once, and costs nothing to ask again.
constexpr std::chrono::milliseconds LongestRefusal{100};

NSString nsString(QString const& text) { return NSString::stringWithUTF8String_(text.toUtf8().constData()); }

} // namespace

EventEndpoint::EventEndpoint(void (*noteConnected)()) : m_noteConnected(noteConnected) {
    constexpr std::chrono::milliseconds betweenLooks{500};
    m_nextLook.setInterval(betweenLooks);
    connect(&m_nextLook, &QTimer::timeout, this, [this] { guarded([this] { open(); }); });
}

void EventEndpoint::open() {
    // The signal that the bus ended may arrive after a sender has connected to the next bus.
    if (m_connection && m_connection->isConnected()) return m_nextLook.stop();
    m_peers.clear();
    m_endpoints.clear();
    m_unhandled.clear();
    std::chrono::steady_clock::time_point const start = std::chrono::steady_clock::now();
    m_connection = connectToSessionBus();
    m_failed.reset();
    if (!m_connection) {
        std::chrono::steady_clock::time_point const end = std::chrono::steady_clock::now();
        if (end - start > LongestRefusal) m_failed = end;
        return;
    }
    m_nextLook.stop();
    // Other processes find this one on the next bus only if it connects there by itself.
    m_connection->connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                          QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), &m_nextLook,
                          SLOT(start()));
    m_connection->registerVirtualObject(EventPath, this);
    requestBusName(*m_connection, eventEndpointName(::getpid()));
    m_noteConnected();
}

void EventEndpoint::close() {
    m_nextLook.stop();
    if (!m_connection) return;
    // Once the bus answers a later call, all earlier messages have been sent. A bus that hangs does not delay the
    // end.
    busNameOwner(*m_connection, eventEndpointName(::getpid()), LongestQuestionAtEnd);
    m_isClosing = true;
    takeReplies();
    closeConnection(m_connection);
    m_isClosing = false;
}

void EventEndpoint::takeReplies() {
    for (QDBusPendingCallWatcher* const watcher : findChildren<QDBusPendingCallWatcher*>()) {
        if (!watcher->isFinished()) continue;
        Q_EMIT watcher->finished(watcher);
        // What the toolkit has posted about it would be handled once more.
        watcher->disconnect(this);
    }
}

void EventEndpoint::send(std::shared_ptr<OutgoingEvent const> const& outgoing, Form form) {
    OutgoingEvent const& sending = *outgoing;
    // A bus that hangs is waited for once while the sender waits.
    if (!m_failed || *m_failed < sending.since) open();
    auto const isInVain = [&] { return isOver(sending.deadline) || isAbandoned(*sending.pending); };
    if (isInVain()) return fulfil(*sending.pending, {.status = errAETimeout});
    // The receiver refuses an event that arrives too late, so the bus need not be asked first whether it responds.
    if (sending.expectation == Expectation::ReplyUntilDeadline && form == Form::WithDeadline) {
        QString const* const known = knownEndpoint(sending.process);
        if (known) return callUnasked(*known, outgoing);
    }
    Result<QString, SendingOutcome> const found = connectionOf(sending.process, sending.deadline);
    if (!found.hasValue()) return fulfil(*sending.pending, found.problem());
    // The sender has given up: an event that is sent now would arrive unexpectedly.
    if (isInVain()) return fulfil(*sending.pending, {.status = errAETimeout});
    QString const& number = found.value();
    if (sending.expectation != Expectation::Nothing) return call(number, outgoing, form);
    if (m_unhandled[number] >= MostUnhandled) return fulfil(*sending.pending, {.status = memFullErr});
    ++m_unhandled[number];
    connect(watchedCall(number, "Post", {arrayOf(sending.event)}), &QDBusPendingCallWatcher::finished, this,
            [this, number](QDBusPendingCallWatcher* finished) { noteHandled(number, *finished); });
    fulfil(*sending.pending, {});
}

bool EventEndpoint::handleMessage(QDBusMessage const& message, QDBusConnection const& connection) {
    bool const isKnown = message.member() == "Send" || message.member() == "Post";
    if (message.interface() != EventInterface || !isKnown) return false;
    guarded([&] { receive(message, connection); });
    return true;
}

QDBusPendingCallWatcher* EventEndpoint::watchedCall(QString const& number, char const* member,
                                                    QVariantList const& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(number, EventPath, EventInterface, member);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    // The waiting sender has a time-out of its own.
    return new QDBusPendingCallWatcher(m_connection->asyncCall(message, INT_MAX), this);
}

void EventEndpoint::call(QString const& number, std::shared_ptr<OutgoingEvent const> const& outgoing, Form form) {
    QVariantList arguments{arrayOf(outgoing->event)};
    if (form == Form::WithDeadline) arguments.append(qlonglong{travellingDeadline(outgoing->deadline)});
    connect(watchedCall(number, "Send", arguments), &QDBusPendingCallWatcher::finished, this,
            [this, outgoing, form](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                bool const isOlder = !m_isClosing && finished->error().type() == QDBusError::InvalidArgs;
                if (!isOlder || form == Form::BytesAlone)
                    return fulfil(*outgoing->pending, outcomeOfAnswer(finished->reply()));
                guarded([&] { send(outgoing, Form::BytesAlone); });
            });
    noteSent(*outgoing->pending);
}

void EventEndpoint::callUnasked(QString const& number, std::shared_ptr<OutgoingEvent const> const& outgoing) {
    auto const isSettled = std::make_shared<bool>(false);
    qlonglong const latest = travellingDeadline(latestArrival(outgoing->deadline));
    connect(watchedCall(number, "Send", {arrayOf(outgoing->event), latest}), &QDBusPendingCallWatcher::finished, this,
            [this, outgoing, isSettled](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (std::exchange(*isSettled, true)) return;
                guarded([&] { takeAnswer(*finished, outgoing); });
            });
    QDBusPendingCall const question = askWhetherBusRuns(*m_connection, timeoutUntil(outgoing->deadline));
    connect(new QDBusPendingCallWatcher(question, this), &QDBusPendingCallWatcher::finished, this,
            [this, outgoing, isSettled](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                // Without a connection the call fails by itself.
                bool const isHung = finished->isError() && m_connection && m_connection->isConnected();
                if (!isHung || std::exchange(*isSettled, true)) return;
                fulfil(*outgoing->pending, {.status = connectionInvalid});
            });
    noteSent(*outgoing->pending);
}

void EventEndpoint::takeAnswer(QDBusPendingCallWatcher const& finished,
                               std::shared_ptr<OutgoingEvent const> const& outgoing) {
    SendingOutcome const outcome = outcomeOfAnswer(finished.reply());
    QDBusError::ErrorType const error = finished.error().type();
    bool const isGone = finished.isError() && outcome.status == procNotFound;
    bool const isRefused = error == QDBusError::TimedOut || error == QDBusError::InvalidArgs;
    // A call that ends with its connection may have been handled: the toolkit does not tell it from one that was
    // never sent.
    // What is sent once more while the end comes would reach nobody.
    if (m_isClosing || (!isGone && !isRefused)) return fulfil(*outgoing->pending, outcome);
    m_endpoints.erase(outgoing->process.pid);
    send(outgoing, error == QDBusError::InvalidArgs ? Form::BytesAlone : Form::WithDeadline);
}

void EventEndpoint::receive(QDBusMessage const& message, QDBusConnection const& connection) {
    // The reply is sent later, an error at once.
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
    if (!enqueue(std::move(incoming))) refuse(QDBusError::LimitsExceeded, "Too many events wait to be handled already");
}

void EventEndpoint::setOrigin(AppleEvent& event, Peer const& peer) {
    putEntry(event, keyOriginalAddressAttr, makeDescOf(typeProcessSerialNumber, peer.serialNumber), true);
    putEntry(event, keySenderPIDAttr, makeDescOf(typeSInt32, peer.pid), true);
    putEntry(event, keyAddressAttr, makeDescOf(typeProcessSerialNumber, ProcessSerialNumber{0, kCurrentProcess}), true);
}

Result<QString, SendingOutcome> EventEndpoint::connectionOf(ProcessIdentity const& process,
                                                            EventDeadline const& deadline) {
    if (!m_connection) return withoutBus();
    BusNameOwner owner = busNameOwner(*m_connection, eventEndpointName(process.pid), timeoutUntil(deadline));
    if (owner.number.isEmpty() && !m_connection->isConnected()) {
        // The bus has ended unnoticed; there may be another one by now.
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

QString const* EventEndpoint::knownEndpoint(ProcessIdentity const& process) {
    if (!m_connection || !m_connection->isConnected()) return nullptr;
    auto const found = m_endpoints.find(process.pid);
    return found != m_endpoints.end() && found->second.process == process ? &found->second.number : nullptr;
}

void EventEndpoint::noteHandled(QString const& number, QDBusPendingCallWatcher& finished) {
    finished.deleteLater();
    auto const unhandled = m_unhandled.find(number);
    if (unhandled != m_unhandled.end() && --unhandled->second == 0) m_unhandled.erase(unhandled);
    if (finished.isError()) NSLog("An Apple event was not taken: %@", nsString(finished.error().message()));
}

bool EventEndpoint::belongsTo(QString const& number, ProcessIdentity const& process, EventDeadline const& deadline) {
    std::optional<Peer> const peer = knownPeer(number, timeoutUntil(deadline));
    return peer && peer->user == ::geteuid() && peer->pid == process.pid && runningProcess(process).has_value();
}

std::optional<EventEndpoint::Peer> EventEndpoint::knownPeer(QString const& number, BusTimeout timeout) {
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

} // namespace mac
