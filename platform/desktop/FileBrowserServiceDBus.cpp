#include "platform/desktop/DesktopApplication.h"
#include "platform/desktop/FileBrowserService.h"
#include "platform/desktop/SessionBus.h"
#include "platform/foundation/EventLoop.h"
#include "platform/system/FileDescriptor.h"
#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr char Name[] = "org.freedesktop.FileManager1";
constexpr char Path[] = "/org/freedesktop/FileManager1";

std::optional<QDBusConnection> connection() {
    requireEventLoop();
    return connectToSessionBus();
}

bool isOffered(QDBusConnection const& bus) { return !busNameOwner(bus, Name).number.isEmpty(); }

FinderOutcome outcomeOf(QDBusMessage const& answer) {
    if (answer.type() == QDBusMessage::ReplyMessage) return {};
    QString const name = answer.errorName();
    std::string const reason = "The file browser does not answer: " + answer.errorMessage().toStdString();
    for (char const* const absent :
         {"ServiceUnknown", "NameHasNoOwner", "NoReply", "Timeout", "TimedOut", "Disconnected"}) {
        if (name == QStringLiteral("org.freedesktop.DBus.Error.") + absent) return {FinderProblem::NoAnswer, reason};
    }
    return {FinderProblem::Refused, "The file browser cannot do it: " + answer.errorMessage().toStdString()};
}

} // namespace

std::optional<bool> isFileBrowserServiceOffered() {
    std::optional<QDBusConnection> const bus = connection();
    return bus ? std::optional(isOffered(*bus)) : std::nullopt;
}

FinderOutcome waitForFileBrowserService(std::int32_t pid) {
    std::optional<QDBusConnection> const bus = connection();
    if (!bus) return noSessionBus();
    // A program may start another one and end; that one comes soon then.
    constexpr std::chrono::milliseconds step(20);
    constexpr std::chrono::milliseconds rest(2'000);
    auto end = std::chrono::steady_clock::now() + finderPatience().start;
    FileDescriptor const process(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
    bool hasEnded = !process.isOpen();
    while (!isOffered(*bus)) {
        auto const now = std::chrono::steady_clock::now();
        if (now >= end) return {FinderProblem::NoAnswer, "The file browser did not start in time"};
        pollfd waited{hasEnded ? -1 : process.number(), POLLIN, 0};
        if (::poll(&waited, 1, static_cast<int>(step.count())) == 1) {
            hasEnded = true;
            end = std::min(end, now + rest);
        }
    }
    return {};
}

FinderOutcome callFileBrowserService(std::string const& method, std::vector<std::string> const& paths) {
    std::optional<QDBusConnection> const bus = connection();
    if (!bus) return noSessionBus();
    QStringList uris;
    for (std::string const& path : paths)
        uris.append(QString::fromStdString(fileURIOfPath(path)));
    QDBusMessage call = QDBusMessage::createMethodCall(Name, Path, Name, QString::fromStdString(method));
    call.setArguments({uris, QString()});
    // The bus might start another one than the user's.
    call.setAutoStartService(false);
    return outcomeOf(bus->call(call, QDBus::Block, static_cast<int>(finderPatience().answer.count())));
}

} // namespace mac
