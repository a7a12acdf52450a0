#pragma once

#include "platform/desktop/session/SessionBus.h"
#include "platform/events/EventQueue.h"
#include <QByteArray>
#include <QDBusMessage>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <span>

// Apple events as method calls on the session bus: "Send" takes a byte array and a deadline and replies with a status
// and a byte array, "Post" takes a byte array alone. For implementations; any thread.

namespace mac {

inline constexpr char EventInterface[] = "com.tidelark.framekeeper.AppleEvents";
inline constexpr char EventPath[] = "/com/tidelark/framekeeper/AppleEvents";

// The introspection data of the object's methods.
QString eventIntrospection();

// The well-known bus name under which the process with this ID answers events.
QString eventEndpointName(std::int32_t pid);

std::span<std::byte const> bytesOf(QByteArray const& data);
QByteArray arrayOf(std::span<std::byte const> bytes);

// The status and reply in the answer to a "Send"; the status that a D-Bus error stands for.
SendingOutcome outcomeOfAnswer(QDBusMessage const& answer);
OSStatus statusOfBusError(QString const& name);

// The message that answers a "Send".
QDBusMessage answerTo(QDBusMessage const& message, OSStatus status, AppleEvent const& reply);

bool isOver(EventDeadline const& deadline);
// A deadline as it is sent with an event: nanoseconds of the steady clock, which all processes of a computer share. An
// event without deadline never arrives too late.
std::int64_t travellingDeadline(EventDeadline const& deadline);
// The latest arrival of an event whose sender treats the bus as gone if it stays silent for longer; the sender's own
// deadline if that is earlier.
EventDeadline latestArrival(EventDeadline const& deadline);
bool hasPassed(std::int64_t travellingDeadline);
// How long to wait for the bus on behalf of a sender that waits until the deadline: a little longer.
BusTimeout timeoutUntil(EventDeadline const& deadline);

} // namespace mac
