#pragma once

#include "platform/foundation/objects/NSValueTransformer.h"

namespace framekeeper {

using namespace mac;

// Shows a flag of a record by colour: black, or dark grey also for nil. Known by its class name.
class BOOLToColorTransformer : public Handle<BOOLToColorTransformer, NSValueTransformer> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static Class transformedValueClass();
    static bool allowsReverseTransformation();
    // Black for true, dark grey for false and nil.
    id transformedValue_(id const& value) const { return Superclass::transformedValue_(value); }
};

class BOOLToColorTransformer::Body : public NSValueTransformer::Body {
public:
    id transformedValue(id const& value) const override;
};

} // namespace framekeeper
