#include "platform/events/EventCallsDBus.h"
#include "platform/events/AppleEvents.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/processes/Processes.h"
#include <QDBusError>
#include <QMetaType>
#include <QVariantList>
#include <algorithm>

namespace mac {

QString eventIntrospection() {
    return QStringLiteral("<interface name=\"%1\"><method name=\"Send\"><arg type=\"ay\" direction=\"in\"/>"
                          "<arg type=\"x\" direction=\"in\"/><arg type=\"i\" direction=\"out\"/><arg type=\"ay\" "
                          "direction=\"out\"/></method>"
                          "<method name=\"Post\"><arg type=\"ay\" direction=\"in\"/></method></interface>")
        .arg(EventInterface);
}

QString eventEndpointName(std::int32_t pid) {
    return QStringLiteral("com.tidelark.framekeeper.AppleEvents.p%1").arg(pid);
}

std::span<std::byte const> bytesOf(QByteArray const& data) {
    return std::as_bytes(std::span(data.constData(), static_cast<std::size_t>(data.size())));
}

QByteArray arrayOf(std::span<std::byte const> bytes) {
    return {reinterpret_cast<char const*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

OSStatus statusOfBusError(QString const& name) {
    if (name == "org.freedesktop.DBus.Error.LimitsExceeded") return memFullErr;
    if (name == "org.freedesktop.DBus.Error.NameHasNoOwner" || name == "org.freedesktop.DBus.Error.ServiceUnknown")
        return procNotFound;
    if (name == "org.freedesktop.DBus.Error.TimedOut") return errAETimeout;
    return connectionInvalid;
}

SendingOutcome outcomeOfAnswer(QDBusMessage const& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage) return {.status = statusOfBusError(answer.errorName())};
    QVariantList const arguments = answer.arguments();
    bool const isFormed = arguments.size() == 2 && arguments[0].typeId() == QMetaType::Int &&
                          arguments[1].typeId() == QMetaType::QByteArray;
    if (!isFormed) return {.status = connectionInvalid};
    Result<AEDesc, Failure> reply = unflattened(bytesOf(arguments[1].toByteArray()));
    if (!reply.hasValue()) return {.status = errAECorruptData};
    int const status = arguments[0].toInt();
    return {.status = status, .reply = status == noErr ? reply.takeValue() : AppleEvent{}};
}

QDBusMessage answerTo(QDBusMessage const& message, OSStatus status, AppleEvent const& reply) {
    Result<std::vector<std::byte>, Failure> const flat = flattened(reply);
    if (!flat.hasValue()) return message.createErrorReply(QDBusError::LimitsExceeded, "The reply is too large");
    return message.createReply({static_cast<int>(status), arrayOf(flat.value())});
}

bool isOver(EventDeadline const& deadline) { return deadline && std::chrono::steady_clock::now() >= *deadline; }

std::int64_t travellingDeadline(EventDeadline const& deadline) {
    if (!deadline) return INT64_MAX;
    return std::chrono::nanoseconds(deadline->time_since_epoch()).count();
}

EventDeadline latestArrival(EventDeadline const& deadline) {
    // Shorter than the wait for the bus, since the toolkit's timers may run an eighth too fast.
    constexpr std::chrono::seconds longestUnderWay{4};
    auto const latest = std::chrono::steady_clock::now() + longestUnderWay;
    return std::min(deadline.value_or(latest), {latest});
}

bool hasPassed(std::int64_t travellingDeadline) {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count() >= travellingDeadline;
}

// A little longer than the sender waits, so that the sender reports its own time-out rather than a bus that is gone:
// the toolkit's timers may run an eighth too fast.
BusTimeout timeoutUntil(EventDeadline const& deadline) {
    if (!deadline) return BusTimeout(Patience::Longest);
    constexpr BusTimeout least{100};
    auto const left = std::chrono::ceil<BusTimeout>(*deadline - std::chrono::steady_clock::now());
    return std::clamp(left + left / 8 + least, least, BusTimeout(Patience::Longest));
}

} // namespace mac
