#pragma once

#include "platform/desktop/session/Patience.h"
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QString>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

// The session's message bus. For implementations; any thread may connect, and uses its connection alone.

namespace mac {

// A new connection, shared with no other caller; nullopt without a bus, or if the bus does not answer within the
// thread's patience. Never starts a bus.
std::optional<QDBusConnection> connectToSessionBus();

// Gives up the connection. If nothing else holds it, it is closed when this returns, and calls that waited for replies
// have failed; the toolkit, which closes it on a thread of its own, would do so at any later time, in the middle of the
// program's exit, too.
void closeConnection(std::optional<QDBusConnection>& connection);

// How long the bus itself, which is asked by the calls below, is waited for: by default the thread's patience. Once
// that is over, the bus is not asked.
using BusTimeout = std::chrono::milliseconds;

// The process behind a connection to the bus. The name is a well-known one, or the unique one that the bus gave.
struct BusPeer {
    std::uint32_t user{0};
    std::int32_t pid{0};
};
std::optional<BusPeer> busPeer(QDBusConnection const& connection, QString const& name,
                               BusTimeout timeout = Patience::left());

// The connection that owns a well-known name.
struct BusNameOwner {
    // Its unique name (":1.42"); empty without an owner.
    QString number;
    // The D-Bus error if the name has no owner, or the bus did not tell: "org.freedesktop.DBus.Error.NameHasNoOwner".
    QString errorName;
};
BusNameOwner busNameOwner(QDBusConnection const& connection, QString const& name,
                          BusTimeout timeout = Patience::left());

// A question that each bus answers at once; it fails when none has come in time.
QDBusPendingCall askWhetherBusRuns(QDBusConnection const& connection, BusTimeout timeout);

// Takes the well-known name. False if another connection has it.
bool requestBusName(QDBusConnection const& connection, QString const& name);

// Whether the message bus at the address greets a client in time. The toolkit's own connecting knows no time-out of the
// caller's, and holds up all its other connections while a stopped bus keeps silent. True where that cannot be told:
// for an address that is no local socket, and without one that can be connected to, which fails at once. Any thread.
bool doesBusAnswer(std::string_view address, std::chrono::milliseconds longest);

} // namespace mac
