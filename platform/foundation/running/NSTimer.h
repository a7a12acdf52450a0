#pragma once

#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// Sends a message at a moment to come, once or again and again, until it is invalidated. The run loop keeps a running
// timer, and the timer its target, alive. Main thread.
class NSTimer : public Handle<NSTimer, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // The selector takes the timer. An interval of 0 or less counts as 0.1 milliseconds.
    static NSTimer scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(NSTimeInterval interval,
                                                                                    id const& target, SEL selector,
                                                                                    id const& userInfo, BOOL repeats);

    // Ends the timer: it sends nothing any more, and the run loop releases it.
    void invalidate() const;
    bool isValid() const;
    // Sends the message now; a timer that does not repeat is invalid afterwards.
    void fire() const;
    id userInfo() const;
    // The interval in seconds.
    NSTimeInterval timeInterval() const;
};

}
