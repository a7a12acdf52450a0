#pragma once

#include "platform/foundation/collections/NSArray.h"

namespace mac {

// Objects without order, no two of them equal, no nil. Enumeration follows insertion. Immutable; reading is safe on any
// thread.
class NSSet : public Handle<NSSet, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSSet set();
    static NSSet setWithObject_(id const& object);
    static NSSet setWithObjects_(std::initializer_list<id> objects);
    static NSSet setWithArray_(NSArray const& array);
    static NSSet setWithSet_(NSSet const& other);

    NSUInteger count() const;
    bool containsObject_(id const& object) const;
    // The member that is equal to the object, or nil.
    id member_(id const& object) const;
    id anyObject() const;
    NSArray allObjects() const;
    NSEnumerator objectEnumerator() const;
    bool isEqualToSet_(NSSet const& other) const;
    bool isSubsetOfSet_(NSSet const& other) const;
    bool intersectsSet_(NSSet const& other) const;
    NSSet filteredSetUsingPredicate_(NSPredicate const& predicate) const;
};

// A set that can be changed in place. One thread at a time.
class NSMutableSet : public Handle<NSMutableSet, NSSet> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSMutableSet set();
    static NSMutableSet setWithCapacity_(NSUInteger capacity);
    static NSMutableSet setWithArray_(NSArray const& array);
    static NSMutableSet setWithSet_(NSSet const& other);

    // A member that is equal already stays; adding nil raises NSInvalidArgumentException.
    void addObject_(id const& object) const;
    void addObjectsFromArray_(NSArray const& array) const;
    void removeObject_(id const& object) const;
    void removeAllObjects() const;
    void unionSet_(NSSet const& other) const;
    void minusSet_(NSSet const& other) const;
    void intersectSet_(NSSet const& other) const;
    void setSet_(NSSet const& other) const;
};

}
