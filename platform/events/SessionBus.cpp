#include "platform/events/SessionBus.h"
#include <QByteArray>
#include <QDBusArgument>
#include <QFile>
#include <QVariantMap>
#include <sys/stat.h>

namespace mac {

namespace {

QDBusMessage askBus(QDBusConnection const& connection, char const* method, QVariantList const& arguments) {
    constexpr int milliseconds = 25000;
    QDBusMessage message =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method);
    message.setArguments(arguments);
    return connection.call(message, QDBus::Block, milliseconds);
}

} // namespace

// Without an address the bus's library would try to start a bus of its own.
std::optional<QString> sessionBusAddress() {
    QByteArray const address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty()) return QString::fromLocal8Bit(address);
    QByteArray const folder = qgetenv("XDG_RUNTIME_DIR");
    if (folder.isEmpty()) return std::nullopt;
    QByteArray const path = folder + "/bus";
    struct stat status {};
    if (::stat(path.constData(), &status) != 0 || !S_ISSOCK(status.st_mode)) return std::nullopt;
    return QString::fromLatin1("unix:path=" + path.toPercentEncoding("/"));
}

std::optional<QDBusConnection> connectToSessionBus() {
    std::optional<QString> const address = sessionBusAddress();
    if (!address) return std::nullopt;
    static int number = 0;
    // The name is for this process alone.
    QString const name = QStringLiteral("framekeeper-events-%1").arg(++number);
    QDBusConnection const connection = QDBusConnection::connectToBus(*address, name);
    // The library keeps one under its name for good; ours ends with the last copy.
    QDBusConnection::disconnectFromBus(name);
    return connection.isConnected() ? std::optional(connection) : std::nullopt;
}

std::optional<BusPeer> busPeer(QDBusConnection const& connection, QString const& name) {
    QDBusMessage const answer = askBus(connection, "GetConnectionCredentials", {name});
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return std::nullopt;
    QVariantMap const credentials = qdbus_cast<QVariantMap>(answer.arguments().first());
    if (!credentials.contains("UnixUserID") || !credentials.contains("ProcessID")) return std::nullopt;
    return BusPeer{credentials["UnixUserID"].toUInt(), static_cast<std::int32_t>(credentials["ProcessID"].toUInt())};
}

BusNameOwner busNameOwner(QDBusConnection const& connection, QString const& name) {
    QDBusMessage const answer = askBus(connection, "GetNameOwner", {name});
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
