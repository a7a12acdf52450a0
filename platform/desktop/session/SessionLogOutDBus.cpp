#include "platform/desktop/entries/DesktopApplication.h"
#include "platform/desktop/session/Desktops.h"
#include "platform/desktop/session/Patience.h"
#include "platform/desktop/session/Session.h"
#include "platform/desktop/session/SessionBus.h"
#include "platform/foundation/running/EventLoop.h"
#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QStringList>

namespace mac {

namespace {

// For the command that tells whether the user wants to be asked.
constexpr int LongestQuestion = 3'000;

QString busText(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

DesktopProblem refusal(std::string text) { return {DesktopProblem::Kind::Refused, std::move(text)}; }

// Whether the command prints that the desktop would log out unasked. A desktop asks as long as nothing else is set.
bool isQuestionSwitchedOff(QuestionSetting command) {
    QStringList words = busText(command).split(' ', Qt::SkipEmptyParts);
    if (words.isEmpty() || !resolvedProgram(words.first().toStdString())) return false;
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    QString const program = words.takeFirst();
    process.start(program, words, QIODevice::ReadOnly);
    if (!process.waitForFinished(LongestQuestion)) {
        process.kill();
        process.waitForFinished();
        return false;
    }
    return process.readAllStandardOutput().trimmed() == "false";
}

// Whether a program owns the name, or would be started for it.
bool isServiceThere(QDBusConnection const& bus, QString const& service) {
    if (!busNameOwner(bus, service).number.isEmpty()) return true;
    QDBusMessage const list = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                             "org.freedesktop.DBus", "ListActivatableNames");
    QDBusMessage const answer = bus.call(list, QDBus::Block, static_cast<int>(Patience::left().count()));
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toStringList().contains(service);
}

QVariantList argumentsOf(LogOutCall const& call) {
    switch (call.arguments) {
    case LogOutCall::Arguments::UnsignedZero:
        return {0U};
    case LogOutCall::Arguments::TrueTrue:
        return {true, true};
    case LogOutCall::Arguments::None:
        break;
    }
    return {};
}

DesktopOutcome sendLogOut(LogOutCall const& call, std::chrono::milliseconds longest) {
    requireEventLoop();
    std::optional<QDBusConnection> const bus = connectToSessionBus();
    if (!bus) return DesktopProblem{DesktopProblem::Kind::NoBus, "There is no session bus"};
    QDBusMessage message = QDBusMessage::createMethodCall(busText(call.service), busText(call.path),
                                                          busText(call.interface), busText(call.method));
    message.setArguments(argumentsOf(call));
    QDBusMessage const answer = bus->call(message, QDBus::Block, static_cast<int>(longest.count()));
    if (answer.type() == QDBusMessage::ReplyMessage) return {};
    std::string const reason = answer.errorMessage().toStdString();
    if (answer.errorName() == "org.freedesktop.DBus.Error.NoReply")
        return DesktopProblem{DesktopProblem::Kind::NoAnswer, "The session manager does not answer: " + reason};
    return refusal("The session manager refuses: " + reason);
}

std::optional<std::string> obstacleOfCall(LogOutCall const& call) {
    requireEventLoop();
    std::optional<QDBusConnection> const bus = connectToSessionBus();
    if (!bus) return "There is no session bus to reach the session manager by";
    if (!isServiceThere(*bus, busText(call.service))) return "The desktop's session manager does not run";
    return std::nullopt;
}

} // namespace

std::optional<std::string> obstacleToLoggingOut() {
    DesktopKind const* const kind = currentDesktopKind();
    bool const isKnown = kind && (kind->logOutCall || !kind->logOutCommand.empty());
    if (!isKnown) return "No desktop runs that is known to ask before it logs out";
    std::optional<std::string> const obstacle =
        kind->logOutCall ? obstacleOfCall(*kind->logOutCall) : std::optional<std::string>();
    if (obstacle) return obstacle;
    if (!kind->logOutCall && !resolvedProgram(std::string(kind->logOutCommand)))
        return std::string(kind->logOutCommand) + " is not installed";
    if (isQuestionSwitchedOff(kind->questionSetting)) return "The desktop is set to log out without asking";
    return std::nullopt;
}

DesktopOutcome askToLogOut(std::chrono::milliseconds longest) {
    std::optional<std::string> obstacle = obstacleToLoggingOut();
    if (obstacle) return refusal(*std::move(obstacle));
    DesktopKind const& kind = *currentDesktopKind();
    if (kind.logOutCall) return sendLogOut(*kind.logOutCall, longest);
    std::string const program = resolvedProgram(std::string(kind.logOutCommand)).value_or("");
    DesktopResult<std::int32_t> const started = startProgram({.executable = program, .words = {program}});
    return started.hasValue() ? DesktopOutcome() : started.problem();
}

} // namespace mac
