#pragma once

#include "platform/foundation/objects/NSValueTransformer.h"

namespace framekeeper {

using namespace mac;

// Shows a flag of a record as text: "Yes", or "No" also for nil. Known by its class name.
class BOOLToStringTransformer : public Handle<BOOLToStringTransformer, NSValueTransformer> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static Class transformedValueClass();
    static bool allowsReverseTransformation();
    // "Yes" for true, "No" for false and nil.
    id transformedValue_(id const& value) const { return Superclass::transformedValue_(value); }
};

class BOOLToStringTransformer::Body : public NSValueTransformer::Body {
public:
    id transformedValue(id const& value) const override;
};

} // namespace framekeeper
