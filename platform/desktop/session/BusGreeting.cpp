#include "platform/desktop/session/BusGreeting.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/PercentEscapes.h"
#include "platform/system/Result.h"
#include <algorithm>
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
