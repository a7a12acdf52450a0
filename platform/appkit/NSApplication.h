#pragma once

#include "platform/foundation/Object.h"

namespace mac {

// The running program as the desktop sees it: its event loop, its windows and a delegate that is asked before it ends.
// There is one, made on first need together with the connection to the display. Main thread.
class NSApplication : public Handle<NSApplication, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSApplication sharedApplication();

    // Not kept alive. Asked applicationShouldTerminateAfterLastWindowClosed: where it responds to it.
    id delegate() const;
    void setDelegate_(id const& delegate) const;
    // Handles events until terminate_. Linux: returns then.
    void run() const;
    // Posts NSApplicationWillTerminateNotification and ends run; when that is under way, it does nothing. The sender is
    // ignored.
    void terminate_(id const& sender) const;
};

inline constexpr char NSApplicationWillTerminateNotification[] = "NSApplicationWillTerminateNotification";

// Runs the program: loads the main interface file that the main bundle names under NSMainNibFile, makes and connects
// the objects it describes, sends the controller awakeFromNib, shows the window and handles events until the end; the
// Apple events of other programs too: asked to quit, it ends as if the window were closed.
// Answers the exit status. Linux: 1, after a line on standard error, when there is no display or the interface file
// cannot be used.
int NSApplicationMain(int argc, char** argv);

} // namespace mac
