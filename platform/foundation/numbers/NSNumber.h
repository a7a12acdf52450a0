#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {

// A number or truth value as an object. Numbers are equal by value across kinds: 1, 1.0 and YES are equal, with one
// hash. Immutable; any thread.
class NSNumber : public Handle<NSNumber, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSNumber numberWithBool_(BOOL value);
    static NSNumber numberWithInt_(int value);
    static NSNumber numberWithInteger_(NSInteger value);
    static NSNumber numberWithUnsignedInt_(unsigned value);
    static NSNumber numberWithUnsignedInteger_(NSUInteger value);
    static NSNumber numberWithLongLong_(long long value);
    static NSNumber numberWithUnsignedLongLong_(unsigned long long value);
    static NSNumber numberWithDouble_(double value);
    static NSNumber numberWithFloat_(float value);

    bool boolValue() const;
    // Conversions saturate from reals and wrap between integers, as C's do.
    int intValue() const;
    unsigned unsignedIntValue() const;
    NSInteger integerValue() const;
    NSUInteger unsignedIntegerValue() const;
    long long longLongValue() const;
    unsigned long long unsignedLongLongValue() const;
    double doubleValue() const;
    float floatValue() const;
    NSString stringValue() const;

    bool isEqualToNumber_(NSNumber const& other) const;
    NSComparisonResult compare_(NSNumber const& other) const;

    // How the number was made: a truth value, an integer (signed, or above the signed range), a real.
    enum class Kind { Boolean, Signed, Unsigned, Real };
    Kind kind() const;
};

}
