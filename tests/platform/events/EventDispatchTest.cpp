#include "platform/events/AppleEvents.h"
#include "platform/events/NSAppleEventManager.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/Log.h"
#include "platform/processes/Processes.h"
#include "tests/platform/events/TestEvents.h"
#include <gtest/gtest.h>
#include <vector>

namespace mac::test {

namespace {

constexpr AEEventID Ping{"ping"};

NSAppleEventDescriptor ownAddress() {
    ProcessSerialNumber const psn{0, kCurrentProcess};
    return NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeProcessSerialNumber, &psn,
                                                                              sizeof psn);
}

OSStatus send(AEEventID eventID, AppleEvent* reply, AESendMode mode = kAEWaitReply) {
    AppleEvent const event = testEvent(eventID, ownAddress());
    return AESendMessage(&event, reply, mode, kAEDefaultTimeout);
}

NSAppleEventDescriptor descriptorOf(AppleEvent const& desc) {
    return NSAppleEventDescriptor::descriptorWithAEDesc(desc);
}

// Answers the number that the refcon points to.
OSErr answerNumber(AppleEvent const*, AppleEvent* reply, void* refcon) {
    NSAppleEventDescriptor const filled = descriptorOf(*reply);
    filled.setParamDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithInt32_(*static_cast<int*>(refcon)),
                                          keyDirectObject);
    *reply = *filled.aeDesc();
    return noErr;
}

OSErr answerErrorOf(AppleEvent const*, AppleEvent*, void* refcon) { return *static_cast<OSErr*>(refcon); }

OSErr raiseSomething(AppleEvent const*, AppleEvent*, void*) { throw NSGenericException("on purpose"); }

OSErr sendAgain(AppleEvent const*, AppleEvent* reply, void* refcon) {
    ++*static_cast<int*>(refcon);
    OSStatus const status = send(Ping, reply);
    return static_cast<OSErr>(status);
}

int answeredNumber(AppleEvent const& reply) {
    return descriptorOf(reply).paramDescriptorForKeyword_(keyDirectObject).int32Value();
}

class EventDispatch : public testing::Test {
protected:
    void TearDown() override {
        for (AEEventClass const eventClass : {TestClass, typeWildCard})
            for (AEEventID const eventID : {Ping, typeWildCard})
                AERemoveEventHandler(eventClass, eventID, nullptr, NO);
    }
};

class Listener : public Handle<Listener, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        std::vector<std::string> heard;
    };
    using Handle::Handle;

    static ClassDescription describeClass() {
        return {.name = "EventListener",
                .superclass = classOf<NSObject>(),
                .makeBody = &makeEmptyBody<Listener>,
                .methods = {method<&Listener::handleEvent_withReplyEvent_>("handleEvent:withReplyEvent:")}};
    }

    void handleEvent_withReplyEvent_(NSAppleEventDescriptor const& event, NSAppleEventDescriptor const& reply) const {
        NSAppleEventManager const manager = NSAppleEventManager::sharedAppleEventManager();
        EXPECT_EQ(manager.currentAppleEvent().returnID(), event.returnID());
        EXPECT_EQ(manager.currentReplyAppleEvent().descriptorType(), reply.descriptorType());
        bodyOf(*this)->heard.push_back(event.paramDescriptorForKeyword_(keyDirectObject).stringValue().UTF8String());
        reply.setParamDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithInt32_(7), keyDirectObject);
    }
};

} // namespace

TEST_F(EventDispatch, CallsAHandlerOfThisProgramInPlace) {
    int number = 5;
    ASSERT_EQ(AEInstallEventHandler(TestClass, Ping, answerNumber, &number, NO), noErr);
    AppleEvent reply;
    ASSERT_EQ(send(Ping, &reply), noErr);
    EXPECT_EQ(answeredNumber(reply), 5);
    EXPECT_EQ(descriptorOf(reply).eventID(), kAEAnswer);
    EXPECT_EQ(descriptorOf(reply).eventClass(), kCoreEventClass);
}

TEST_F(EventDispatch, KnowsThisProgramByItsOwnNumberToo) {
    int number = 5;
    AEInstallEventHandler(TestClass, Ping, answerNumber, &number, NO);
    ProcessSerialNumber psn;
    ASSERT_EQ(GetCurrentProcess(&psn), noErr);
    AppleEvent const event = testEvent(Ping, NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
                                                 typeProcessSerialNumber, &psn, sizeof psn));
    AppleEvent reply;
    ASSERT_EQ(AESend(&event, &reply, kAEWaitReply, kAENormalPriority, kAEDefaultTimeout, nil, nil), noErr);
    EXPECT_EQ(answeredNumber(reply), 5);
}

TEST_F(EventDispatch, AsksTheHandlerThatNamesMoreFirst) {
    int exact = 1;
    int ofClass = 2;
    int any = 3;
    AppleEvent reply;
    EXPECT_EQ(send(Ping, &reply), errAEEventNotHandled);
    AEInstallEventHandler(typeWildCard, typeWildCard, answerNumber, &any, NO);
    EXPECT_EQ(send(Ping, &reply), noErr);
    EXPECT_EQ(answeredNumber(reply), 3);
    AEInstallEventHandler(TestClass, typeWildCard, answerNumber, &ofClass, NO);
    send(Ping, &reply);
    EXPECT_EQ(answeredNumber(reply), 2);
    AEInstallEventHandler(TestClass, Ping, answerNumber, &any, NO);
    AEInstallEventHandler(TestClass, Ping, answerNumber, &exact, NO);
    send(Ping, &reply);
    EXPECT_EQ(answeredNumber(reply), 1);
}

TEST_F(EventDispatch, RemovesTheHandlerThatIsNamed) {
    int number = 5;
    AEInstallEventHandler(TestClass, Ping, answerNumber, &number, NO);
    EXPECT_EQ(AERemoveEventHandler(TestClass, Ping, answerErrorOf, NO), errAEHandlerNotFound);
    EXPECT_EQ(AERemoveEventHandler(TestClass, typeWildCard, nullptr, NO), errAEHandlerNotFound);
    EXPECT_EQ(AERemoveEventHandler(TestClass, Ping, answerNumber, NO), noErr);
    EXPECT_EQ(AERemoveEventHandler(TestClass, Ping, answerNumber, NO), errAEHandlerNotFound);
    EXPECT_EQ(AEInstallEventHandler(TestClass, Ping, nullptr, nullptr, NO), paramErr);
    EXPECT_EQ(AEInstallEventHandler(TestClass, Ping, answerNumber, nullptr, YES), paramErr);
}

TEST_F(EventDispatch, PutsAHandlersErrorIntoTheReply) {
    OSErr error = -1728;
    AEInstallEventHandler(TestClass, Ping, answerErrorOf, &error, NO);
    AppleEvent reply;
    EXPECT_EQ(send(Ping, &reply), noErr);
    EXPECT_EQ(descriptorOf(reply).paramDescriptorForKeyword_(keyErrorNumber).int32Value(), -1728);
    EXPECT_EQ(send(Ping, nullptr, kAENoReply), noErr) << "nobody sees it where no reply is wanted";
    error = errAEEventNotHandled;
    EXPECT_EQ(send(Ping, &reply), errAEEventNotHandled);
    EXPECT_EQ(reply.descriptorType, typeNull);
}

TEST_F(EventDispatch, LogsAnExceptionOfAHandlerAndContinues) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    AEInstallEventHandler(TestClass, Ping, raiseSomething, nullptr, NO);
    AppleEvent reply;
    EXPECT_EQ(send(Ping, &reply), noErr);
    EXPECT_EQ(descriptorOf(reply).paramDescriptorForKeyword_(keyErrorNumber).int32Value(), errAEEventFailed);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("NSGenericException: on purpose"), std::string::npos);
}

TEST_F(EventDispatch, EndsEventsThatSendThemselves) {
    int count = 0;
    AEInstallEventHandler(TestClass, Ping, sendAgain, &count, NO);
    AppleEvent reply;
    send(Ping, &reply);
    EXPECT_EQ(count, 64);
}

TEST_F(EventDispatch, SendsAMessageToAnObject) {
    Listener listener = adopt<Listener>();
    NSAppleEventManager const manager = NSAppleEventManager::sharedAppleEventManager();
    manager.setEventHandler_andSelector_forEventClass_andEventID_(listener, SEL("handleEvent:withReplyEvent:"),
                                                                  TestClass, Ping);
    AppleEvent const event = testEvent(Ping, ownAddress(), NSAppleEventDescriptor::descriptorWithString_("x"));
    AppleEvent reply;
    ASSERT_EQ(AESendMessage(&event, &reply, kAEWaitReply, kAEDefaultTimeout), noErr);
    EXPECT_EQ(answeredNumber(reply), 7);
    EXPECT_EQ(AESendMessage(&event, nullptr, kAENoReply, kNoTimeOut), noErr);
    EXPECT_EQ(bodyOf(listener)->heard, (std::vector<std::string>{"x", "x"}));
    EXPECT_TRUE(manager.currentAppleEvent() == nil);
    EXPECT_TRUE(manager.currentReplyAppleEvent() == nil);
    listener = nil;
    EXPECT_EQ(AESendMessage(&event, &reply, kAEWaitReply, kAEDefaultTimeout), errAEEventNotHandled);
    manager.removeEventHandlerForEventClass_andEventID_(TestClass, Ping);
    EXPECT_EQ(AERemoveEventHandler(TestClass, Ping, nullptr, NO), errAEHandlerNotFound);
    EXPECT_THROW(manager.setEventHandler_andSelector_forEventClass_andEventID_(nil, SEL("a:b:"), TestClass, Ping),
                 NSInvalidArgumentException);
}

TEST_F(EventDispatch, AnswersErrorsForWhatCannotBeSent) {
    AppleEvent reply;
    AppleEvent const event = testEvent(Ping, ownAddress());
    EXPECT_EQ(AESendMessage(nullptr, &reply, kAEWaitReply, kAEDefaultTimeout), paramErr);
    EXPECT_EQ(AESendMessage(&event, nullptr, kAEWaitReply, kAEDefaultTimeout), paramErr);
    EXPECT_EQ(AESendMessage(&event, &reply, kAEWaitReply, -3), paramErr);
    EXPECT_EQ(AESendMessage(&event, &reply, 0x10, kAEDefaultTimeout), errAEUnknownSendMode);
    AppleEvent const text = *NSAppleEventDescriptor::descriptorWithString_("x").aeDesc();
    EXPECT_EQ(AESendMessage(&text, &reply, kAEWaitReply, kAEDefaultTimeout), errAENotAppleEvent);
    AppleEvent const nowhere = testEvent(Ping, nil);
    EXPECT_EQ(AESendMessage(&nowhere, &reply, kAENoReply, kNoTimeOut), procNotFound);
    AppleEvent const nobody = testEvent(Ping, NSAppleEventDescriptor::nullDescriptor());
    EXPECT_EQ(AESendMessage(&nobody, &reply, kAENoReply, kNoTimeOut), procNotFound);
    EXPECT_EQ(AESend(nullptr, &reply, kAENoReply, kAENormalPriority, kNoTimeOut, nil, nil), paramErr);
}

TEST_F(EventDispatch, EmptiesTheReplyOfAnEventThatCannotBeSent) {
    AppleEvent const event = testEvent(Ping, ownAddress());
    AppleEvent const text = *NSAppleEventDescriptor::descriptorWithString_("x").aeDesc();
    AppleEvent reply = text;
    EXPECT_EQ(AESendMessage(nullptr, &reply, kAEWaitReply, kAEDefaultTimeout), paramErr);
    EXPECT_EQ(reply.descriptorType, typeNull);
    reply = text;
    EXPECT_EQ(AESendMessage(&event, &reply, kAEWaitReply, -3), paramErr);
    EXPECT_EQ(reply.descriptorType, typeNull);
    AppleEvent both = event;
    EXPECT_EQ(AESendMessage(&both, &both, kAENoReply, -3), paramErr);
    EXPECT_EQ(both.descriptorType, typeNull);
}

TEST_F(EventDispatch, DoesNothingForANilManager) {
    NSAppleEventManager const none;
    none.setEventHandler_andSelector_forEventClass_andEventID_(nil, SEL("a:b:"), TestClass, Ping);
    none.removeEventHandlerForEventClass_andEventID_(TestClass, Ping);
    EXPECT_TRUE(none.currentAppleEvent() == nil);
    EXPECT_TRUE(none.currentReplyAppleEvent() == nil);
}

} // namespace mac::test
