#pragma once

#include "platform/foundation/NSString.h"

namespace mac {

// A set of UTF-16 code units. Immutable; any thread.
class NSCharacterSet : public Handle<NSCharacterSet, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSCharacterSet characterSetWithCharactersInString_(NSString const& characters);
    static NSCharacterSet whitespaceCharacterSet();
    static NSCharacterSet whitespaceAndNewlineCharacterSet();

    bool characterIsMember_(unichar character) const;
};

}
