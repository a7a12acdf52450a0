#pragma once

#include "platform/foundation/NSArray.h"

namespace mac {

// A test that an object passes or fails, made from text in the predicate language or piece by piece. Immutable; any thread.
class NSPredicate : public Handle<NSPredicate, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // %K takes a key path, %@ an object (also a list for IN), number conversions a number. Text that is no predicate raises
    // NSInvalidArgumentException with the place of the error.
    template<class... Arguments>
    static NSPredicate predicateWithFormat_(NSString const& format, Arguments const&... arguments)
    {
        if constexpr (sizeof...(arguments) == 0) {
            return predicateWithArguments(format, {});
        } else {
            FormatArgument const list[] { FormatArgument(arguments)... };
            return predicateWithArguments(format, list);
        }
    }
    static NSPredicate predicateWithArguments(NSString const& format, std::span<FormatArgument const> arguments);
    static NSPredicate predicateWithValue_(BOOL value);

    // An object that does not know a key of the predicate raises NSUndefinedKeyException. A nil predicate answers false.
    bool evaluateWithObject_(id const& object) const;
    // The predicate as text that makes it again.
    NSString predicateFormat() const;
};

}
