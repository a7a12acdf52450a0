#pragma once

#include "platform/foundation/dates/NSDate.h"

namespace mac {

// Operations on the calling thread; the class has no instances.
class NSThread : public Handle<NSThread, NSObject> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    // Blocks the thread until the date and handles nothing meanwhile, no event, timer or notification; not at all for a
    // date that has passed, and for nil. Any thread.
    static void sleepUntilDate_(NSDate const& date);
};

}
