#pragma once

#include "platform/foundation/objects/NSGeometry.h"
#include "platform/foundation/objects/Object.h"
#include "platform/icons/PlotIcon.h"

namespace mac {

// What is drawn into: the image that has the focus. Main thread.
class NSGraphicsContext : public Handle<NSGraphicsContext, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Nil while no image has the focus.
    static NSGraphicsContext currentContext();
    // The context's own, which lives as long as the focus is locked; null from nil.
    CGContextRef graphicsPort() const;

    // For implementations. A new context of transparent pixels becomes the current one; the one before it is current
    // again when it is taken away.
    static NSGraphicsContext push(NSSize size);
    static void pop(NSGraphicsContext const& context);
};

} // namespace mac
