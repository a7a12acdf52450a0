#include "platform/foundation/running/NSThread.h"
#include <algorithm>
#include <chrono>
#include <thread>

namespace mac {

ClassDescription NSThread::describeClass() { return {.name = "NSThread", .superclass = classOf<NSObject>()}; }

void NSThread::sleepUntilDate_(NSDate const& date) {
    // A year at a time, so that no date is further away than a clock can count.
    constexpr NSTimeInterval longest = 365.0 * 24 * 60 * 60;
    while (date != nil && date.timeIntervalSinceNow() > 0)
        std::this_thread::sleep_for(std::chrono::duration<double>(std::min(date.timeIntervalSinceNow(), longest)));
}

} // namespace mac
