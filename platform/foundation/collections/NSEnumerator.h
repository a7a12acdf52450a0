#pragma once

#include "platform/foundation/objects/Object.h"

namespace mac {

// Gives the members of a collection one by one and keeps the collection alive. One thread at a time.
class NSEnumerator : public Handle<NSEnumerator, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Nil when all have been given, whatever became of the collection since. Before that, once a member came to the
    // collection or left it, this raises NSGenericException; one that took another's place is given.
    id nextObject() const;
    // Those not given yet.
    NSArray allObjects() const;
};

}
