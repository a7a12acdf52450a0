#pragma once

#include "platform/appkit/views/NSView.h"

namespace mac {

// A part of a window that the user works: it sends its action to its target, itself as the argument. Main thread.
class NSControl : public Handle<NSControl, NSView> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // The receiver of the action, not retained; nil if there is none.
    id target() const;
    void setTarget_(id const& target) const;
    SEL action() const;
    void setAction_(SEL action) const;
    bool isEnabled() const;
    void setEnabled_(BOOL enabled) const;
    // False when there is no target or it does not respond to the action. What the target raises passes through.
    bool sendAction_to_(SEL action, id const& target) const;
};

} // namespace mac
