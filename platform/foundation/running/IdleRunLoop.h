#pragma once

#include <functional>

namespace mac {

// Calls the function once on the main run loop, when that has nothing left to do: no event, timer or function that is
// due. Functions are called in their order, each when the loop is idle again. They wait for the next event loop if this
// one ends. An exception in the function is logged and goes no further. Main thread.
void performWhenMainRunLoopIsIdle(std::function<void()> function);
// The function that the main run loop is calling had nothing to do: the loop counts as idle in spite of the call.
void disregardCallForIdleness();

} // namespace mac
