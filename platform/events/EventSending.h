#pragma once

#include "platform/events/AppleEvents.h"
#include "platform/events/EventQueue.h"
#include <functional>

// Sending for those who may have to give up; for implementations.

namespace mac {

// As AESendMessage does where a reply is waited for, up to the deadline. `goesOn` is asked now and then on this thread
// while the reply is waited for, and may raise; when it answers NO, the wait is over with errAETimeout.
OSStatus sendAndWait(AppleEvent const& event, AppleEvent& reply, EventDeadline const& deadline,
                     std::function<bool()> const& goesOn);

} // namespace mac
