#include "platform/desktop/browser/FileBrowserService.h"
#include "platform/desktop/entries/DesktopApplication.h"
#include "platform/desktop/session/Patience.h"
#include "platform/desktop/session/SessionBus.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/processes/ProcessList.h"
#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <algorithm>
#include <array>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr char Path[] = "/org/freedesktop/FileManager1";

QString textOf(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

std::optional<QDBusConnection> connection() {
    requireEventLoop();
    return connectToSessionBus();
}

bool isOffered(QDBusConnection const& bus) {
    return !busNameOwner(bus, textOf(FileBrowserServiceName)).number.isEmpty();
}

// Whether the error says that no process could be asked, rather than that one refused.
bool isAbsence(QString const& errorName) {
    constexpr std::array absences{"ServiceUnknown", "NameHasNoOwner", "NoReply", "Timeout", "TimedOut", "Disconnected"};
    return std::ranges::any_of(absences, [&](char const* absence) {
        return errorName == QStringLiteral("org.freedesktop.DBus.Error.") + absence;
    });
}

DesktopOutcome outcomeOf(QDBusMessage const& answer) {
    if (answer.type() == QDBusMessage::ReplyMessage) return {};
    std::string const reason = answer.errorMessage().toStdString();
    if (isAbsence(answer.errorName()))
        return DesktopProblem{DesktopProblem::Kind::NoAnswer, "The file browser does not answer: " + reason};
    return DesktopProblem{DesktopProblem::Kind::Refused, "The file browser cannot do it: " + reason};
}

QString methodOf(FileBrowserRequest request) {
    switch (request) {
    case FileBrowserRequest::ShowItems:
        return QStringLiteral("ShowItems");
    case FileBrowserRequest::ShowFolders:
        return QStringLiteral("ShowFolders");
    case FileBrowserRequest::ShowItemProperties:
        break;
    }
    return QStringLiteral("ShowItemProperties");
}

bool hasReply(QDBusConnection const& bus, FileBrowserRequest request, QString const& asked) {
    if (request != FileBrowserRequest::ShowItemProperties) return true;
    std::optional<BusPeer> const owner = busPeer(bus, asked);
    std::optional<RunningProcess> const process = owner ? runningProcess(owner->pid) : std::nullopt;
    FileBrowserKind const* const kind = process ? fileBrowserKindOf(process->executable) : nullptr;
    return !kind || kind->informationReply == InformationReply::Comes;
}

// Whether the bus says that the process is not there.
bool hasLeft(QDBusConnection const& bus, QString const& number) {
    return busNameOwner(bus, number).errorName == QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner");
}

DesktopOutcome sendWithoutReply(QDBusConnection const& bus, QDBusMessage const& call) {
    // The bus handles messages in order: its answer about the process says that it has delivered the call.
    bool const isDelivered = bus.send(call) && !busNameOwner(bus, call.service()).number.isEmpty();
    if (isDelivered) return {};
    return DesktopProblem{DesktopProblem::Kind::NoAnswer, "The file browser has left the session bus"};
}

} // namespace

DesktopProblem noSessionBus() {
    return {DesktopProblem::Kind::NoBus, "There is no session bus to reach the file browser by"};
}

std::optional<bool> isFileBrowserServiceOffered() {
    std::optional<QDBusConnection> const bus = connection();
    return bus ? std::optional(isOffered(*bus)) : std::nullopt;
}

DesktopOutcome waitForFileBrowserService(std::int32_t pid, std::chrono::milliseconds longest) {
    std::optional<QDBusConnection> const bus = connection();
    if (!bus) return noSessionBus();
    constexpr std::chrono::milliseconds step(20);
    constexpr std::chrono::milliseconds rest(2'000);
    auto end = std::chrono::steady_clock::now() + longest;
    FileDescriptor const process(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
    bool hasEnded = !process.isOpen();
    while (!isOffered(*bus)) {
        auto const now = std::chrono::steady_clock::now();
        if (now >= end) return DesktopProblem{DesktopProblem::Kind::NoAnswer, "The file browser did not start in time"};
        pollfd waited{hasEnded ? -1 : process.number(), POLLIN, 0};
        if (::poll(&waited, 1, static_cast<int>(step.count())) == 1) {
            hasEnded = true;
            end = std::min(end, now + rest);
        }
    }
    return {};
}

std::optional<DesktopOutcome> callFileBrowserService(FileBrowserRequest request, std::vector<std::string> const& paths,
                                                     std::chrono::milliseconds longest) {
    std::optional<QDBusConnection> const bus = connection();
    if (!bus) return noSessionBus();
    QStringList uris;
    for (std::string const& path : paths)
        uris.append(QString::fromStdString(fileURIOfPath(path)));
    QString const name = textOf(FileBrowserServiceName);
    // Asked by the name of its connection, so that it is known who has not answered.
    BusNameOwner const owner = busNameOwner(*bus, name);
    QString const asked = owner.number.isEmpty() ? name : owner.number;
    QDBusMessage call = QDBusMessage::createMethodCall(asked, Path, name, methodOf(request));
    QString const startupID;
    call.setArguments({uris, startupID});
    call.setAutoStartService(false);
    bool const isReplied = hasReply(*bus, request, asked);
    // The questions to the bus took of the patience, too.
    std::chrono::milliseconds const left = std::min(longest, Patience::left());
    if (isReplied && left <= std::chrono::milliseconds::zero())
        return DesktopProblem{DesktopProblem::Kind::NoAnswer, "There is no time left to ask the file browser"};
    DesktopOutcome const outcome = isReplied ? outcomeOf(bus->call(call, QDBus::Block, static_cast<int>(left.count())))
                                             : sendWithoutReply(*bus, call);
    if (!outcome.isDone() && hasLeft(*bus, asked)) return std::nullopt;
    return outcome;
}

bool callToQuit(QuitCall const& call, std::int32_t pid) {
    constexpr int milliseconds = 1'000;
    std::optional<QDBusConnection> const bus = connection();
    if (!bus) return false;
    QString const name = textOf(call.namePrefix) + QString::number(pid);
    // The name proves nothing: any process may take it.
    std::optional<BusPeer> const owner = busPeer(*bus, name);
    if (!owner || owner->pid != pid) return false;
    QDBusMessage message =
        QDBusMessage::createMethodCall(name, textOf(call.path), textOf(call.interface), textOf(call.method));
    message.setAutoStartService(false);
    QDBusMessage const answer = bus->call(message, QDBus::Block, milliseconds);
    // A process that asks its user first, or ends at once, does not reply.
    return answer.type() == QDBusMessage::ReplyMessage || isAbsence(answer.errorName());
}

} // namespace mac
