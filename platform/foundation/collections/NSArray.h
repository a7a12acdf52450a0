#pragma once

#include "platform/foundation/collections/NSEnumerator.h"
#include "platform/foundation/text/NSString.h"
#include <functional>
#include <span>
#include <vector>

namespace mac {

class NSIndexSet;
class NSMutableArray;
class NSPredicate;

// An ordered collection of objects. It holds no nil. Immutable, but what it holds may not be; reading is safe on any
// thread.
class NSArray : public Handle<NSArray, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSArray array();
    static NSArray arrayWithObject_(id const& object);
    // Up to the first nil.
    static NSArray arrayWithObjects_(std::initializer_list<id> objects);
    static NSArray arrayWithArray_(NSArray const& other);
    // For implementations: takes the objects over; a nil among them raises NSInvalidArgumentException.
    static NSArray arrayWithVector(std::vector<id> objects);

    NSUInteger count() const;
    // Raises NSRangeException past the end; nil for a nil array.
    id objectAtIndex_(NSUInteger index) const;
    id lastObject() const;
    bool containsObject_(id const& object) const;
    // The first equal, or the very same, object; NSNotFound when there is none.
    NSUInteger indexOfObject_(id const& object) const;
    NSUInteger indexOfObjectIdenticalTo_(id const& object) const;
    NSArray arrayByAddingObject_(id const& object) const;
    NSArray arrayByAddingObjectsFromArray_(NSArray const& other) const;
    NSArray subarrayWithRange_(NSRange range) const;
    // In ascending order of the indexes; an index past the end raises NSRangeException.
    NSArray objectsAtIndexes_(NSIndexSet const& indexes) const;
    NSString componentsJoinedByString_(NSString const& separator) const;
    bool isEqualToArray_(NSArray const& other) const;
    NSEnumerator objectEnumerator() const;
    NSEnumerator reverseObjectEnumerator() const;
    // An array that changes meanwhile raises NSGenericException.
    NSArray filteredArrayUsingPredicate_(NSPredicate const& predicate) const;
    // Stable. Each key is read once an object.
    NSArray sortedArrayUsingDescriptors_(NSArray const& descriptors) const;
    // Stable; the selector answers an NSComparisonResult for one argument.
    NSArray sortedArrayUsingSelector_(SEL comparator) const;
    // Observing: an array's own keys cannot be observed (the messages of other objects raise
    // NSInvalidArgumentException), the keys of its elements can. An index past the end raises NSRangeException.
    void addObserver_toObjectsAtIndexes_forKeyPath_options_context_(id const& observer, NSIndexSet const& indexes,
                                                                    NSString const& keyPath, NSUInteger options,
                                                                    void* context) const;
    void removeObserver_fromObjectsAtIndexes_forKeyPath_(id const& observer, NSIndexSet const& indexes,
                                                         NSString const& keyPath) const;

    // The members, for loops; valid while an unchanged array lives.
    std::span<id const> objects() const;
    id const* begin() const { return objects().data(); }
    id const* end() const { return objects().data() + objects().size(); }
};

// An ordered collection that can be changed in place. One thread at a time; a loop over it ends before it is changed.
class NSMutableArray : public Handle<NSMutableArray, NSArray> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSMutableArray array();
    static NSMutableArray arrayWithCapacity_(NSUInteger capacity);
    static NSMutableArray arrayWithArray_(NSArray const& other);
    static NSMutableArray arrayWithObjects_(std::initializer_list<id> objects);

    // Adding nil raises NSInvalidArgumentException, an index past the end NSRangeException.
    void addObject_(id const& object) const;
    void addObjectsFromArray_(NSArray const& other) const;
    void insertObject_atIndex_(id const& object, NSUInteger index) const;
    void replaceObjectAtIndex_withObject_(NSUInteger index, id const& object) const;
    void removeObjectAtIndex_(NSUInteger index) const;
    void removeLastObject() const;
    void removeObjectsInRange_(NSRange range) const;
    // By index in ascending order; each index of an insertion counts those already inserted. Other counts of objects
    // than of indexes raise NSInvalidArgumentException. What raises changes nothing.
    void insertObjects_atIndexes_(NSArray const& objects, NSIndexSet const& indexes) const;
    void removeObjectsAtIndexes_(NSIndexSet const& indexes) const;
    void replaceObjectsAtIndexes_withObjects_(NSIndexSet const& indexes, NSArray const& objects) const;
    // Every equal, or the very same, object.
    void removeObject_(id const& object) const;
    void removeObjectIdenticalTo_(id const& object) const;
    void removeObjectsInArray_(NSArray const& other) const;
    void removeAllObjects() const;
    void exchangeObjectAtIndex_withObjectAtIndex_(NSUInteger first, NSUInteger second) const;
    void setArray_(NSArray const& other) const;
    void sortUsingDescriptors_(NSArray const& descriptors) const;
    void filterUsingPredicate_(NSPredicate const& predicate) const;
};

}
