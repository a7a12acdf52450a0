#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {

// A window on the screen. The interface file makes what is shown; the handle outlives it and is then without effect.
// Main thread.
class NSWindow : public Handle<NSWindow, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    NSString title() const;
    void setTitle_(NSString const& title) const;
    bool isVisible() const;
    // The name under which the size that the user gives the window is kept in the user's defaults; nil, as at first,
    // keeps nothing. A name gives the window the size that is kept there, at most that of its screen; false for nil and
    // for a window that is gone. Linux: where the window stands is the window manager's.
    NSString frameAutosaveName() const;
    bool setFrameAutosaveName_(NSString const& name) const;
    // Shows the window and asks for the keyboard. The sender is ignored.
    void makeKeyAndOrderFront_(id const& sender) const;
    // Takes the window from the screen. After the last one the application asks its delegate whether to end.
    void close() const;
    // Closes the window as a click on its button does. The sender is ignored.
    void performClose_(id const& sender) const;
};

} // namespace mac
