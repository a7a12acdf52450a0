#pragma once

#include "platform/appkit/views/NSView.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// The positions of a box's title. The values are the framework's own.
enum NSTitlePosition : NSUInteger {
    NSNoTitle = 0,
    NSAboveTop = 1,
    NSAtTop = 2,
    NSBelowTop = 3,
    NSAboveBottom = 4,
    NSAtBottom = 5,
    NSBelowBottom = 6,
};

// A frame with a title around views that belong together. Main thread.
//
// Linux: the title is at the top wherever it is to be, or it is not shown. The views in the box are its subviews
// themselves, and stay where they are when the title goes.
class NSBox : public Handle<NSBox, NSView> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    NSBox initWithFrame_(NSRect const& frame) const;

    // "Title" at first, unless the interface file says otherwise.
    NSString title() const;
    // Nil counts as empty.
    void setTitle_(NSString const& title) const;
    // NSAtTop at first; NSNoTitle of nil.
    NSTitlePosition titlePosition() const;
    void setTitlePosition_(NSTitlePosition position) const;
};

} // namespace mac
