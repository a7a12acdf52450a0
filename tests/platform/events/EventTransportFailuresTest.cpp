#include "platform/events/EventEndpointDBus.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/system/processes/ProcessList.h"
#include "tests/platform/events/Descriptors.h"
#include "tests/platform/events/EventTransports.h"
#include "tests/support/TemporaryFolder.h"
#include <csignal>
#include <filesystem>
#include <thread>

namespace mac::test {

TEST_F(EventTransport, NoticesThatTheBusDiesAndFindsAnotherOne) {
    auto const peer = startPeer();
    std::thread endsBus([&] {
        peer->readLine();
        m_bus->sendSignal(SIGKILL);
    });
    EXPECT_EQ(send(testEvent(Hang, address(*peer)), kNoTimeOut), connectionInvalid);
    endsBus.join();
    m_bus->wait();
    EXPECT_EQ(send(testEvent(Echo, address(*peer))), connectionInvalid);
    EnvironmentVariable const address("DBUS_SESSION_BUS_ADDRESS", startBus());
    auto const other = startPeer();
    EXPECT_EQ(ask(*other, Echo, stringDescriptor("x")), noErr);
    EXPECT_EQ(replied(), "x");
}

TEST_F(EventTransport, IsHeardAgainOnABusThatWasStartedAnew) {
    TemporaryFolder const folder;
    std::vector<std::string> const command{"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address=1",
                                           "--address=unix:path=" + folder.path("bus")};
    auto bus = std::make_unique<ChildProcess>(command);
    ASSERT_NE(bus->readLine(), "");
    // Not the printed address, in which the bus names itself.
    EnvironmentVariable const address("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder.path("bus"));
    auto const peer = startPeer();
    ASSERT_EQ(ask(*peer, Echo), noErr);
    bus->sendSignal(SIGKILL);
    bus->wait();
    // A socket that a killed bus leaves behind is not bound again.
    std::filesystem::remove(folder.path("bus"));
    bus = std::make_unique<ChildProcess>(command);
    ASSERT_NE(bus->readLine(), "");
    NSDate const end = NSDate::dateWithTimeIntervalSinceNow_(60);
    OSStatus status = noErr;
    do {
        status = ask(*peer, Echo, stringDescriptor("x"));
    } while (status != noErr && end.timeIntervalSinceNow() > 0);
    EXPECT_EQ(status, noErr);
    EXPECT_EQ(replied(), "x");
}

TEST_F(EventTransport, FailsWithoutABusButForAQuitBySignal) {
    ChildProcess child({"/bin/cat"});
    m_bus->sendSignal(SIGKILL);
    m_bus->wait();
    TemporaryFolder const folder;
    EnvironmentVariable const address("DBUS_SESSION_BUS_ADDRESS", "");
    EnvironmentVariable const runtime("XDG_RUNTIME_DIR", folder.path("none"));
    EXPECT_EQ(ask(child, Echo), connectionInvalid);
    AppleEvent const event = testEvent(Echo, EventTransport::address(child));
    EXPECT_EQ(AESendMessage(&event, nullptr, kAENoReply, kNoTimeOut), connectionInvalid);
    ASSERT_EQ(askToQuit(child), noErr);
    EXPECT_EQ(child.wait(), -SIGTERM);
}

// No reply is wanted, so nobody waits: what the receiver has not handled is counted.
TEST_F(EventTransport, RefusesEventsThatABusyProgramDoesNotHandle) {
    auto const peer = startPeer();
    AppleEvent const hang = testEvent(Hang, address(*peer));
    ASSERT_EQ(AESendMessage(&hang, nullptr, kAENoReply, kAEDefaultTimeout), noErr);
    ASSERT_EQ(peer->readLine(), "hanging");
    constexpr int tries = 5000;
    int sent = 0;
    for (int number = 0; number < tries; ++number) {
        AppleEvent const event = testEvent(Tell, address(*peer), stringDescriptor("told"));
        OSStatus const status = AESendMessage(&event, nullptr, kAENoReply, kAEDefaultTimeout);
        if (status == noErr)
            ++sent;
        else
            ASSERT_EQ(status, memFullErr);
    }
    EXPECT_GT(sent, 0);
    EXPECT_LT(sent, tries);
    peer->writeLine("go on");
    for (int number = 0; number < sent; ++number)
        ASSERT_EQ(peer->readLine(), "told") << "the event " << number << " of " << sent;
    EXPECT_EQ(ask(*peer, Echo), noErr) << "there is room again";
}

TEST_F(EventTransport, FindsAProgramOnItsNextConnection) {
    ChildProcess const peer({EVENT_PEER, "--moving"});
    for (int connection = 0; connection < 3; ++connection) {
        ASSERT_EQ(peer.readLine(), "ready");
        EXPECT_EQ(ask(peer, Echo), noErr) << "connection " << connection;
    }
}

TEST_F(EventTransport, FindsAHungBusGoneLongBeforeTheDeadline) {
    auto const peer = startPeer();
    ASSERT_EQ(ask(*peer, Echo), noErr);
    m_bus->sendSignal(SIGSTOP);
    EXPECT_EQ(send(testEvent(Tell, address(*peer), stringDescriptor("lost"))), connectionInvalid);
    m_bus->sendSignal(SIGCONT);
    EXPECT_EQ(send(testEvent(Tell, address(*peer), stringDescriptor("now"))), noErr);
    EXPECT_EQ(peer->readLine(), "now") << "what failed is not handled later";
}

// The receiver refuses what was under way for long, though its sender waits; it is sent again then.
TEST_F(EventTransport, ReachesAKnownReceiverThatWasStoppedForAWhile) {
    auto const peer = startPeer();
    ASSERT_EQ(ask(*peer, Echo), noErr);
    AppleEvent const patient = testEvent(Tell, address(*peer), stringDescriptor("patient"));
    AppleEvent const hasty = testEvent(Tell, address(*peer), stringDescriptor("hasty"));
    peer->sendSignal(SIGSTOP);
    OSStatus status = errAETimeout;
    std::thread waits([&] {
        AppleEvent answer;
        status = AESendMessage(&patient, &answer, kAEWaitReply, kAEDefaultTimeout);
    });
    constexpr std::int32_t fiveSeconds = 300;
    EXPECT_EQ(send(hasty, fiveSeconds), errAETimeout);
    peer->sendSignal(SIGCONT);
    waits.join();
    EXPECT_EQ(status, noErr);
    EXPECT_EQ(peer->readLine(), "patient");
    EXPECT_EQ(send(testEvent(Tell, address(*peer), stringDescriptor("now"))), noErr);
    EXPECT_EQ(peer->readLine(), "now") << "each event is handled once";
}

TEST_F(EventTransport, ReachesReceiversOfEarlierVersions) {
    ChildProcess const peer({EVENT_PEER, "--older"});
    ASSERT_EQ(peer.readLine(), "ready");
    for (char const* const text : {"one", "two"}) {
        EXPECT_EQ(ask(peer, Echo, stringDescriptor(NSString::stringWithUTF8String_(text))), noErr);
        EXPECT_EQ(replied(), text);
    }
}

// The endpoint is this thread's own, whose event loop delivers nothing meanwhile.
TEST_F(EventTransport, TakesTheRepliesThatHaveComeWhenItCloses) {
    auto const peer = startPeer();
    requireEventLoop();
    EventEndpoint endpoint([] {});
    endpoint.open();
    auto const pending = std::make_shared<PendingReply>();
    Result<std::vector<std::byte>, Failure> flat = flattened(testEvent(Tell, address(*peer), stringDescriptor("told")));
    std::optional<RunningProcess> const process = runningProcess(static_cast<std::int32_t>(peer->pid()));
    ASSERT_TRUE(flat.hasValue() && process);
    endpoint.send(std::make_shared<OutgoingEvent const>(OutgoingEvent{.process = process->identity,
                                                                      .event = flat.takeValue(),
                                                                      .expectation = Expectation::Reply,
                                                                      .pending = pending}));
    EXPECT_EQ(peer->readLine(), "told");
    // The bus keeps the order of what the peer sends: with this reply the other one is under way.
    ASSERT_EQ(ask(*peer, Echo), noErr);
    EXPECT_FALSE(pending->isDone);
    endpoint.close();
    EXPECT_TRUE(pending->isDone);
    EXPECT_EQ(pending->outcome.status, noErr);
}

TEST_F(EventTransport, FindsAProgramThatWasStartedAgain) {
    auto const first = startPeer();
    EXPECT_EQ(ask(*first, Echo), noErr);
    AppleEvent const event = testEvent(Echo, address(*first));
    first->sendSignal(SIGKILL);
    first->wait();
    EXPECT_EQ(send(event), procNotFound);
    auto const second = startPeer();
    EXPECT_EQ(ask(*second, Echo, stringDescriptor("x")), noErr);
    EXPECT_EQ(replied(), "x");
}

} // namespace mac::test
