#include "platform/events/AppleEvents.h"
#include "platform/events/EventSending.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/running/NSTimer.h"
#include "platform/processes/Processes.h"
#include "tests/platform/events/Descriptors.h"
#include "tests/platform/events/EventTransports.h"
#include "tests/platform/events/TestEvents.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"
#include "tests/support/RunUntil.h"
#include "tests/support/TemporaryFolder.h"
#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariant>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <thread>
#include <unistd.h>
#include <vector>

namespace mac::test {

namespace {

std::vector<std::string> s_backCalls;

OSErr answerBack(AppleEvent const* event, AppleEvent* reply, void*) {
    NSAppleEventDescriptor const received = NSAppleEventDescriptor::descriptorWithAEDesc(*event);
    NSString const asked = received.paramDescriptorForKeyword_(keyDirectObject).stringValue();
    s_backCalls.push_back(asked.UTF8String());
    NSAppleEventDescriptor const filled = NSAppleEventDescriptor::descriptorWithAEDesc(*reply);
    filled.setParamDescriptor_forKeyword_(stringDescriptor(asked.stringByAppendingString_("!")), keyDirectObject);
    *reply = *filled.aeDesc();
    return noErr;
}

// Removed again at the end of a test.
class InstalledHandler {
public:
    InstalledHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr handler, void* refcon = nullptr)
        : m_class(eventClass), m_id(eventID) {
        EXPECT_EQ(AEInstallEventHandler(eventClass, eventID, handler, refcon, NO), noErr);
    }
    ~InstalledHandler() { AERemoveEventHandler(m_class, m_id, nullptr, NO); }
    InstalledHandler(InstalledHandler const&) = delete;
    InstalledHandler& operator=(InstalledHandler const&) = delete;

private:
    AEEventClass m_class;
    AEEventID m_id;
};

} // namespace

TEST_F(EventTransport, BringsAnEventToAnotherProcessAndItsReplyBack) {
    auto const peer = startPeer();
    NSString const name = NSString::stringWithFileSystemRepresentation_("caf\xE9 \"\\\n");
    ASSERT_EQ(ask(*peer, Echo, stringDescriptor(name)), noErr);
    EXPECT_TRUE(reply().paramDescriptorForKeyword_(keyDirectObject).stringValue().isEqualToString_(name));
    EXPECT_EQ(reply().eventID(), kAEAnswer);
    EXPECT_EQ(AEDisposeDesc(&m_reply), noErr);
}

TEST_F(EventTransport, AsksAProcessToQuitAndGetsItsReply) {
    auto const peer = startPeer();
    EXPECT_EQ(askToQuit(*peer), noErr);
    EXPECT_EQ(reply().descriptorType(), typeAppleEvent);
    EXPECT_EQ(peer->readLine(), "quit");
    EXPECT_EQ(peer->wait(), 0);
}

TEST_F(EventTransport, EndsBeforeTheProgramDoes) {
    auto const peer = startPeer();
    EXPECT_EQ(askToQuit(*peer), noErr);
    EXPECT_EQ(peer->readLine(), "quit");
    EXPECT_EQ(peer->readLine(), "the transport ended");
}

TEST_F(EventTransport, EndsBesideABusThatHangs) {
    EnvironmentVariable const held("EVENT_PEER_QUITS_AT_LINE", "1");
    auto const peer = startPeer();
    AppleEvent const quit =
        *NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
             kCoreEventClass, kAEQuitApplication, address(*peer), kAutoGenerateReturnID, kAnyTransactionID)
             .aeDesc();
    EXPECT_EQ(AESendMessage(&quit, nullptr, kAENoReply, kAEDefaultTimeout), noErr);
    EXPECT_EQ(peer->readLine(), "quit");
    m_bus->sendSignal(SIGSTOP);
    peer->writeLine("");
    EXPECT_EQ(peer->readLine(), "the transport ended");
    EXPECT_EQ(peer->wait(), 0);
    m_bus->sendSignal(SIGCONT);
}

TEST_F(EventTransport, StillAsksTheBusWhenTheProgramEnds) {
    EnvironmentVariable const told("QDBUS_DEBUG", "1");
    auto const peer = startPeer();
    EXPECT_EQ(askToQuit(*peer), noErr);
    EXPECT_EQ(peer->readLine(), "quit");
    EXPECT_EQ(peer->readLine(), "the transport ended") << "the toolkit complains before";
    EXPECT_EQ(peer->readLine(), "") << "the toolkit complains afterwards";
    EXPECT_EQ(peer->wait(), 0);
}

TEST_F(EventTransport, AsksAProcessThatAnswersNoEventsToQuitByASignal) {
    ChildProcess child({"/bin/cat"});
    EXPECT_EQ(ask(child, Echo), procNotFound) << "anything else fails";
    EXPECT_EQ(askToQuit(child), noErr);
    EXPECT_EQ(child.wait(), -SIGTERM);
}

ProcessIdentity s_quitRequest;

TEST_F(EventTransport, LeavesAProcessThatAnswersNoEventsToTheHandlerOfUnansweredQuits) {
    struct Restored {
        ~Restored() { setUnansweredQuitHandler(askToEnd); }
    } const restored;
    ChildProcess const child({"/bin/cat"});
    setUnansweredQuitHandler([](ProcessIdentity const& process) {
        s_quitRequest = process;
        return true;
    });
    EXPECT_EQ(askToQuit(child), noErr);
    EXPECT_EQ(s_quitRequest.pid, child.pid());
    EXPECT_TRUE(runningProcess(s_quitRequest)) << "it got no signal";
    setUnansweredQuitHandler([](ProcessIdentity const&) { return false; });
    EXPECT_EQ(askToQuit(child), procNotFound);
}

TEST_F(EventTransport, QueuesTheAnswerOfAProcessThatASignalAsksToQuit) {
    ChildProcess child({"/bin/cat"});
    std::vector<AEEventID> answers;
    InstalledHandler const handler(
        kCoreEventClass, kAEAnswer,
        [](AppleEvent const* event, AppleEvent*, void* refcon) {
            static_cast<std::vector<AEEventID>*>(refcon)->push_back(
                NSAppleEventDescriptor::descriptorWithAEDesc(*event).eventID());
            return OSErr{noErr};
        },
        &answers);
    NSAppleEventDescriptor const quit =
        NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
            kCoreEventClass, kAEQuitApplication, address(child), kAutoGenerateReturnID, kAnyTransactionID);
    EXPECT_EQ(AESendMessage(quit.aeDesc(), nullptr, kAEQueueReply, kAEDefaultTimeout), noErr);
    EXPECT_EQ(child.wait(), -SIGTERM);
    ASSERT_TRUE(runUntil([&] { return !answers.empty(); }));
    EXPECT_EQ(answers, std::vector<AEEventID>{kAEAnswer});
}

TEST_F(EventTransport, SendsNothingAnymoreWhenTheTimeIsOver) {
    auto const peer = startPeer();
    ASSERT_EQ(ask(*peer, Echo), noErr);
    m_bus->sendSignal(SIGSTOP);
    EXPECT_EQ(send(testEvent(Tell, address(*peer), stringDescriptor("late")), 6), errAETimeout);
    m_bus->sendSignal(SIGCONT);
    EXPECT_EQ(send(testEvent(Tell, address(*peer), stringDescriptor("now"))), noErr);
    EXPECT_EQ(peer->readLine(), "now");
}

TEST_F(EventTransport, EndsAWaitWhenTheTimeIsOver) {
    auto const peer = startPeer();
    EXPECT_EQ(send(testEvent(Hang, address(*peer)), 6), errAETimeout);
    EXPECT_EQ(m_reply.descriptorType, typeNull);
    EXPECT_EQ(send(testEvent(Hang, address(*peer)), 0), errAETimeout);
}

TEST_F(EventTransport, EndsAWaitThatIsNotWantedAnyMore) {
    auto const peer = startPeer();
    std::atomic<bool> isHanging{false};
    std::thread other([&] { isHanging = peer->readLine() == "hanging"; });
    EXPECT_EQ(sendAndWait(testEvent(Hang, address(*peer)), m_reply, std::nullopt, [&] { return !isHanging; }),
              errAETimeout);
    peer->sendSignal(SIGKILL);
    other.join();
    EXPECT_EQ(m_reply.descriptorType, typeNull);
}

TEST_F(EventTransport, SendsNothingAnymoreWhenTheWaitIsLeft) {
    auto const peer = startPeer();
    ASSERT_EQ(ask(*peer, Echo), noErr);
    m_bus->sendSignal(SIGSTOP);
    EXPECT_EQ(sendAndWait(testEvent(Tell, address(*peer), stringDescriptor("late")), m_reply, std::nullopt,
                          [] { return false; }),
              errAETimeout);
    AppleEvent const another = testEvent(Tell, address(*peer), stringDescriptor("later"));
    auto const raise = []() -> bool { throw NSGenericException("on purpose"); };
    EXPECT_THROW(sendAndWait(another, m_reply, std::nullopt, raise), NSGenericException);
    m_bus->sendSignal(SIGCONT);
    EXPECT_EQ(send(testEvent(Tell, address(*peer), stringDescriptor("now"))), noErr);
    EXPECT_EQ(peer->readLine(), "now");
}

TEST_F(EventTransport, NoticesThatAPeerWasKilledInTheMiddleOfACall) {
    auto const peer = startPeer();
    EXPECT_EQ(send(testEvent(Die, address(*peer)), kNoTimeOut), connectionInvalid);
    EXPECT_EQ(peer->wait(), -SIGKILL);
    EXPECT_EQ(m_reply.descriptorType, typeNull);
}

TEST_F(EventTransport, FailsForAProcessThatHasGone) {
    auto const peer = startPeer();
    AppleEvent const event = testEvent(Echo, address(*peer));
    peer->sendSignal(SIGKILL);
    peer->waitUntilEnded();
    EXPECT_EQ(send(event), procNotFound);
    peer->wait();
    EXPECT_EQ(send(event), procNotFound);
}

TEST_F(EventTransport, AnswersAPeerThatCallsBackDuringTheWait) {
    auto const peer = startPeer();
    InstalledHandler const handler(TestClass, Back, answerBack);
    s_backCalls.clear();
    ASSERT_EQ(ask(*peer, CallBack, stringDescriptor("x")), noErr);
    EXPECT_EQ(s_backCalls, std::vector<std::string>{"x"});
    EXPECT_EQ(replied(), "x!");
}

TEST_F(EventTransport, HandlesNothingButEventsDuringTheWait) {
    auto const peer = startPeer();
    InstalledHandler const handler(TestClass, Back, answerBack);
    bool isCalled = false;
    performOnMainRunLoop([&] { isCalled = true; });
    ASSERT_EQ(ask(*peer, CallBack, stringDescriptor("x")), noErr);
    EXPECT_FALSE(isCalled);
    EXPECT_TRUE(runUntil([&] { return isCalled; }));
}

TEST_F(EventTransport, HandlesEventsInTheRunLoopToo) {
    auto const peer = startPeer();
    InstalledHandler const handler(TestClass, Back, answerBack);
    s_backCalls.clear();
    AppleEvent const event = testEvent(CallBack, address(*peer), stringDescriptor("later"));
    EXPECT_EQ(AESendMessage(&event, nullptr, kAENoReply, kNoTimeOut), noErr);
    EXPECT_TRUE(runUntil([] { return !s_backCalls.empty(); }));
    EXPECT_EQ(s_backCalls, std::vector<std::string>{"later"});
}

TEST_F(EventTransport, SendsWithoutWaitingForAReply) {
    auto const peer = startPeer();
    AppleEvent const event = testEvent(Tell, address(*peer), stringDescriptor("hello"));
    EXPECT_EQ(AESend(&event, &m_reply, kAENoReply, kAENormalPriority, kNoTimeOut, nil, nil), noErr);
    EXPECT_EQ(m_reply.descriptorType, typeNull);
    EXPECT_EQ(peer->readLine(), "hello");
}

TEST_F(EventTransport, BringsAReplyAsAnEventOfItsOwn) {
    auto const peer = startPeer();
    static NSAppleEventDescriptor answer;
    answer = nil;
    InstalledHandler const handler(kCoreEventClass, kAEAnswer,
                                   [](AppleEvent const* event, AppleEvent*, void*) -> OSErr {
                                       answer = NSAppleEventDescriptor::descriptorWithAEDesc(*event);
                                       return noErr;
                                   });
    AppleEvent const event = testEvent(Echo, address(*peer), stringDescriptor("x"));
    EXPECT_EQ(AESendMessage(&event, &m_reply, kAEQueueReply, kAEDefaultTimeout), noErr);
    EXPECT_EQ(m_reply.descriptorType, typeNull);
    ASSERT_TRUE(runUntil([] { return answer != nil; }));
    EXPECT_EQ(answer.returnID(), NSAppleEventDescriptor::descriptorWithAEDesc(event).returnID());
    EXPECT_TRUE(answer.paramDescriptorForKeyword_(keyDirectObject).stringValue().isEqualToString_("x"));
    AppleEvent const last = testEvent(Die, address(*peer));
    answer = nil;
    EXPECT_EQ(AESendMessage(&last, nullptr, kAEQueueReply, kAEDefaultTimeout), noErr);
    ASSERT_TRUE(runUntil([] { return answer != nil; }));
    EXPECT_EQ(answer.paramDescriptorForKeyword_(keyErrorNumber).int32Value(), connectionInvalid);
}

TEST_F(EventTransport, TellsWhatHandlersAnswer) {
    auto const peer = startPeer();
    EXPECT_EQ(ask(*peer, AEEventID("none")), errAEEventNotHandled);
    EXPECT_EQ(m_reply.descriptorType, typeNull);
    EXPECT_EQ(ask(*peer, Fail), noErr);
    EXPECT_EQ(reply().paramDescriptorForKeyword_(keyErrorNumber).int32Value(), -1234);
    EXPECT_EQ(ask(*peer, Raise), noErr);
    EXPECT_EQ(reply().paramDescriptorForKeyword_(keyErrorNumber).int32Value(), errAEEventFailed);
}

TEST_F(EventTransport, IsBoundedInSize) {
    auto const peer = startPeer();
    EXPECT_EQ(ask(*peer, TooMuch), memFullErr);
    std::vector<std::byte> const bytes(std::size_t{17} << 20);
    NSAppleEventDescriptor const large = NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
        typeData, bytes.data(), static_cast<NSUInteger>(bytes.size()));
    EXPECT_EQ(ask(*peer, Echo, large), memFullErr);
    NSAppleEventDescriptor const fitting = NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
        typeData, bytes.data(), static_cast<NSUInteger>(15) << 20);
    EXPECT_EQ(ask(*peer, Echo, fitting), noErr);
    EXPECT_EQ(reply().paramDescriptorForKeyword_(keyDirectObject).data().length(), NSUInteger{15} << 20);
}

TEST_F(EventTransport, SaysWhoSentAnEventWhateverTheSenderSays) {
    // The peer calls back to the address that it finds in the event: that of this process, not the one set here.
    auto const peer = startPeer();
    InstalledHandler const handler(TestClass, Back, answerBack);
    AppleEvent const plain = testEvent(CallBack, address(*peer), stringDescriptor("x"));
    NSAppleEventDescriptor const event = NSAppleEventDescriptor::descriptorWithAEDesc(plain);
    event.setAttributeDescriptor_forKeyword_(address(*peer), keyOriginalAddressAttr);
    ASSERT_EQ(send(*event.aeDesc()), noErr);
    EXPECT_EQ(replied(), "x!");
}

TEST_F(EventTransport, RefusesDescriptorsThatAreNoEvents) {
    auto const peer = startPeer();
    QDBusConnection const connection =
        QDBusConnection::connectToBus(QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")), "raw");
    auto const sendRaw = [&](QVariantList const& arguments, char const* member = "Send") {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("com.tidelark.framekeeper.AppleEvents.p%1").arg(peer->pid()),
            "/com/tidelark/framekeeper/AppleEvents", "com.tidelark.framekeeper.AppleEvents", member);
        message.setArguments(arguments);
        return connection.call(message).errorName().toStdString();
    };
    NSData const list = NSAppleEventDescriptor::listDescriptor().data();
    QByteArray const noEvent(reinterpret_cast<char const*>(list.bytes()), static_cast<qsizetype>(list.length()));
    std::string const invalid = "org.freedesktop.DBus.Error.InvalidArgs";
    EXPECT_EQ(sendRaw({}), invalid);
    EXPECT_EQ(sendRaw({"text"}), invalid);
    EXPECT_EQ(sendRaw({QByteArray("rubbish")}), invalid);
    EXPECT_EQ(sendRaw({noEvent}), invalid);
    EXPECT_EQ(sendRaw({noEvent, "soon"}), invalid);
    EXPECT_EQ(sendRaw({noEvent, qlonglong{0}, qlonglong{0}}), invalid);
    EXPECT_TRUE(sendRaw({noEvent}, "Other").starts_with("org.freedesktop.DBus.Error.Unknown"));
    QDBusConnection::disconnectFromBus("raw");
    EXPECT_EQ(ask(*peer, Echo, stringDescriptor("still there")), noErr);
}

TEST_F(EventTransport, RefusesAnEventWhoseSenderWaitsNoLonger) {
    auto const peer = startPeer();
    QDBusConnection const connection =
        QDBusConnection::connectToBus(QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")), "late");
    AppleEvent const event = testEvent(Tell, address(*peer), stringDescriptor("late"));
    NSData const flat = NSAppleEventDescriptor::descriptorWithAEDesc(event).data();
    auto const sendUntil = [&](std::chrono::steady_clock::time_point deadline) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("com.tidelark.framekeeper.AppleEvents.p%1").arg(peer->pid()),
            "/com/tidelark/framekeeper/AppleEvents", "com.tidelark.framekeeper.AppleEvents", "Send");
        message.setArguments(
            {QByteArray(reinterpret_cast<char const*>(flat.bytes()), static_cast<qsizetype>(flat.length())),
             qlonglong{std::chrono::nanoseconds(deadline.time_since_epoch()).count()}});
        return connection.call(message).errorName().toStdString();
    };
    auto const now = std::chrono::steady_clock::now();
    EXPECT_EQ(sendUntil(now), "org.freedesktop.DBus.Error.TimedOut");
    EXPECT_EQ(sendUntil(now + std::chrono::hours(1)), "");
    EXPECT_EQ(peer->readLine(), "late");
    QDBusConnection::disconnectFromBus("late");
    EXPECT_EQ(send(testEvent(Tell, address(*peer), stringDescriptor("now"))), noErr);
    EXPECT_EQ(peer->readLine(), "now");
}

TEST_F(EventTransport, AnswersNoOtherUser) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the administrator can start a process of another user";
    // A bus that lets everybody in, as a session's does not.
    TemporaryFolder const folder;
    std::string const configuration = folder.makeFile(
        "bus.conf", "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><auth>EXTERNAL</auth>"
                    "<policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
                    "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>");
    ChildProcess bus({"/usr/bin/dbus-daemon", "--config-file=" + configuration, "--nofork", "--print-address=1"});
    m_bus->sendSignal(SIGKILL);
    m_bus->wait();
    EnvironmentVariable const address("DBUS_SESSION_BUS_ADDRESS", bus.readLine());
    // An event that cannot be sent still opens this end of the transport.
    InstalledHandler const handler(TestClass, Back, answerBack);
    ChildProcess const nobody({"/bin/cat"});
    EXPECT_EQ(ask(nobody, Echo), procNotFound);
    ChildProcess stranger({EVENT_PEER, "--as-stranger"});
    EXPECT_EQ(stranger.readLine(), "org.freedesktop.DBus.Error.AccessDenied");
    EXPECT_EQ(stranger.wait(), 0);
}

TEST_F(EventTransport, TakesAddressesByProcessID) {
    auto const peer = startPeer();
    std::int32_t const pid = peer->pid();
    NSAppleEventDescriptor const target =
        NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeKernelProcessID, &pid, sizeof pid);
    EXPECT_EQ(send(testEvent(Echo, target, stringDescriptor("x"))), noErr);
    EXPECT_EQ(replied(), "x");
}

} // namespace mac::test
