#pragma once

#include "platform/foundation/Object.h"

namespace mac {

class NSArray;

// Gives the members of a collection one by one and keeps the collection alive. One thread at a time.
class NSEnumerator : public Handle<NSEnumerator, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Nil when all have been given. A collection changed in between raises NSGenericException.
    id nextObject() const;
    // Those not given yet.
    NSArray allObjects() const;
};

}
