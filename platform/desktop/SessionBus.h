#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <chrono>
#include <cstdint>
#include <optional>

// The session's message bus. For implementations; any thread may connect, and uses its connection alone.

namespace mac {

// A new connection, shared with no other caller; nullopt without a bus. Never starts a bus.
std::optional<QDBusConnection> connectToSessionBus();

// How long the bus itself, which is asked by the calls below, is waited for.
using BusTimeout = std::chrono::milliseconds;
inline constexpr BusTimeout LongestBusTimeout{25'000};

// The process behind a connection to the bus. The name is a well-known one, or the unique one that the bus gave.
struct BusPeer {
    std::uint32_t user{0};
    std::int32_t pid{0};
};
std::optional<BusPeer> busPeer(QDBusConnection const& connection, QString const& name,
                               BusTimeout timeout = LongestBusTimeout);

// The connection that owns a well-known name.
struct BusNameOwner {
    // Its unique name (":1.42"); empty without an owner.
    QString number;
    // The D-Bus error if there is none: "org.freedesktop.DBus.Error.NameHasNoOwner".
    QString errorName;
};
BusNameOwner busNameOwner(QDBusConnection const& connection, QString const& name,
                          BusTimeout timeout = LongestBusTimeout);

// Takes the well-known name. False if another connection has it.
bool requestBusName(QDBusConnection const& connection, QString const& name);

} // namespace mac
