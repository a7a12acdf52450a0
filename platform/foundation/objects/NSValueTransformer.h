#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {

// Turns a value into another one for display, and is known by a name. Subclasses override the body's functions. The
// registry keeps the transformers; main thread.
class NSValueTransformer : public Handle<NSValueTransformer, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // A later transformer of the same name replaces the earlier one; nil removes it.
    static void setValueTransformer_forName_(NSValueTransformer const& transformer, NSString const& name);
    // The transformer registered under the name, or nil.
    static NSValueTransformer valueTransformerForName_(NSString const& name);
    static NSArray valueTransformerNames();

    id transformedValue_(id const& value) const;
    // The value that the transformation made this from; raises NSInvalidArgumentException where the class does not
    // allow it.
    id reverseTransformedValue_(id const& value) const;

    // What a class tells of its transformers; subclasses list functions of their own as class methods under the names
    // "transformedValueClass" and "allowsReverseTransformation".
    static Class transformedValueClass();
    static bool allowsReverseTransformation();
};

class NSValueTransformer::Body : public ObjectBody {
public:
    // The value itself unless overridden.
    virtual id transformedValue(id const& value) const { return value; }
    // Called only if the class allows it. Answers transformedValue unless overridden.
    virtual id reverseTransformedValue(id const& value) const { return transformedValue(value); }
};

}
