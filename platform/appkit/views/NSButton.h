#pragma once

#include "platform/appkit/views/NSControl.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// A button of an alert: what it says, the number it answers with, and the key that presses it. Main thread.
class NSButton : public Handle<NSButton, NSControl> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    NSString title() const;
    // Nil counts as empty, also for setKeyEquivalent_.
    void setTitle_(NSString const& title) const;
    NSInteger tag() const;
    void setTag_(NSInteger tag) const;
    // The key that presses the button, as one character: "\r" is the Return key, "\x1B" Escape. Empty: no key presses
    // the button unless it has the keyboard.
    NSString keyEquivalent() const;
    void setKeyEquivalent_(NSString const& key) const;
};

} // namespace mac
