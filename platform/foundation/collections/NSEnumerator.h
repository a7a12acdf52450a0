#pragma once

#include "platform/foundation/objects/Object.h"

namespace mac {

// Gives the members of a collection one by one and keeps the collection alive. One thread at a time.
class NSEnumerator : public Handle<NSEnumerator, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // The next member; nil after the last one, even if the collection has changed since. Raises NSGenericException if a
    // member was inserted or removed before that; a member that replaced another is given.
    id nextObject() const;
    // The members that nextObject has not given yet; none are left afterwards.
    NSArray allObjects() const;
};

}
