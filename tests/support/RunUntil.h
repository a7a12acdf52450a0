#pragma once

#include "platform/foundation/running/NSRunLoop.h"
#include <functional>

namespace mac::test {

// Runs the loop until the condition holds; false when that takes longer than the seconds, which only a failure does.
// The condition is looked at again after each event, and at least every 0.05 s, as it may change without one.
inline bool runUntil(std::function<bool()> const& condition, double seconds = 60) {
    NSDate const end = NSDate::dateWithTimeIntervalSinceNow_(seconds);
    while (!condition()) {
        if (end.timeIntervalSinceNow() < 0) return false;
        NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode,
                                                        NSDate::dateWithTimeIntervalSinceNow_(0.05));
    }
    return true;
}

} // namespace mac::test
