#pragma once

#include "platform/foundation/Object.h"

namespace mac {

// A part of a window. The interface file or another owner makes what is shown; the handle outlives it and is then
// without effect. Main thread.
class NSView : public Handle<NSView, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    bool isHidden() const;
    void setHidden_(BOOL hidden) const;
};

} // namespace mac
