#pragma once

#include "platform/desktop/session/SessionBus.h"
#include "platform/events/EventQueue.h"
#include <QByteArray>
#include <QDBusMessage>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <span>

// How Apple events look as calls on the session's bus: "Send" has a row of bytes and a deadline and is answered with a
// status and a row of bytes, "Post" has a row of bytes alone. For implementations; any thread.

namespace mac {

inline constexpr char EventInterface[] = "com.tidelark.framekeeper.AppleEvents";
inline constexpr char EventPath[] = "/com/tidelark/framekeeper/AppleEvents";

// What the object tells of its methods.
QString eventIntrospection();

// The well-known name of the process that answers events.
QString eventEndpointName(std::int32_t pid);

std::span<std::byte const> bytesOf(QByteArray const& data);
QByteArray arrayOf(std::span<std::byte const> bytes);

// The status and reply that a "Send" was answered with; what a D-Bus error means if that was the answer.
SendingOutcome outcomeOfAnswer(QDBusMessage const& answer);
OSStatus statusOfBusError(QString const& name);

// The message that answers a "Send".
QDBusMessage answerTo(QDBusMessage const& message, OSStatus status, AppleEvent const& reply);

bool isOver(EventDeadline const& deadline);
// A deadline as it travels with an event: the steady clock in nanoseconds, which all processes of a computer share. An
// event without one never comes too late.
std::int64_t travellingDeadline(EventDeadline const& deadline);
// Until when an event may arrive whose sender finds the bus gone when it keeps silent for longer; the sender's own
// deadline may come first.
EventDeadline latestArrival(EventDeadline const& deadline);
bool hasPassed(std::int64_t travellingDeadline);
// How long the bus is waited for on behalf of a sender who waits until the deadline: a little longer.
BusTimeout timeoutUntil(EventDeadline const& deadline);

} // namespace mac
