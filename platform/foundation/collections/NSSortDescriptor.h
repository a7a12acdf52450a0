#pragma once

#include "platform/foundation/collections/NSArray.h"

namespace mac {

// One criterion of an order: a key path, a direction and the message that compares two values. Immutable; any thread.
class NSSortDescriptor : public Handle<NSSortDescriptor, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // A nil or empty key compares the objects themselves; no selector is compare:.
    static NSSortDescriptor sortDescriptorWithKey_ascending_selector_(NSString const& key, BOOL ascending,
                                                                      SEL selector);
    // Compares values by compare:.
    static NSSortDescriptor sortDescriptorWithKey_ascending_(NSString const& key, BOOL ascending);

    NSString key() const;
    bool ascending() const;
    SEL selector() const;
    // A descriptor of the same key and selector in the opposite direction.
    NSSortDescriptor reversedSortDescriptor() const;
    // Missing values come first in ascending order. A value that does not understand the selector raises
    // NSInvalidArgumentException.
    NSComparisonResult compareObject_toObject_(id const& first, id const& second) const;
    // Compares two values of the key that the caller has read.
    NSComparisonResult compareValues(id const& first, id const& second) const;
    // The value of the key.
    id valueOfObject(id const& object) const;
};

// The answer of the first value to the selector with the second one; nil is ordered first, without a message.
NSComparisonResult compareBySelector(id const& first, id const& second, SEL selector);

}
