#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {

// An object whose attributes are kept for it by their names: any key holds any value. Key-value coding reads and sets
// the attributes, and tells observers; the primitive messages do so without a notification. A subclass's own keys and
// messages come first in key-value coding, and may keep what they hold as primitive values. A message to nil answers
// nil or does nothing; a nil key raises NSInvalidArgumentException. Main thread.
//
// Linux: there is no entity that lists the attributes; one that was never set is nil.
class NSManagedObject : public Handle<NSManagedObject, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    NSManagedObject init() const;

    id primitiveValueForKey_(NSString const& key) const;
    // Nil removes the value.
    void setPrimitiveValue_forKey_(id const& value, NSString const& key) const;
};

} // namespace mac
