#pragma once

#include "platform/foundation/objects/Object.h"

namespace mac {

// The running program as the desktop sees it: its event loop, its windows and a delegate that is asked before it ends.
// There is one, made on first need together with the connection to the display. Main thread.
//
// Linux: where there is no display, which a line on standard error says, it has its event loop and no windows. A
// display that is set but cannot be used ends the process, see DisplayConnection.h.
class NSApplication : public Handle<NSApplication, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSApplication sharedApplication();

    // The delegate, not retained. It is sent applicationShouldTerminateAfterLastWindowClosed: if it responds to that.
    id delegate() const;
    void setDelegate_(id const& delegate) const;
    // Handles events until terminate_. Linux: returns then, and at once if terminate_ came before.
    void run() const;
    // Posts NSApplicationWillTerminateNotification and ends run and every alert, or the run to come; when that is under
    // way, it does nothing. The sender is ignored.
    void terminate_(id const& sender) const;
};

// For implementations: whether terminate_ has been sent and the application has not run again since.
bool isEnding(NSApplication const& application);

inline constexpr char NSApplicationWillTerminateNotification[] = "NSApplicationWillTerminateNotification";

} // namespace mac
