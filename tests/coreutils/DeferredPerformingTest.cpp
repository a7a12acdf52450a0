#include "coreutils/DeferredPerforming.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/running/NSNotificationQueue.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "tests/support/RunUntil.h"
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace mac::test {

namespace {

// Writes down how it is called.
class DeferredReceiver : public Handle<DeferredReceiver, NSObject> {
public:
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "DeferredReceiver",
                .superclass = classOf<NSObject>(),
                .makeBody = &makeEmptyBody<DeferredReceiver>,
                .methods = {method<&DeferredReceiver::first_>("first:"), method<&DeferredReceiver::second_>("second:"),
                            method<&DeferredReceiver::both>("both:with:"), method<&DeferredReceiver::note_>("note:"),
                            method<&DeferredReceiver::keep_>("keep:")}};
    }
    void first_(id const& object) const { add("first", object); }
    void second_(id const& object) const { add("second", object); }
    void both(id const& one, id const& other) const {
        add("both", one);
        add("with", other);
    }
    void note_(NSNotification const& notification) const { add("note", notification.name()); }
    void keep_(NSNotification const& notification) const;
    std::string calls() const;
    // The user info of the notification that it kept last.
    NSDictionary kept() const;

private:
    void add(std::string const& name, id const& object) const;
};

class DeferredReceiver::Body : public ObjectBody {
public:
    std::string m_calls;
    NSDictionary m_kept;
};

void DeferredReceiver::add(std::string const& name, id const& object) const {
    bodyOf(*this)->m_calls += name + "(" + (object == nil ? "nil" : object.description().UTF8String()) + ") ";
}

void DeferredReceiver::keep_(NSNotification const& notification) const {
    bodyOf(*this)->m_kept = notification.userInfo();
}

std::string DeferredReceiver::calls() const { return bodyOf(*this)->m_calls; }

NSDictionary DeferredReceiver::kept() const { return bodyOf(*this)->m_kept; }

class DeferredPerforming : public testing::Test {
protected:
    DeferredPerforming() { pxRegisterPerformDeferredSelector(m_receiver); }
    ~DeferredPerforming() override { pxUnregisterPerformDeferredSelector(m_receiver); }

    void request(SEL selector, id const& object, BOOL isIdle = NO, BOOL coalescing = YES) const {
        pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_(m_receiver, selector, object, isIdle, coalescing);
    }
    // Until the loop was idle behind all requests.
    static void runUntilIdle() {
        DeferredReceiver const last = DeferredReceiver::alloc();
        pxRegisterPerformDeferredSelector(last);
        pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_(last, "first:", nil, YES, YES);
        EXPECT_TRUE(runUntil([&] { return !last.calls().empty(); }));
        pxUnregisterPerformDeferredSelector(last);
    }
    std::string callsInAll() const {
        runUntilIdle();
        return m_receiver.calls();
    }

    DeferredReceiver const m_receiver = DeferredReceiver::alloc();
};

} // namespace

TEST_F(DeferredPerforming, CallsTheMethodOnTheNextPassOfTheRunLoop) {
    request("first:", "a");
    EXPECT_EQ(m_receiver.calls(), "");
    EXPECT_EQ(callsInAll(), "first(a) ");
}

TEST_F(DeferredPerforming, PassesNil) {
    request("first:", nil);
    EXPECT_EQ(callsInAll(), "first(nil) ");
}

TEST_F(DeferredPerforming, PassesTheObjectAsFirstOfTwoArguments) {
    request("both:with:", "a");
    EXPECT_EQ(callsInAll(), "both(a) with(nil) ");
}

TEST_F(DeferredPerforming, MergesRequestsForOneMethod) {
    request("first:", "a");
    request("first:", "b");
    EXPECT_EQ(callsInAll(), "first(b) ");
}

TEST_F(DeferredPerforming, MergesRequestsForSeveralMethodsAlsoWithoutCoalescing) {
    for (BOOL const coalescing : {YES, NO}) {
        request("first:", "a", NO, coalescing);
        request("second:", "b", NO, coalescing);
    }
    EXPECT_EQ(callsInAll(), "second(b) ");
}

TEST_F(DeferredPerforming, MergesIdleRequestsWithOthers) {
    request("first:", "a");
    request("second:", "b", YES);
    EXPECT_EQ(callsInAll(), "second(b) ");
}

TEST_F(DeferredPerforming, ReplacesOtherNotificationsOfTheObjectWithoutCoalescingAlone) {
    NSNotificationCenter::defaultCenter().addObserver_selector_name_object_(m_receiver, "note:", "other", m_receiver);
    NSNotification const other = NSNotification::notificationWithName_object_userInfo_("other", m_receiver, nil);
    NSNotificationQueue::defaultQueue().enqueueNotification_postingStyle_(other, NSPostASAP);
    request("first:", "a", NO, YES);
    EXPECT_EQ(callsInAll(), "note(other) first(a) ");
    NSNotificationQueue::defaultQueue().enqueueNotification_postingStyle_(other, NSPostASAP);
    request("first:", "b", NO, NO);
    EXPECT_EQ(callsInAll(), "note(other) first(a) first(b) ");
}

TEST_F(DeferredPerforming, IsRequestedByANotificationOfTheObject) {
    DeferredReceiver const observer = DeferredReceiver::alloc();
    NSNotificationCenter const center = NSNotificationCenter::defaultCenter();
    center.addObserver_selector_name_object_(observer, "keep:", "pxPerformDeferredSelector", m_receiver);
    auto const hasKept = [&](std::initializer_list<id> objectsAndKeys) {
        runUntilIdle();
        return observer.kept().isEqual_(NSDictionary::dictionaryWithObjectsAndKeys_(objectsAndKeys));
    };
    request("first:", "a");
    EXPECT_TRUE(hasKept({"first:", "selector", "a", "object1"}));
    request("first:", nil);
    EXPECT_TRUE(hasKept({"first:", "selector"}));
    auto const requestTwo = [&](id const& first, id const& second) {
        pxPerformDeferredSelector_withObject_withObject_postWhenIdle_coalescing_(m_receiver, "both:with:", first,
                                                                                 second, NO, YES);
    };
    requestTwo("a", "b");
    EXPECT_TRUE(hasKept({"both:with:", "selector", "a", "object", "b", "object2"}));
    requestTwo("a", nil);
    EXPECT_TRUE(hasKept({"both:with:", "selector", "a", "object"}));
    requestTwo(nil, "b");
    EXPECT_TRUE(hasKept({"both:with:", "selector"}));
    center.removeObserver_(observer);
}

TEST_F(DeferredPerforming, WaitsForTheDefaultModeOfTheLoop) {
    bool hasRun = false;
    request("first:", "a");
    {
        RunLoopModeScope const modal(NSModalPanelRunLoopMode);
        performOnMainRunLoop([&] { hasRun = true; });
        NSDate const end = NSDate::dateWithTimeIntervalSinceNow_(60);
        while (!hasRun && end.timeIntervalSinceNow() > 0)
            NSRunLoop::currentRunLoop().runMode_beforeDate_(NSModalPanelRunLoopMode, end);
        EXPECT_TRUE(hasRun);
        EXPECT_EQ(m_receiver.calls(), "");
    }
    EXPECT_EQ(callsInAll(), "first(a) ");
}

TEST_F(DeferredPerforming, WaitsForTheLoopToBeIdle) {
    std::string order;
    request("first:", "a", YES);
    performOnMainRunLoop([&] {
        order += m_receiver.calls() + "1 ";
        performOnMainRunLoop([&] { order += m_receiver.calls() + "2 "; });
    });
    EXPECT_EQ(callsInAll(), "first(a) ");
    EXPECT_EQ(order, "1 2 ");
}

TEST_F(DeferredPerforming, CallsWithNilAndTheSecondOfTwoObjects) {
    pxPerformDeferredSelector_withObject_withObject_postWhenIdle_coalescing_(m_receiver, "both:with:", "a", "b", NO,
                                                                             YES);
    EXPECT_EQ(callsInAll(), "both(nil) with(b) ");
}

TEST_F(DeferredPerforming, LeavesOutTheSecondObjectBehindANilFirstOne) {
    pxPerformDeferredSelector_withObject_withObject_postWhenIdle_coalescing_(m_receiver, "both:with:", nil, "b", YES,
                                                                             NO);
    EXPECT_EQ(callsInAll(), "both(nil) with(nil) ");
}

TEST_F(DeferredPerforming, DeliversNothingToAnUnregisteredObject) {
    request("first:", "a");
    pxUnregisterPerformDeferredSelector(m_receiver);
    EXPECT_EQ(callsInAll(), "");
    request("first:", "b");
    EXPECT_EQ(callsInAll(), "");
}

TEST_F(DeferredPerforming, EndsItsOwnObservationAlone) {
    NSNotificationCenter const center = NSNotificationCenter::defaultCenter();
    center.addObserver_selector_name_object_(m_receiver, "note:", "other", m_receiver);
    pxUnregisterPerformDeferredSelector(m_receiver);
    center.postNotificationName_object_("other", m_receiver);
    EXPECT_EQ(m_receiver.calls(), "note(other) ");
}

TEST_F(DeferredPerforming, KeepsTheObjectWhileARequestWaits) {
    DeferredReceiver other = DeferredReceiver::alloc();
    Weak<DeferredReceiver> const weak(other);
    pxRegisterPerformDeferredSelector(other);
    pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_(other, "first:", nil, NO, YES);
    other = nil;
    EXPECT_TRUE(weak.load() != nil);
    runUntilIdle();
    EXPECT_TRUE(weak.load() == nil);
}

TEST_F(DeferredPerforming, RaisesOnTheRunLoopForAMethodThatIsNotThere) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    request("unknownToAll:", nil);
    runUntilIdle();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("unknownToAll:"), std::string::npos) << lines[0];
}

TEST_F(DeferredPerforming, HandlesANotificationAtOnce) {
    NSDictionary const request =
        NSDictionary::dictionaryWithObjectsAndKeys_({"both:with:", "selector", "a", "object1", "b", "object2"});
    pxPerformDeferredSelectorHandler_(m_receiver,
                                      NSNotification::notificationWithName_object_userInfo_("any", nil, request));
    EXPECT_EQ(m_receiver.calls(), "both(a) with(b) ");
    NSNotification const empty = NSNotification::notificationWithName_object_userInfo_("any", nil, nil);
    EXPECT_THROW(pxPerformDeferredSelectorHandler_(m_receiver, empty), NSInvalidArgumentException);
}

TEST_F(DeferredPerforming, WorksOnTheThreadThatAsks) {
    std::thread([] {
        DeferredReceiver const receiver = DeferredReceiver::alloc();
        pxRegisterPerformDeferredSelector(receiver);
        pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_(receiver, "first:", "a", YES, YES);
        NSRunLoop::currentRunLoop().runUntilDate_(NSDate::distantFuture());
        EXPECT_EQ(receiver.calls(), "first(a) ");
        pxUnregisterPerformDeferredSelector(receiver);
    }).join();
}

TEST(NilDeferredPerforming, DoesNothing) {
    pxRegisterPerformDeferredSelector(nil);
    pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_(nil, "first:", nil, NO, YES);
    pxPerformDeferredSelector_withObject_withObject_postWhenIdle_coalescing_(nil, "first:", nil, nil, NO, YES);
    pxPerformDeferredSelectorHandler_(nil, nil);
    pxUnregisterPerformDeferredSelector(nil);
}

} // namespace mac::test
