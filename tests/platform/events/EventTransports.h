#pragma once

#include "platform/events/AppleEvents.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/processes/Processes.h"
#include "tests/platform/events/TestEvents.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace mac::test {

// A session bus of the test's own, which it may end.
class EventTransport : public testing::Test {
protected:
    // This process looks for a bus again when one has ended. Between two tests it must find none, since it would keep
    // a bus that lives on.
    static void SetUpTestSuite() {
        s_noBus = std::make_unique<EnvironmentVariable>("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    }
    static void TearDownTestSuite() { s_noBus.reset(); }

    std::string startBus() {
        m_bus = std::make_unique<ChildProcess>(
            std::vector<std::string>{"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address=1"});
        return m_bus->readLine();
    }

    std::unique_ptr<ChildProcess> startPeer() {
        auto peer = std::make_unique<ChildProcess>(std::vector<std::string>{EVENT_PEER});
        EXPECT_EQ(peer->readLine(), "ready");
        return peer;
    }

    static NSAppleEventDescriptor address(ChildProcess const& child) {
        ProcessSerialNumber psn;
        EXPECT_EQ(GetProcessForPID(child.pid(), &psn), noErr);
        return NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeProcessSerialNumber, &psn,
                                                                                  sizeof psn);
    }

    OSStatus send(AppleEvent const& event, std::int32_t timeOut = kAEDefaultTimeout) {
        return AESendMessage(&event, &m_reply, kAEWaitReply, timeOut);
    }
    OSStatus ask(ChildProcess const& child, AEEventID eventID, NSAppleEventDescriptor const& directObject = nil) {
        return send(testEvent(eventID, address(child), directObject));
    }
    OSStatus askToQuit(ChildProcess const& child) {
        return send(*NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
                         kCoreEventClass, kAEQuitApplication, address(child), kAutoGenerateReturnID, kAnyTransactionID)
                         .aeDesc());
    }
    NSAppleEventDescriptor reply() const { return NSAppleEventDescriptor::descriptorWithAEDesc(m_reply); }
    std::string replied() const {
        NSString const string = reply().paramDescriptorForKeyword_(keyDirectObject).stringValue();
        return string == nil ? "" : string.UTF8String();
    }

    static inline std::unique_ptr<EnvironmentVariable> s_noBus;
    std::unique_ptr<ChildProcess> m_bus;
    EnvironmentVariable m_address{"DBUS_SESSION_BUS_ADDRESS", startBus()};
    AppleEvent m_reply;
};

} // namespace mac::test
