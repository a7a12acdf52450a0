#include "platform/desktop/SessionBus.h"
#include "platform/desktop/Session.h"
#include <QDBusArgument>
#include <QVariantMap>
#include <atomic>

namespace mac {

namespace {

QDBusMessage askBus(QDBusConnection const& connection, char const* method, QVariantList const& arguments,
                    BusPatience patience = LongestBusPatience) {
    QDBusMessage message =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method);
    message.setArguments(arguments);
    return connection.call(message, QDBus::Block, static_cast<int>(patience.count()));
}

} // namespace

std::optional<QDBusConnection> connectToSessionBus() {
    // Without an address the bus's library would try to start a bus of its own.
    std::optional<std::string> const address = sessionBusAddress();
    if (!address) return std::nullopt;
    static std::atomic<int> number = 0;
    // The name is for this process alone.
    QString const name = QStringLiteral("framekeeper-events-%1").arg(++number);
    QDBusConnection const connection = QDBusConnection::connectToBus(QString::fromStdString(*address), name);
    // The library keeps one under its name for good; ours ends with the last copy.
    QDBusConnection::disconnectFromBus(name);
    return connection.isConnected() ? std::optional(connection) : std::nullopt;
}

std::optional<BusPeer> busPeer(QDBusConnection const& connection, QString const& name, BusPatience patience) {
    QDBusMessage const answer = askBus(connection, "GetConnectionCredentials", {name}, patience);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return std::nullopt;
    QVariantMap const credentials = qdbus_cast<QVariantMap>(answer.arguments().first());
    if (!credentials.contains("UnixUserID") || !credentials.contains("ProcessID")) return std::nullopt;
    return BusPeer{credentials["UnixUserID"].toUInt(), static_cast<std::int32_t>(credentials["ProcessID"].toUInt())};
}

BusNameOwner busNameOwner(QDBusConnection const& connection, QString const& name, BusPatience patience) {
    QDBusMessage const answer = askBus(connection, "GetNameOwner", {name}, patience);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return {{}, answer.errorName()};
    return {answer.arguments().first().toString(), {}};
}

bool requestBusName(QDBusConnection const& connection, QString const& name) {
    constexpr uint doNotQueue = 4;
    constexpr uint primaryOwner = 1;
    QDBusMessage const answer = askBus(connection, "RequestName", {name, doNotQueue});
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toUInt() == primaryOwner;
}

} // namespace mac
