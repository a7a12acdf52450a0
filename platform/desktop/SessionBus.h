#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <chrono>
#include <cstdint>
#include <optional>

// The session's message bus, for implementations. Any thread may connect; what is done with a connection is for the one
// thread that serves it.

namespace mac {

// A new connection of its own; nothing where there is no bus. None is ever started.
std::optional<QDBusConnection> connectToSessionBus();

// How long an answer of the bus itself is waited for.
using BusPatience = std::chrono::milliseconds;
inline constexpr BusPatience LongestBusPatience{25000};

// What the bus knows of a connection to it, by the number that the bus itself gave it or by a name.
struct BusPeer {
    std::uint32_t user{0};
    std::int32_t pid{0};
};
std::optional<BusPeer> busPeer(QDBusConnection const& connection, QString const& name,
                               BusPatience patience = LongestBusPatience);

// The number of the connection that owns the name. Otherwise the answer of the bus says why not.
struct BusNameOwner {
    QString number;
    QString errorName;
};
BusNameOwner busNameOwner(QDBusConnection const& connection, QString const& name,
                          BusPatience patience = LongestBusPatience);

// False when another connection has the name.
bool requestBusName(QDBusConnection const& connection, QString const& name);

} // namespace mac
