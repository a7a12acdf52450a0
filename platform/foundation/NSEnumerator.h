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

    // Nil when all have been given. Of a set or a dictionary these are the members it had when the enumerator was made;
    // an array that has another count than then raises NSGenericException.
    id nextObject() const;
    // Those not given yet.
    NSArray allObjects() const;
};

}
