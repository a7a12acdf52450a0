#include "platform/desktop/session/SessionBus.h"
#include "platform/desktop/session/BusGreeting.h"
#include "platform/desktop/session/Session.h"
#include <QDBusArgument>
#include <QDBusError>
#include <QVariantMap>
#include <atomic>

namespace mac {

namespace {

QDBusMessage askBus(QDBusConnection const& connection, char const* method, QVariantList const& arguments,
                    BusTimeout timeout) {
    if (timeout <= BusTimeout::zero())
        return QDBusMessage::createError(QDBusError::Timeout, "There is no time left to ask the session bus");
    QDBusMessage message =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method);
    message.setArguments(arguments);
    return connection.call(message, QDBus::Block, static_cast<int>(timeout.count()));
}

} // namespace

std::optional<QDBusConnection> connectToSessionBus() {
    // Without an address the D-Bus library would try to start a bus.
    std::optional<std::string> const address = sessionBusAddress();
    if (!address || !doesBusAnswer(*address, Patience::left())) return std::nullopt;
    static std::atomic<int> number = 0;
    // The connection's name in this process.
    QString const name = QStringLiteral("framekeeper-events-%1").arg(++number);
    QDBusConnection const connection = QDBusConnection::connectToBus(QString::fromStdString(*address), name);
    // The toolkit would keep a named connection for good; without the name it is closed with its last copy.
    QDBusConnection::disconnectFromBus(name);
    return connection.isConnected() ? std::optional(connection) : std::nullopt;
}

std::optional<BusPeer> busPeer(QDBusConnection const& connection, QString const& name, BusTimeout timeout) {
    QDBusMessage const answer = askBus(connection, "GetConnectionCredentials", {name}, timeout);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return std::nullopt;
    QVariantMap const credentials = qdbus_cast<QVariantMap>(answer.arguments().first());
    if (!credentials.contains("UnixUserID") || !credentials.contains("ProcessID")) return std::nullopt;
    return BusPeer{credentials["UnixUserID"].toUInt(), static_cast<std::int32_t>(credentials["ProcessID"].toUInt())};
}

BusNameOwner busNameOwner(QDBusConnection const& connection, QString const& name, BusTimeout timeout) {
    QDBusMessage const answer = askBus(connection, "GetNameOwner", {name}, timeout);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return {{}, answer.errorName()};
    return {answer.arguments().first().toString(), {}};
}

bool requestBusName(QDBusConnection const& connection, QString const& name) {
    constexpr uint doNotQueue = 4;
    constexpr uint primaryOwner = 1;
    QDBusMessage const answer = askBus(connection, "RequestName", {name, doNotQueue}, Patience::left());
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toUInt() == primaryOwner;
}

} // namespace mac
