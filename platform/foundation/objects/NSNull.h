#pragma once

#include "platform/foundation/objects/Object.h"

namespace mac {

// The one object that stands for no value in collections that cannot hold nil.
class NSNull : public Handle<NSNull, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSNull null();
};

}
