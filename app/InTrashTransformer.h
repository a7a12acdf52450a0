#pragma once

#include "platform/foundation/objects/NSValueTransformer.h"

namespace framekeeper {

using namespace mac;

// Tells of a path whether its item lies in a trash: YES or NO, NO also for nil and what is no path. Known by its class
// name; the window asks it about the selected copy, since a record has no such key.
class InTrashTransformer : public Handle<InTrashTransformer, NSValueTransformer> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static Class transformedValueClass();
    static bool allowsReverseTransformation();
    // A number that holds YES or NO: whether the item at the path lies in a trash.
    id transformedValue_(id const& value) const { return Superclass::transformedValue_(value); }
};

class InTrashTransformer::Body : public NSValueTransformer::Body {
public:
    id transformedValue(id const& value) const override;
};

} // namespace framekeeper
