#pragma once

namespace mac {

// Whether the calling thread is the one that the program began with.
bool isMainThread();
// Makes the program's event loop if there is none yet: with a connection to the display if a source is set and one is
// there, so that dialogs can be shown later; else for a program without windows. Main thread.
void requireEventLoop();
// Sets what is called when an event loop is needed and there is none; it may make one, or leave that to the caller. For
// the Registration of the room that owns the screen.
void setEventLoopSource(void (*newSource)());
// Binds what performOnMainRunLoop queues to the calling thread, which has to be the main thread, and has each new event
// loop deliver what was queued before it. For registerFoundation.
void prepareMainRunLoop();

} // namespace mac
