#pragma once

#include "platform/foundation/NSString.h"

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
    // Shows the window and asks for the keyboard. The sender is ignored.
    void makeKeyAndOrderFront_(id const& sender) const;
    // Takes the window from the screen. After the last one the application asks its delegate whether to end.
    void close() const;
    // Closes the window as a click on its button does. The sender is ignored.
    void performClose_(id const& sender) const;
};

} // namespace mac
