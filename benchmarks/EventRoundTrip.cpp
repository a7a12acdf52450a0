#include "benchmarks/Timing.h"
#include "platform/events/AppleEvents.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/processes/Processes.h"
#include "tests/platform/events/TestEvents.h"
#include "tests/support/ChildProcess.h"
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/prctl.h>
#include <unistd.h>

// An Apple event to another process and its reply, against a call of a method by QtDBus alone with as many bytes, both
// on a bus of the benchmark's own. Rounds of each take turns; the ratio is the median of the rounds' own, and that of
// the quickest rounds stands beside it.

namespace {

using namespace mac;
using namespace benchmarks;

constexpr int Rounds = 61;
constexpr int CallsInRound = 50;
constexpr char BareName[] = "com.tidelark.framekeeper.BareCall";
constexpr char BarePath[] = "/bare";

void say(char const* line) {
    std::puts(line);
    std::fflush(stdout);
}

void require(bool isTrue, char const* what) {
    if (isTrue) return;
    std::fprintf(stderr, "event_round_trip: %s\n", what);
    std::exit(1);
}

OSErr answerEmpty(AppleEvent const*, AppleEvent*, void*) { return noErr; }

// The other process for events: it answers until its parent ends.
int answerEvents() {
    AEInstallEventHandler(test::TestClass, test::Echo, answerEmpty, nullptr, NO);
    std::int32_t const parent = ::getppid();
    AppleEvent const hello =
        test::testEvent(AEEventID("helo"), NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
                                               typeKernelProcessID, &parent, sizeof parent));
    // The first event sent opens this end of the transport, too.
    AESendMessage(&hello, nullptr, kAENoReply, kNoTimeOut);
    say("ready");
    for (;;)
        NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode, NSDate::distantFuture());
}

class BareObject : public QDBusVirtualObject {
public:
    QString introspect(QString const&) const override { return {}; }
    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override {
        return connection.send(message.createReply({0, message.arguments().value(0)}));
    }
};

QDBusConnection connectionNamed(char const* name) {
    QDBusConnection connection =
        QDBusConnection::connectToBus(QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")), name);
    require(connection.isConnected(), "the bus cannot be reached");
    return connection;
}

// The other process for bare calls.
int answerCalls(int count, char** arguments) {
    QCoreApplication const loop(count, arguments);
    QDBusConnection connection = connectionNamed("answering");
    BareObject object;
    require(connection.registerVirtualObject(BarePath, &object), "the object cannot be registered");
    require(connection.registerService(BareName), "the name cannot be had");
    say("ready");
    return QCoreApplication::exec();
}

void sendEvents(std::int32_t pid) {
    ProcessSerialNumber psn;
    require(GetProcessForPID(pid, &psn) == noErr, "the other process is not there");
    AppleEvent const event = test::testEvent(
        test::Echo,
        NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeProcessSerialNumber, &psn, sizeof psn));
    for (int call = 0; call < CallsInRound; ++call) {
        AppleEvent reply;
        require(AESendMessage(&event, &reply, kAEWaitReply, kAEDefaultTimeout) == noErr, "an event was not answered");
    }
}

void callBare(QDBusConnection const& connection) {
    // About as many bytes as the event has.
    constexpr int size = 300;
    for (int call = 0; call < CallsInRound; ++call) {
        QDBusMessage message = QDBusMessage::createMethodCall(BareName, BarePath, BareName, "Send");
        message.setArguments({QByteArray(size, 'x')});
        require(connection.call(message).type() == QDBusMessage::ReplyMessage, "a call was not answered");
    }
}

} // namespace

int main(int count, char** arguments) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::string_view const role = count > 1 ? arguments[1] : "";
    if (role == "events") return answerEvents();
    if (role == "calls") return answerCalls(count, arguments);
    test::ChildProcess bus({"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address=1"});
    ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.readLine().c_str(), 1);
    test::ChildProcess events({"/proc/self/exe", "events"});
    test::ChildProcess calls({"/proc/self/exe", "calls"});
    require(events.readLine() == "ready" && calls.readLine() == "ready", "the other processes did not start");
    sendEvents(events.pid());
    QDBusConnection const connection = connectionNamed("calling");
    std::vector<double> ratios;
    std::vector<double> ours;
    std::vector<double> bare;
    for (int round = 0; round < Rounds; ++round) {
        bare.push_back(secondsOf([&] { callBare(connection); }) / CallsInRound);
        ours.push_back(secondsOf([&] { sendEvents(events.pid()); }) / CallsInRound);
        ratios.push_back(ours.back() / bare.back());
    }
    std::printf("an event and its reply: %.0f us, %.2f times a bare call of QtDBus; the quickest rounds %.2f times "
                "(goal: 1.5)\n",
                median(ours) * 1e6, median(ratios), std::ranges::min(ours) / std::ranges::min(bare));
    return 0;
}
