#include "platform/desktop/session/SessionBus.h"
#include "platform/desktop/session/Session.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/PercentEscapes.h"
#include "platform/system/Result.h"
#include <QDBusArgument>
#include <QDBusError>
#include <QVariantMap>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace mac {

namespace {

QDBusMessage questionToBus(char const* method) {
    return QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                          method);
}

QDBusMessage askBus(QDBusConnection const& connection, char const* method, QVariantList const& arguments,
                    BusTimeout timeout) {
    if (timeout <= BusTimeout::zero())
        return QDBusMessage::createError(QDBusError::Timeout, "There is no time left to ask the session bus");
    QDBusMessage message = questionToBus(method);
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

void closeConnection(std::optional<QDBusConnection>& connection) {
    connection.reset();
    // The toolkit's thread opens connections in the order in which it is asked to close and to open them, and only it
    // finds out that this address leads nowhere.
    QString const name = QStringLiteral("framekeeper-closing");
    QDBusConnection::connectToBus(QStringLiteral("unix:path=/dev/null"), name);
    QDBusConnection::disconnectFromBus(name);
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

QDBusPendingCall askWhetherBusRuns(QDBusConnection const& connection, BusTimeout timeout) {
    return connection.asyncCall(questionToBus("GetId"), static_cast<int>(timeout.count()));
}

bool requestBusName(QDBusConnection const& connection, QString const& name) {
    constexpr uint doNotQueue = 4;
    constexpr uint primaryOwner = 1;
    QDBusMessage const answer = askBus(connection, "RequestName", {name, doNotQueue}, Patience::left());
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toUInt() == primaryOwner;
}

namespace {

// A key's value in the first of the addresses, as in "unix:path=/run/user/1000/bus,guid=…;unix:…".
std::optional<std::string> valueIn(std::string_view address, std::string_view key) {
    address = address.substr(0, address.find(';'));
    constexpr std::string_view transport = "unix:";
    if (!address.starts_with(transport)) return std::nullopt;
    address.remove_prefix(transport.size());
    while (!address.empty()) {
        std::string_view const pair = address.substr(0, address.find(','));
        address.remove_prefix(std::min(pair.size() + 1, address.size()));
        std::size_t const sign = pair.find('=');
        if (sign != std::string_view::npos && pair.substr(0, sign) == key)
            return percentUnescaped(pair.substr(sign + 1));
    }
    return std::nullopt;
}

// The name of the socket, which begins with NUL where it is no file.
std::optional<std::string> socketName(std::string_view address) {
    if (std::optional<std::string> const path = valueIn(address, "path")) return path;
    std::optional<std::string> const abstract = valueIn(address, "abstract");
    return abstract ? std::optional(std::string(1, '\0') + *abstract) : std::nullopt;
}

Result<FileDescriptor> connected(std::string const& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.size() >= sizeof address.sun_path)
        return SystemError{.code = ENAMETOOLONG, .operation = "connect", .item = name};
    std::memcpy(address.sun_path, name.data(), name.size());
    bool const isFile = name[0] != '\0';
    auto const length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() + (isFile ? 1 : 0));
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket.isOpen()) return lastSystemError("socket", name);
    if (::connect(socket.number(), reinterpret_cast<sockaddr*>(&address), length) != 0)
        return lastSystemError("connect", name);
    return socket;
}

} // namespace

bool doesBusAnswer(std::string_view address, std::chrono::milliseconds longest) {
    std::optional<std::string> const name = socketName(address);
    if (!name || name->empty()) return true;
    if (longest <= std::chrono::milliseconds::zero()) return false;
    Result<FileDescriptor> const socket = connected(*name);
    // EAGAIN says that the bus does not even take clients any more; all else is the toolkit's to find out.
    if (!socket.hasValue()) return !socket.problem().is(EAGAIN);
    // The credentials byte, then any command: the bus has to answer "REJECTED" with the ways to authenticate.
    constexpr std::string_view greeting("\0AUTH\r\n", 7);
    if (::send(socket.value().number(), greeting.data(), greeting.size(), MSG_NOSIGNAL) < 0) return true;
    auto const end = std::chrono::steady_clock::now() + longest;
    for (;;) {
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd answer{.fd = socket.value().number(), .events = POLLIN, .revents = 0};
        int const count = ::poll(&answer, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        if (count >= 0 || errno != EINTR) return count != 0;
    }
}

} // namespace mac
