#pragma once

namespace mac {

// Whether the calling thread is the one that the program began with.
bool isMainThread();
// Makes the program's event loop when there is none yet, for programs without windows. Main thread.
void requireEventLoop();
// Binds what performOnMainRunLoop queues to the calling thread, which has to be the main thread, and has each new event
// loop deliver what was queued before it. For registerFoundation.
void prepareMainRunLoop();

} // namespace mac
