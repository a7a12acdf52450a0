#pragma once

#include "platform/foundation/running/NSRunLoop.h"
#include <functional>

namespace mac::test {

// Runs the loop until the condition holds; false when that takes longer than the seconds, which only a failure does.
inline bool runUntil(std::function<bool()> const& condition, double seconds = 60) {
    NSDate const end = NSDate::dateWithTimeIntervalSinceNow_(seconds);
    while (!condition()) {
        if (end.timeIntervalSinceNow() < 0) return false;
        NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode, end);
    }
    return true;
}

} // namespace mac::test
