#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/running/NSNotificationCenter.h"

namespace mac {

enum NSPostingStyle : NSUInteger {
    // When the run loop has nothing left to do.
    NSPostWhenIdle = 1,
    // When the run loop gets there, behind what it has to do already.
    NSPostASAP = 2,
    // Before enqueuing returns.
    NSPostNow = 3,
};

// By what two notifications are equal; the values may be added.
enum NSNotificationCoalescing : NSUInteger {
    NSNotificationNoCoalescing = 0,
    NSNotificationCoalescingOnName = 1,
    // By identity.
    NSNotificationCoalescingOnSender = 2,
};

// Notifications that wait to be posted to the default notification centre by the run loop of their thread. Each thread
// has one queue, which ends with it; what waits then is never posted. The queue keeps its notifications and so their
// senders, not the observers. To be used on its own thread alone.
//
// Linux: on another thread than the main one the run loop posts what waits when it is run; a thread that is ending, and
// so has no queue any more, gets one that posts nothing later.
class NSNotificationQueue : public Handle<NSNotificationQueue, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // The calling thread's queue.
    static NSNotificationQueue defaultQueue();

    // Coalesces by name and sender, for the default mode.
    void enqueueNotification_postingStyle_(NSNotification const& notification, NSPostingStyle style) const;
    // Removes the waiting notifications that are equal by the mask, whatever their style, then adds this one behind all
    // others. It is posted while the run loop runs in one of the modes (strings; nil for NSDefaultRunLoopMode alone,
    // NSRunLoopCommonModes for the default, modal and tracking ones); NSPostNow posts it at once in any mode. Raises
    // NSInvalidArgumentException for a nil notification and an unknown style. What an observer raises ends in the log,
    // except with NSPostNow.
    void enqueueNotification_postingStyle_coalesceMask_forModes_(NSNotification const& notification,
                                                                 NSPostingStyle style, NSUInteger coalesceMask,
                                                                 NSArray const& modes) const;
    // Removes the waiting notifications that are equal to this one by the mask; none with NSNotificationNoCoalescing.
    void dequeueNotificationsMatching_coalesceMask_(NSNotification const& notification, NSUInteger coalesceMask) const;
};

} // namespace mac
