#pragma once

#include "platform/foundation/objects/Object.h"
#include <span>

namespace mac {

// Indexes in ascending order, each once, kept as ranges. Every index is below NSNotFound: one at or above it raises
// NSRangeException. Immutable; reading is safe on any thread. Nil answers 0, NO or an empty value.
class NSIndexSet : public Handle<NSIndexSet, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSIndexSet indexSet();
    static NSIndexSet indexSetWithIndex_(NSUInteger index);
    static NSIndexSet indexSetWithIndexesInRange_(NSRange range);
    // Initialise objects just allocated. A nil set counts as empty.
    NSIndexSet init() const;
    NSIndexSet initWithIndex_(NSUInteger index) const;
    NSIndexSet initWithIndexesInRange_(NSRange range) const;
    NSIndexSet initWithIndexSet_(NSIndexSet const& other) const;

    NSUInteger count() const;
    // NSNotFound if no index qualifies.
    NSUInteger firstIndex() const;
    NSUInteger lastIndex() const;
    NSUInteger indexGreaterThanIndex_(NSUInteger index) const;
    NSUInteger indexGreaterThanOrEqualToIndex_(NSUInteger index) const;
    NSUInteger indexLessThanIndex_(NSUInteger index) const;
    NSUInteger indexLessThanOrEqualToIndex_(NSUInteger index) const;

    bool containsIndex_(NSUInteger index) const;
    // Whether all of the indexes are in the set. As in the framework, an empty range never is, an empty set always.
    bool containsIndexesInRange_(NSRange range) const;
    bool containsIndexes_(NSIndexSet const& other) const;
    bool intersectsIndexesInRange_(NSRange range) const;
    NSUInteger countOfIndexesInRange_(NSRange range) const;
    // Copies the first indexes within the range, at most maxCount, into the caller's buffer and answers how many. The
    // range shrinks to the part not yet read; a null range means all indexes.
    NSUInteger getIndexes_maxCount_inIndexRange_(NSUInteger* indexes, NSUInteger maxCount, NSRange* range) const;
    bool isEqualToIndexSet_(NSIndexSet const& other) const;

    // The ranges, ascending, none of them empty and no two touching; valid while an unchanged set lives.
    std::span<NSRange const> ranges() const;
};

// Indexes that can be changed in place. One thread at a time. What raises changes nothing.
class NSMutableIndexSet : public Handle<NSMutableIndexSet, NSIndexSet> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSMutableIndexSet indexSet();
    static NSMutableIndexSet indexSetWithIndex_(NSUInteger index);
    static NSMutableIndexSet indexSetWithIndexesInRange_(NSRange range);
    NSMutableIndexSet init() const;
    NSMutableIndexSet initWithIndex_(NSUInteger index) const;
    NSMutableIndexSet initWithIndexesInRange_(NSRange range) const;
    NSMutableIndexSet initWithIndexSet_(NSIndexSet const& other) const;

    void addIndex_(NSUInteger index) const;
    void addIndexesInRange_(NSRange range) const;
    void addIndexes_(NSIndexSet const& other) const;
    void removeIndex_(NSUInteger index) const;
    void removeIndexesInRange_(NSRange range) const;
    void removeIndexes_(NSIndexSet const& other) const;
    void removeAllIndexes() const;
    // Adds the delta to the index and to all greater ones: a positive delta leaves a gap, a negative one overwrites. An
    // index that would come to lie below 0 or at NSNotFound raises NSRangeException.
    void shiftIndexesStartingAtIndex_by_(NSUInteger index, NSInteger delta) const;
};

}
