#pragma once

#include "platform/foundation/numbers/NSNumber.h"
#include <functional>

// How a process is asked to quit, with the waiting left to the caller. Main thread.

namespace mac {

// Waits for so many seconds, however it does so.
using Pause = std::function<void(NSTimeInterval seconds)>;

// Blocks the thread for that time.
void sleepForInterval(NSTimeInterval seconds);

// KRAProcessSerialNumberQuit with the pause before each of the 20 looks handed in.
bool quitProcess(NSNumber const& number, Pause const& pause);

} // namespace mac
