#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {

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

} // namespace mac
