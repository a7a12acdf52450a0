#pragma once

#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/text/NSString.h"
#include <functional>

namespace mac {

// What a run loop lets through.
inline constexpr char NSDefaultRunLoopMode[] = "kCFRunLoopDefaultMode";
inline constexpr char NSModalPanelRunLoopMode[] = "NSModalPanelRunLoopMode";
inline constexpr char NSEventTrackingRunLoopMode[] = "NSEventTrackingRunLoopMode";
// Stands for the modes above.
inline constexpr char NSRunLoopCommonModes[] = "kCFRunLoopCommonModes";

// The main thread's event loop, made on first need. Input, timers and what other threads send arrive through it.
// On another thread only the notifications of that thread's NSNotificationQueue arrive, and nothing is waited for.
// Linux: only notifications are held back by the mode.
class NSRunLoop : public Handle<NSRunLoop, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSRunLoop currentRunLoop();

    // The mode that the loop is run in; the default mode if it is not run by runMode_beforeDate_ or a modal panel.
    NSString currentMode() const;
    // Handles what arrives until the date.
    void runUntilDate_(NSDate const& date) const;
    // Waits for one arrival, at most until the date, and handles it; false when nothing arrived. A nil mode is the
    // default mode.
    bool runMode_beforeDate_(NSString const& mode, NSDate const& date) const;
};

// Calls the function on the main thread's run loop, as soon as it gets there. Any thread. An exception in the function
// is logged and goes no further.
void performOnMainRunLoop(std::function<void()> function);

// Sends the message with the object on the main thread's run loop once the delay, in seconds, is over; 0 or less: as
// soon as the loop gets there. Receiver and object, which may be nil, are kept until then. What the message raises is
// logged and goes no further. Does nothing for a nil receiver; raises NSInvalidArgumentException without a selector.
// Main thread.
void performSelector_withObject_afterDelay_(id const& receiver, SEL selector, id const& object, NSTimeInterval delay);

}
