#pragma once

#include "platform/foundation/objects/Object.h"

namespace mac {

// Seconds between 1 January 1970 and 1 January 2001, both at midnight UTC.
inline constexpr NSTimeInterval NSTimeIntervalSince1970 = 978307200.0;

// A moment, as seconds since 1 January 2001 UTC. Immutable; any thread. Nothing is raised; nil answers 0, NO and the
// same order.
class NSDate : public Handle<NSDate, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSDate date();
    static NSDate dateWithTimeIntervalSinceReferenceDate_(NSTimeInterval seconds);
    static NSDate dateWithTimeIntervalSince1970_(NSTimeInterval seconds);
    static NSDate dateWithTimeIntervalSinceNow_(NSTimeInterval seconds);
    static NSDate distantFuture();
    static NSDate distantPast();

    NSTimeInterval timeIntervalSinceReferenceDate() const;
    NSTimeInterval timeIntervalSince1970() const;
    NSTimeInterval timeIntervalSinceNow() const;
    // Nil other counts as the reference date.
    NSTimeInterval timeIntervalSinceDate_(NSDate const& other) const;
    // NO for nil.
    bool isEqualToDate_(NSDate const& other) const;
    // Nil other counts as this moment.
    NSComparisonResult compare_(NSDate const& other) const;
};

}
