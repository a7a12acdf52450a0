#pragma once

#include "platform/foundation/collections/NSArray.h"

namespace mac {

// A test that an object passes or fails, made from text in the predicate language. Immutable; any thread.
class NSPredicate : public Handle<NSPredicate, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Comparisons (= == != <> < <= =< > >= => BEGINSWITH ENDSWITH CONTAINS LIKE MATCHES IN BETWEEN, with [cd] for case
    // and diacritics, after ANY, SOME, ALL or NONE) of key paths, SELF and constants, joined by AND && OR || NOT ! and
    // brackets. %K takes a key path, %@ an object (also a list for IN), number conversions a number, as values: text in
    // an argument is never read as language. Text that is no predicate raises NSInvalidArgumentException with the place
    // of the error; so does what the framework's language has beyond this: arithmetic, functions, subqueries, indexes
    // and variables.
    template <class... Arguments>
    static NSPredicate predicateWithFormat_(NSString const& format, Arguments const&... arguments) {
        if constexpr (sizeof...(arguments) == 0) {
            return predicateWithArguments(format, {});
        } else {
            FormatArgument const list[]{FormatArgument(arguments)...};
            return predicateWithArguments(format, list);
        }
    }
    static NSPredicate predicateWithArguments(NSString const& format, std::span<FormatArgument const> arguments);
    static NSPredicate predicateWithValue_(BOOL value);

    // Strings are equal by code unit, numbers by value across kinds; nil, a missing value and the null object are
    // equal; what has no order is neither before nor after. An object that does not know a key of the predicate raises
    // NSUndefinedKeyException. A nil predicate answers false.
    bool evaluateWithObject_(id const& object) const;
    // The predicate as text that makes it again.
    NSString predicateFormat() const;
};

}
