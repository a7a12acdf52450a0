#pragma once

#include "platform/foundation/NSString.h"

namespace mac {

// Turns a value into another one for display, and is known by a name. Subclasses override the body's functions. The registry
// keeps the transformers; main thread.
class NSValueTransformer : public Handle<NSValueTransformer, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // A later transformer of the same name replaces the earlier one; nil removes it.
    static void setValueTransformer_forName_(NSValueTransformer const& transformer, NSString const& name);
    // Nil when there is none of that name.
    static NSValueTransformer valueTransformerForName_(NSString const& name);
    static NSArray valueTransformerNames();

    id transformedValue_(id const& value) const;
};

class NSValueTransformer::Body : public ObjectBody {
public:
    // The value itself unless overridden.
    virtual id transformedValue(id const& value) const { return value; }
};

}
