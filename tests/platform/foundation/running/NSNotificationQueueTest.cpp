#include "platform/foundation/running/NSNotificationQueue.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/RunUntil.h"
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <vector>

namespace mac::test {
namespace {

// Writes down the names of notifications, and may do something then.
class QueueListener : public Handle<QueueListener, NSObject> {
public:
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "QueueListener",
                .superclass = classOf<NSObject>(),
                .methods = {method<&QueueListener::hear_>("hear:"), method<&QueueListener::raise_>("raise:")}};
    }
    static QueueListener make(std::function<void(std::string const&)> reaction = {});
    void hear_(NSNotification const& notification) const;
    void raise_(NSNotification const&) const { throw NSRangeException("beyond"); }
    std::string const& heard() const;
};

class QueueListener::Body : public ObjectBody {
public:
    explicit Body(std::function<void(std::string const&)> reaction) : m_reaction(std::move(reaction)) {}
    // Told by several threads at once.
    std::mutex m_lock;
    std::string m_heard;
    std::function<void(std::string const&)> m_reaction;
};

QueueListener QueueListener::make(std::function<void(std::string const&)> reaction) {
    return adopt<QueueListener>(std::move(reaction));
}

void QueueListener::hear_(NSNotification const& notification) const {
    std::string const name = notification.name().UTF8String();
    {
        std::lock_guard const guard(bodyOf(*this)->m_lock);
        bodyOf(*this)->m_heard += name + " ";
    }
    if (bodyOf(*this)->m_reaction) bodyOf(*this)->m_reaction(name);
}

std::string const& QueueListener::heard() const { return bodyOf(*this)->m_heard; }

NSNotification notice(NSString const& name, id const& sender) {
    return NSNotification::notificationWithName_object_userInfo_(name, sender, nil);
}

constexpr NSUInteger OnName = NSNotificationCoalescingOnName;
constexpr NSUInteger OnSender = NSNotificationCoalescingOnSender;

class NotificationQueue : public testing::Test {
protected:
    NotificationQueue() { listen(m_listener); }

    void listen(QueueListener const& listener, NSString const& name = nil) const {
        m_center.addObserver_selector_name_object_(listener, "hear:", name, m_sender);
    }
    void enqueue(NSString const& name, NSPostingStyle style = NSPostASAP, NSUInteger mask = NSNotificationNoCoalescing,
                 NSArray const& modes = nil) const {
        m_queue.enqueueNotification_postingStyle_coalesceMask_forModes_(notice(name, m_sender), style, mask, modes);
    }
    // Until the loop was idle.
    std::string heardInAll() const {
        enqueue("end", NSPostWhenIdle);
        EXPECT_TRUE(runUntil([&] { return m_listener.heard().ends_with("end "); }));
        return m_listener.heard().substr(0, m_listener.heard().size() - 4);
    }

    id const m_sender = NSObject::alloc();
    NSNotificationCenter const m_center = NSNotificationCenter::defaultCenter();
    NSNotificationQueue const m_queue = NSNotificationQueue::defaultQueue();
    QueueListener const m_listener = QueueListener::make();
};

TEST_F(NotificationQueue, PostsNowBeforeItReturns) {
    enqueue("now", NSPostNow);
    EXPECT_EQ(m_listener.heard(), "now ");
}

TEST_F(NotificationQueue, PostsSoonAndWhenIdleByTheRunLoopInTheirOrder) {
    enqueue("idle 1", NSPostWhenIdle);
    enqueue("soon 1");
    enqueue("idle 2", NSPostWhenIdle);
    enqueue("soon 2");
    EXPECT_EQ(m_listener.heard(), "");
    EXPECT_EQ(heardInAll(), "soon 1 soon 2 idle 1 idle 2 ");
}

TEST_F(NotificationQueue, IsIdleOnlyWhenNothingIsLeftToDo) {
    std::string order;
    QueueListener const listener = QueueListener::make([&](std::string const& name) { order += name + " "; });
    listen(listener);
    std::function<void(int)> const work = [&](int rest) {
        order += std::to_string(rest) + " ";
        if (rest > 0) performOnMainRunLoop([&work, rest] { work(rest - 1); });
        if (rest == 2) enqueue("soon");
    };
    enqueue("idle", NSPostWhenIdle);
    performOnMainRunLoop([&] { work(3); });
    EXPECT_TRUE(runUntil([&] { return order.find("idle") != std::string::npos; }));
    EXPECT_EQ(order, "3 2 1 soon 0 idle ");
}

TEST_F(NotificationQueue, PostsOneIdleNotificationAtATime) {
    QueueListener const listener = QueueListener::make([&](std::string const& name) {
        if (name == "idle 1") enqueue("soon");
    });
    listen(listener);
    enqueue("idle 1", NSPostWhenIdle);
    enqueue("idle 2", NSPostWhenIdle);
    EXPECT_EQ(heardInAll(), "idle 1 soon idle 2 ");
}

TEST_F(NotificationQueue, CoalescesByNameBySenderOrByBothAndKeepsTheLast) {
    enqueue("a");
    enqueue("b");
    enqueue("a", NSPostASAP, OnName);
    EXPECT_EQ(heardInAll(), "b a ");
}

TEST_F(NotificationQueue, CoalescesBySender) {
    enqueue("a");
    enqueue("b", NSPostWhenIdle);
    id const other = NSObject::alloc();
    m_center.addObserver_selector_name_object_(m_listener, "hear:", nil, other);
    m_queue.enqueueNotification_postingStyle_coalesceMask_forModes_(notice("c", other), NSPostASAP, OnSender, nil);
    enqueue("d", NSPostASAP, OnSender);
    EXPECT_EQ(heardInAll(), "c d ");
}

TEST_F(NotificationQueue, CoalescesByNameAndSenderWhereNothingElseIsSaid) {
    id const other = NSObject::alloc();
    m_center.addObserver_selector_name_object_(m_listener, "hear:", nil, other);
    m_queue.enqueueNotification_postingStyle_(notice("a", other), NSPostASAP);
    m_queue.enqueueNotification_postingStyle_(notice("a", m_sender), NSPostASAP);
    m_queue.enqueueNotification_postingStyle_(notice("b", m_sender), NSPostASAP);
    m_queue.enqueueNotification_postingStyle_(notice("a", m_sender), NSPostASAP);
    EXPECT_EQ(heardInAll(), "a b a ");
}

TEST_F(NotificationQueue, DoesNotCoalesceWithoutAMask) {
    enqueue("a");
    enqueue("a");
    EXPECT_EQ(heardInAll(), "a a ");
}

TEST_F(NotificationQueue, RemovesWhatWaitsAlsoWhenItPostsNow) {
    enqueue("a");
    enqueue("a", NSPostWhenIdle);
    enqueue("a", NSPostNow, OnName | OnSender);
    EXPECT_EQ(heardInAll(), "a ");
}

TEST_F(NotificationQueue, ForgetsDequeuedNotifications) {
    enqueue("a");
    enqueue("b", NSPostWhenIdle);
    enqueue("c");
    m_queue.dequeueNotificationsMatching_coalesceMask_(notice("a", nil), OnName);
    m_queue.dequeueNotificationsMatching_coalesceMask_(notice("b", m_sender), OnName | OnSender);
    m_queue.dequeueNotificationsMatching_coalesceMask_(notice("c", NSObject::alloc()), OnName | OnSender);
    m_queue.dequeueNotificationsMatching_coalesceMask_(notice("c", m_sender), NSNotificationNoCoalescing);
    m_queue.dequeueNotificationsMatching_coalesceMask_(nil, OnName);
    EXPECT_EQ(heardInAll(), "c ");
}

TEST_F(NotificationQueue, HoldsBackWhatWaitsForAnotherMode) {
    enqueue("default");
    enqueue("modal", NSPostASAP, NSNotificationNoCoalescing, NSArray::arrayWithObject_(NSModalPanelRunLoopMode));
    enqueue("common", NSPostASAP, NSNotificationNoCoalescing, NSArray::arrayWithObject_(NSRunLoopCommonModes));
    enqueue("idle", NSPostWhenIdle);
    enqueue("own", NSPostWhenIdle, NSNotificationNoCoalescing, NSArray::arrayWithObjects_({"x", "own"}));
    {
        RunLoopModeScope const modal(NSModalPanelRunLoopMode);
        enqueue("last", NSPostWhenIdle, NSNotificationNoCoalescing, NSArray::arrayWithObject_(NSModalPanelRunLoopMode));
        NSDate const end = NSDate::dateWithTimeIntervalSinceNow_(60);
        while (!m_listener.heard().ends_with("last ") && end.timeIntervalSinceNow() > 0)
            NSRunLoop::currentRunLoop().runMode_beforeDate_(NSModalPanelRunLoopMode, end);
        EXPECT_EQ(m_listener.heard(), "modal common last ");
    }
    EXPECT_EQ(heardInAll(), "modal common last default idle ");
    enqueue("held back");
    while (!m_listener.heard().ends_with("own "))
        NSRunLoop::currentRunLoop().runMode_beforeDate_("own", NSDate::dateWithTimeIntervalSinceNow_(60));
}

TEST_F(NotificationQueue, PostsNowInAnyMode) {
    enqueue("now", NSPostNow, NSNotificationNoCoalescing, NSArray::arrayWithObject_("never"));
    EXPECT_EQ(m_listener.heard(), "now ");
}

TEST(RunLoopModes, AreThoseOfTheInnermostLoop) {
    EXPECT_TRUE(NSRunLoop::currentRunLoop().currentMode().isEqualToString_(NSDefaultRunLoopMode));
    std::string seen;
    performOnMainRunLoop([&] { seen = NSRunLoop::currentRunLoop().currentMode().UTF8String(); });
    while (seen.empty())
        NSRunLoop::currentRunLoop().runMode_beforeDate_("mine", NSDate::dateWithTimeIntervalSinceNow_(60));
    EXPECT_EQ(seen, "mine");
    EXPECT_TRUE(NSRunLoop::currentRunLoop().currentMode().isEqualToString_(NSDefaultRunLoopMode));
    EXPECT_TRUE(NSRunLoop(nil).currentMode() == nil);
}

TEST_F(NotificationQueue, DoesNotTellAnObserverThatWentWhileItWaited) {
    QueueListener shortLived = QueueListener::make([](std::string const&) { FAIL(); });
    Weak<QueueListener> const weak(shortLived);
    listen(shortLived);
    enqueue("a");
    shortLived = nil;
    EXPECT_TRUE(weak.load() == nil);
    EXPECT_EQ(heardInAll(), "a ");
}

TEST_F(NotificationQueue, KeepsTheSenderUntilItHasPosted) {
    id sender = NSObject::alloc();
    Weak<id> const weak(sender);
    m_queue.enqueueNotification_postingStyle_(notice("of another", sender), NSPostASAP);
    sender = nil;
    EXPECT_TRUE(weak.load() != nil);
    heardInAll();
    EXPECT_TRUE(weak.load() == nil);
}

TEST_F(NotificationQueue, ContinuesWhenAnObserverRaises) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    m_center.addObserver_selector_name_object_(m_listener, "raise:", "bad", m_sender);
    enqueue("bad");
    enqueue("good");
    EXPECT_EQ(heardInAll(), "bad good ");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("NSRangeException"), std::string::npos);
    EXPECT_THROW(enqueue("bad", NSPostNow), NSRangeException);
}

TEST_F(NotificationQueue, MayBeRunByAnObserver) {
    QueueListener const nested = QueueListener::make([&](std::string const& name) {
        if (name != "outer") return;
        EXPECT_TRUE(runUntil([&] { return m_listener.heard().ends_with("inner "); }));
    });
    listen(nested);
    for (NSPostingStyle const style : {NSPostASAP, NSPostWhenIdle}) {
        enqueue("outer", style);
        enqueue("inner", style);
        heardInAll();
    }
}

TEST_F(NotificationQueue, RaisesForWhatCannotBeEnqueued) {
    EXPECT_THROW(m_queue.enqueueNotification_postingStyle_(nil, NSPostASAP), NSInvalidArgumentException);
    EXPECT_THROW(enqueue("a", static_cast<NSPostingStyle>(4)), NSInvalidArgumentException);
}

TEST_F(NotificationQueue, IsOneForEachThread) {
    EXPECT_TRUE(isSame(m_queue, NSNotificationQueue::defaultQueue()));
    std::thread([&] {
        NSNotificationQueue const own = NSNotificationQueue::defaultQueue();
        EXPECT_FALSE(isSame(m_queue, own));
        EXPECT_TRUE(isSame(own, NSNotificationQueue::defaultQueue()));
    }).join();
}

TEST(NotificationQueueOfThread, PostsWhenItsLoopIsRun) {
    onThreads(4, [](unsigned) {
        id const sender = NSObject::alloc();
        QueueListener const listener = QueueListener::make();
        NSNotificationCenter::defaultCenter().addObserver_selector_name_object_(listener, "hear:", nil, sender);
        NSNotificationQueue const queue = NSNotificationQueue::defaultQueue();
        for (int round = 0; round < 100; ++round) {
            queue.enqueueNotification_postingStyle_(notice("idle", sender), NSPostWhenIdle);
            queue.enqueueNotification_postingStyle_(notice("soon", sender), NSPostASAP);
        }
        NSRunLoop const loop = NSRunLoop::currentRunLoop();
        EXPECT_TRUE(loop.runMode_beforeDate_(nil, NSDate::distantFuture()));
        EXPECT_EQ(listener.heard(), "soon ");
        loop.runUntilDate_(NSDate::distantFuture());
        EXPECT_EQ(listener.heard(), "soon idle ");
        EXPECT_FALSE(loop.runMode_beforeDate_(nil, NSDate::distantFuture()));
        NSNotificationCenter::defaultCenter().removeObserver_(listener);
    });
}

TEST(NotificationQueueOfThread, EndsWithItAndPostsNoMore) {
    id sender = NSObject::alloc();
    Weak<id> const weak(sender);
    NSNotificationQueue kept;
    std::thread([&] {
        kept = NSNotificationQueue::defaultQueue();
        kept.enqueueNotification_postingStyle_(notice("lost", sender), NSPostASAP);
        sender = nil;
        EXPECT_TRUE(weak.load() != nil);
    }).join();
    EXPECT_TRUE(weak.load() == nil);
    id const other = NSObject::alloc();
    QueueListener const listener = QueueListener::make();
    NSNotificationCenter::defaultCenter().addObserver_selector_name_object_(listener, "hear:", nil, other);
    kept.enqueueNotification_postingStyle_(notice("late", other), NSPostASAP);
    kept.enqueueNotification_postingStyle_(notice("now", other), NSPostNow);
    EXPECT_EQ(listener.heard(), "now ");
}

TEST(NotificationQueueOfThread, PostsNowAndNothingLaterFromADyingThread) {
    static id const sender = NSObject::alloc();
    QueueListener const listener = QueueListener::make();
    NSNotificationCenter::defaultCenter().addObserver_selector_name_object_(listener, "hear:", nil, sender);
    std::thread([] {
        NSNotificationQueue const queue = NSNotificationQueue::defaultQueue();
        Parcel parcel = Parcel::parcelWithName_("last");
        bodyOf(parcel)->m_lastWord = [] {
            NSNotificationQueue const late = NSNotificationQueue::defaultQueue();
            late.enqueueNotification_postingStyle_(notice("later", sender), NSPostASAP);
            late.enqueueNotification_postingStyle_(notice("now", sender), NSPostNow);
            EXPECT_FALSE(NSRunLoop::currentRunLoop().runMode_beforeDate_(nil, NSDate::distantFuture()));
        };
        // The parcel goes with the queue.
        queue.enqueueNotification_postingStyle_(notice("parcel", parcel), NSPostASAP);
    }).join();
    EXPECT_EQ(listener.heard(), "now ");
    NSNotificationCenter::defaultCenter().removeObserver_(listener);
}

TEST(NotificationQueueOfThread, PostsWhileOthersComeAndGo) {
    id const sender = NSObject::alloc();
    std::atomic<int> heard{0};
    onThreads(4, [&](unsigned number) {
        NSNotificationCenter const center = NSNotificationCenter::defaultCenter();
        for (int round = 0; round < 200; ++round) {
            QueueListener const listener = QueueListener::make([&](std::string const&) { ++heard; });
            center.addObserver_selector_name_object_(listener, "hear:", "round", number % 2 == 0 ? id() : sender);
            NSNotificationQueue::defaultQueue().enqueueNotification_postingStyle_(notice("round", sender), NSPostNow);
            if (round % 2 == 0) center.removeObserver_(listener);
        }
    });
    EXPECT_GE(heard.load(), 800);
}

TEST(NilNotificationQueue, DoesNothing) {
    NSNotificationQueue const none;
    none.enqueueNotification_postingStyle_(nil, NSPostASAP);
    none.enqueueNotification_postingStyle_coalesceMask_forModes_(nil, NSPostNow, OnName, nil);
    none.dequeueNotificationsMatching_coalesceMask_(nil, OnName);
}

} // namespace
} // namespace mac::test
