#include "platform/foundation/running/NSNotificationQueue.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/NSRunLoop.h"
#include <algorithm>
#include <list>
#include <memory>
#include <optional>

namespace mac {

namespace {

struct WaitingNotification {
    NSNotification notification;
    NSPostingStyle style;
    NSArray modes;
};

bool areEqualByMask(NSNotification const& a, NSNotification const& b, NSUInteger mask) {
    if ((mask & NSNotificationCoalescingOnName) != 0 && !a.name().isEqualToString_(b.name())) return false;
    if ((mask & NSNotificationCoalescingOnSender) != 0 && !isSame(a.object(), b.object())) return false;
    return true;
}

bool isCommonMode(NSString const& mode) {
    return mode.isEqualToString_(NSDefaultRunLoopMode) || mode.isEqualToString_(NSModalPanelRunLoopMode) ||
           mode.isEqualToString_(NSEventTrackingRunLoopMode);
}

bool waitsForMode(WaitingNotification const& waiting, NSString const& mode) {
    if (waiting.modes == nil) return mode.isEqualToString_(NSDefaultRunLoopMode);
    return waiting.modes.containsObject_(mode) ||
           (waiting.modes.containsObject_(NSRunLoopCommonModes) && isCommonMode(mode));
}

void postToDefaultCenter(NSNotification const& notification) {
    guarded([&] { NSNotificationCenter::defaultCenter().postNotification_(notification); });
}

} // namespace

class NSNotificationQueue::Body : public ObjectBody {
public:
    enum class Delivery { ByMainRunLoop, ByOwnRunLoop, Never };

    explicit Body(Delivery delivery) : m_delivery(delivery) {}

    void removeMatching(NSNotification const& notification, NSUInteger mask) {
        if ((mask & (NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender)) == 0) return;
        // Destroyed behind the loop: what goes with a notification may use the queue.
        std::list<WaitingNotification> removed;
        for (auto waiting = m_waiting.begin(); waiting != m_waiting.end();) {
            auto const current = waiting++;
            if (areEqualByMask(current->notification, notification, mask))
                removed.splice(removed.end(), m_waiting, current);
        }
    }

    void add(WaitingNotification const& waiting) {
        if (m_delivery == Delivery::Never) return;
        m_waiting.push_back(waiting);
        wake();
    }

    // Asks the main run loop for what waits for its mode.
    void wake() {
        if (m_delivery != Delivery::ByMainRunLoop) return;
        if (!m_isSoonAsked && hasWaiting(NSPostASAP)) {
            m_isSoonAsked = true;
            performOnMainRunLoop([this] { postNext(NSPostASAP, m_isSoonAsked); });
        }
        if (!m_isIdleAsked && hasWaiting(NSPostWhenIdle)) {
            m_isIdleAsked = true;
            performWhenMainRunLoopIsIdle([this] { postNext(NSPostWhenIdle, m_isIdleAsked); });
        }
    }

    bool postAll() {
        auto const isSoon = [](WaitingNotification const& waiting) { return waiting.style == NSPostASAP; };
        // Notifications added meanwhile wait, so that the loop ends.
        auto rest = std::ranges::count_if(m_waiting, isSoon);
        bool isAnyPosted = false;
        for (; rest > 0; --rest) {
            std::optional<NSNotification> const next = takeNext(NSPostASAP);
            if (!next) break;
            postToDefaultCenter(*next);
            isAnyPosted = true;
        }
        if (isAnyPosted) return true;
        std::optional<NSNotification> const next = takeNext(NSPostWhenIdle);
        if (next) postToDefaultCenter(*next);
        return next.has_value();
    }

    // The thread ends.
    void close() {
        m_delivery = Delivery::Never;
        std::list<WaitingNotification> const lost = std::move(m_waiting);
        m_waiting.clear();
    }

private:
    std::list<WaitingNotification>::iterator nextOf(NSPostingStyle style) {
        NSString const mode = currentRunLoopMode();
        return std::ranges::find_if(m_waiting, [&](WaitingNotification const& waiting) {
            return waiting.style == style && waitsForMode(waiting, mode);
        });
    }

    bool hasWaiting(NSPostingStyle style) { return nextOf(style) != m_waiting.end(); }

    std::optional<NSNotification> takeNext(NSPostingStyle style) {
        auto const next = nextOf(style);
        if (next == m_waiting.end()) return std::nullopt;
        NSNotification notification = next->notification;
        m_waiting.erase(next);
        return notification;
    }

    // Posted one at a time, so that an observer that runs the loop itself does not hold up the others.
    void postNext(NSPostingStyle style, bool& isAsked) {
        isAsked = false;
        std::optional<NSNotification> const next = takeNext(style);
        wake();
        if (next) return postToDefaultCenter(*next);
        // Else a loop that is run again and again in a mode that nothing waits for would never be idle.
        disregardCallForIdleness();
    }

    Delivery m_delivery;
    std::list<WaitingNotification> m_waiting{};
    bool m_isSoonAsked{false};
    bool m_isIdleAsked{false};
};

namespace {

thread_local bool s_isQueueGone = false;

class QueueOfThread {
public:
    QueueOfThread() = default;
    ~QueueOfThread();
    QueueOfThread(QueueOfThread const&) = delete;
    QueueOfThread& operator=(QueueOfThread const&) = delete;

    NSNotificationQueue queue{};
};

thread_local QueueOfThread s_queueOfThread;

} // namespace

ClassDescription NSNotificationQueue::describeClass() {
    return {
        .name = "NSNotificationQueue",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSNotificationQueue::enqueueNotification_postingStyle_>(
                        "enqueueNotification:postingStyle:"),
                    method<&NSNotificationQueue::enqueueNotification_postingStyle_coalesceMask_forModes_>(
                        "enqueueNotification:postingStyle:coalesceMask:forModes:"),
                    method<&NSNotificationQueue::dequeueNotificationsMatching_coalesceMask_>(
                        "dequeueNotificationsMatching:coalesceMask:")},
        .classMethods = {classMethod<&NSNotificationQueue::defaultQueue>("defaultQueue")},
    };
}

NSNotificationQueue NSNotificationQueue::defaultQueue() {
    if (isMainThread()) {
        // Never destroyed: the main run loop may call it until the program's last instruction.
        static NSNotificationQueue const& mainQueue =
            *std::make_unique<NSNotificationQueue>(adopt<NSNotificationQueue>(Body::Delivery::ByMainRunLoop)).release();
        return mainQueue;
    }
    if (s_isQueueGone) return adopt<NSNotificationQueue>(Body::Delivery::Never);
    if (s_queueOfThread.queue == nil) s_queueOfThread.queue = adopt<NSNotificationQueue>(Body::Delivery::ByOwnRunLoop);
    return s_queueOfThread.queue;
}

void NSNotificationQueue::enqueueNotification_postingStyle_(NSNotification const& notification,
                                                            NSPostingStyle style) const {
    constexpr NSUInteger mask = NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender;
    enqueueNotification_postingStyle_coalesceMask_forModes_(notification, style, mask, nil);
}

void NSNotificationQueue::enqueueNotification_postingStyle_coalesceMask_forModes_(NSNotification const& notification,
                                                                                  NSPostingStyle style,
                                                                                  NSUInteger coalesceMask,
                                                                                  NSArray const& modes) const {
    if (*this == nil) return;
    if (notification == nil) throw NSInvalidArgumentException("There is no notification to enqueue");
    if (style != NSPostNow && style != NSPostASAP && style != NSPostWhenIdle)
        throw NSInvalidArgumentException("An unknown posting style");
    bodyOf(*this)->removeMatching(notification, coalesceMask);
    if (style == NSPostNow)
        NSNotificationCenter::defaultCenter().postNotification_(notification);
    else
        bodyOf(*this)->add({notification, style, as<NSArray>(modes.copy())});
}

void NSNotificationQueue::dequeueNotificationsMatching_coalesceMask_(NSNotification const& notification,
                                                                     NSUInteger coalesceMask) const {
    if (*this != nil && notification != nil) bodyOf(*this)->removeMatching(notification, coalesceMask);
}

namespace {

QueueOfThread::~QueueOfThread() {
    s_isQueueGone = true;
    if (queue != nil) bodyOf(queue)->close();
}

} // namespace

void wakeWaitingNotifications() {
    if (isMainThread()) bodyOf(NSNotificationQueue::defaultQueue())->wake();
}

bool postWaitingNotifications() {
    if (s_isQueueGone || s_queueOfThread.queue == nil) return false;
    return bodyOf(NSNotificationQueue(s_queueOfThread.queue))->postAll();
}

} // namespace mac
