#pragma once

#include "platform/foundation/objects/NSValueTransformer.h"

// What the window shows of a record's values. The interface file knows each class by its name.

namespace framekeeper {

using namespace mac;

// The text of a flag of a record.
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

// The colour of a flag of a record.
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

// Whether the item at a path lies in a trash. The window asks it about the selected copy, since a record has no such
// key.
class InTrashTransformer : public Handle<InTrashTransformer, NSValueTransformer> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static Class transformedValueClass();
    static bool allowsReverseTransformation();
    // A number: YES if the item at the path lies in a trash, NO otherwise, also for nil and values other than a path.
    id transformedValue_(id const& value) const { return Superclass::transformedValue_(value); }
};

class InTrashTransformer::Body : public NSValueTransformer::Body {
public:
    id transformedValue(id const& value) const override;
};

} // namespace framekeeper
