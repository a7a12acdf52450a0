#pragma once

#include "platform/desktop/session/SessionBus.h"
#include "platform/events/AppleEvents.h"
#include "platform/events/EventCallsDBus.h"
#include "platform/events/EventTransport.h"
#include "platform/processes/Processes.h"
#include "platform/system/Result.h"
#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>

namespace mac {

// The end of this process's connection to the session bus by which Apple events travel: it sends events, and receives
// and answers those of other processes. Owned by the transport; it, its members and all calls belong on the transport's
// thread.
class EventEndpoint : public QDBusVirtualObject {
public:
    // Calls the function after each connecting to a bus.
    explicit EventEndpoint(void (*noteConnected)());

    // Connects to the session bus; again if the bus has ended since.
    void open();

    // Sends what is still to be sent, takes the replies that have come, and closes the connection.
    void close();

    // The call's arguments. Receivers of earlier versions refuse a call with a deadline, without handling the event.
    enum class Form { WithDeadline, BytesAlone };

    // Fulfils the event's pending reply, at once or later.
    void send(std::shared_ptr<OutgoingEvent const> const& outgoing, Form form = Form::WithDeadline);

    QString introspect(QString const&) const override { return eventIntrospection(); }

    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override;

private:
    // The process behind a connection.
    struct Peer : BusPeer {
        // {0, kNoProcess} if the process had ended.
        ProcessSerialNumber serialNumber{};
    };

    // The outcome of each sending when there is no session bus.
    static SendingOutcome withoutBus() { return {.status = connectionInvalid, .hasNoEndpoint = true}; }

    // Calls the connection by its unique number: its well-known name may pass to another connection.
    QDBusPendingCallWatcher* watchedCall(QString const& number, char const* member, QVariantList const& arguments);

    void call(QString const& number, std::shared_ptr<OutgoingEvent const> const& outgoing, Form form);

    // Makes the call and asks the bus at the same time whether it responds. If it does not, the outcome is
    // connectionInvalid, and the receiver refuses the event should it ever arrive.
    void callUnasked(QString const& number, std::shared_ptr<OutgoingEvent const> const& outgoing);

    // Sends an event that reached no receiver, or was refused, once more, unless the sender's time is over.
    void takeAnswer(QDBusPendingCallWatcher const& finished, std::shared_ptr<OutgoingEvent const> const& outgoing);

    void receive(QDBusMessage const& message, QDBusConnection const& connection);

    // Handles the replies that have come and that this thread's event loop has not delivered yet.
    void takeReplies();

    // Sets the sender's and the receiver's address by what the bus tells, whatever the event itself says.
    static void setOrigin(AppleEvent& event, Peer const& peer);

    // Asks the bus for the unique name of the process's connection; so nothing is sent to a bus that does not respond.
    Result<QString, SendingOutcome> connectionOf(ProcessIdentity const& process, EventDeadline const& deadline);

    // The unique name of the process's connection, which no other one ever gets; null if the bus was not asked for it
    // yet.
    QString const* knownEndpoint(ProcessIdentity const& process);

    // Logs that an event without reply was refused: no sender waits for the outcome.
    void noteHandled(QString const& number, QDBusPendingCallWatcher& finished);

    // Whether the connection is the process's: it is open before the bus is asked, and the process runs afterwards, so
    // its ID was that process's all the time.
    bool belongsTo(QString const& number, ProcessIdentity const& process, EventDeadline const& deadline);

    // What the bus said of a connection, or says now: it stays true, as neither unique name nor process ever change.
    std::optional<Peer> knownPeer(QString const& number, BusTimeout timeout = Patience::Longest);

    void (*m_noteConnected)();
    std::optional<QDBusConnection> m_connection;
    bool m_isClosing{false};
    // When the last try to connect ended in vain.
    std::optional<std::chrono::steady_clock::time_point> m_failed;
    std::map<QString, Peer> m_peers;
    struct ProcessEndpoint {
        ProcessIdentity process;
        QString number;
    };
    // The connections that processes answer events on, by process ID.
    std::map<std::int32_t, ProcessEndpoint> m_endpoints;
    // The number of events without reply that are under way to a connection or wait there.
    std::map<QString, int> m_unhandled;
    // Runs while a bus that ended has no successor. A child, so that it moves to the thread with its parent.
    QTimer m_nextLook{this};
};

} // namespace mac
