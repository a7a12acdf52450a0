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
    // With compare:.
    static NSSortDescriptor sortDescriptorWithKey_ascending_(NSString const& key, BOOL ascending);

    NSString key() const;
    bool ascending() const;
    SEL selector() const;
    // The same criterion in the other direction.
    NSSortDescriptor reversedSortDescriptor() const;
    // Missing values come first in ascending order. A value that does not understand the selector raises
    // NSInvalidArgumentException.
    NSComparisonResult compareObject_toObject_(id const& first, id const& second) const;
    // The same for two values of the key, read already.
    NSComparisonResult compareValues(id const& first, id const& second) const;
    // The value of the key.
    id valueOfObject(id const& object) const;
};

// What the selector answers for two values; nil comes first, and without a message.
NSComparisonResult compareBySelector(id const& first, id const& second, SEL selector);

}
