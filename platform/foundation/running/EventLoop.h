#pragma once

#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/NSString.h"
#include <functional>

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

// Calls the function once on the main run loop, when that has nothing left to do: no event, timer or function that is
// due. Functions are called in their order, each when the loop is idle again. They wait for the next event loop if this
// one ends. An exception in the function is logged and goes no further. Main thread.
void performWhenMainRunLoopIsIdle(std::function<void()> function);
// The function that the main run loop is calling had nothing to do: the loop counts as idle in spite of the call.
void disregardCallForIdleness();

// The mode of a nested run loop, from the object's beginning to its end; for implementations that run one.
// Notifications that wait for another mode are held back meanwhile. Scopes of a thread are nested.
class RunLoopModeScope {
public:
    // nil is the default mode.
    explicit RunLoopModeScope(NSString const& mode);
    ~RunLoopModeScope();
    RunLoopModeScope(RunLoopModeScope const&) = delete;
    RunLoopModeScope& operator=(RunLoopModeScope const&) = delete;

    NSString const& mode() const { return m_mode; }

private:
    NSString m_mode;
    RunLoopModeScope const* m_outer;
};

// The mode of the calling thread's innermost scope; the default mode without one.
NSString currentRunLoopMode();

// Defined by the notification queue: the mode of the calling thread's run loop changed.
void wakeWaitingNotifications();
// Defined by the notification queue: posts those of the calling thread's notifications that wait for the current mode,
// those for when it is idle one at a time if there are no others. Answers whether there was one. For the run loops of
// threads other than the main one.
bool postWaitingNotifications();

// Writes the exception that is being handled to the log: its name and its reason.
void logCurrentException();

// Where the event loop calls the program: an exception is logged and goes no further, since the loop cannot carry it.
template <class Function>
void guarded(Function&& function) {
    try {
        function();
    } catch (...) {
        logCurrentException();
    }
}

} // namespace mac
