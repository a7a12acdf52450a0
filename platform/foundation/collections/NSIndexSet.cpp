#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/collections/HashedEntries.h"
#include "platform/foundation/collections/IndexSetBody.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/NSString.h"
#include <algorithm>

namespace mac {

namespace {

using Ranges = std::span<NSRange const>;

// The first range that ends behind the index: the one it lies in, else the next.
Ranges::iterator rangeAtOrAfter(Ranges ranges, NSUInteger index) {
    return std::ranges::upper_bound(ranges, index, {}, endOf);
}

// The part of the range that lies in the other.
NSRange intersection(NSRange first, NSRange second) {
    NSUInteger const start = std::max(first.location, second.location);
    NSUInteger const end = std::min(endOf(first), endOf(second));
    return start < end ? NSRange{start, end - start} : NSRange{};
}

// A range to ask for may have any bounds: what lies at NSNotFound and above is in no set.
NSRange withinLimit(NSRange range) {
    NSUInteger const start = std::min(range.location, NSNotFound);
    return {start, std::min(range.length, NSNotFound - start)};
}

} // namespace

NSRange checkedIndexes(NSRange range) {
    if (range.length == 0 || (range.location < NSNotFound && range.length <= NSNotFound - range.location)) return range;
    throw NSRangeException("The range {" + std::to_string(range.location) + ", " + std::to_string(range.length) +
                           "} exceeds the maximum index value of NSNotFound - 1");
}

bool NSIndexSet::Body::isEqual(id const& other) const {
    NSIndexSet const set = as<NSIndexSet>(other);
    return set != nil && std::ranges::equal(m_ranges, set.ranges());
}

std::uint64_t NSIndexSet::Body::hash() const {
    std::uint64_t hash = m_ranges.size();
    for (NSRange const range : m_ranges)
        hash = combineHashes(hash, std::uint64_t{range.location} << 32 | range.length);
    return hash;
}

NSString NSIndexSet::Body::description() const {
    std::string text = "(no indexes)";
    if (!m_ranges.empty()) {
        NSIndexSet const self = uncheckedCast<NSIndexSet>(id::retain(const_cast<Body*>(this)));
        text = "[number of indexes: " + std::to_string(self.count()) + " (in " + std::to_string(m_ranges.size()) +
               " ranges), indexes: (";
        for (NSRange const range : m_ranges) {
            if (range != m_ranges.front()) text += ' ';
            text += std::to_string(range.location);
            if (range.length > 1) text += "-" + std::to_string(endOf(range) - 1);
        }
        text += ")]";
    }
    return ObjectBody::description().stringByAppendingString_(NSString::stringWithUTF8String_(text));
}

id NSIndexSet::Body::copy() const {
    if (isKindOf(classOf<NSMutableIndexSet>())) return adopt<NSIndexSet>(m_ranges);
    return id::retain(const_cast<Body*>(this));
}

id NSIndexSet::Body::mutableCopy() const { return adopt<NSMutableIndexSet>(m_ranges); }

ClassDescription NSIndexSet::describeClass() {
    return {
        .name = "NSIndexSet",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSIndexSet>,
        .methods =
            {
                method<&NSIndexSet::count>("count"),
                method<&NSIndexSet::firstIndex>("firstIndex"),
                method<&NSIndexSet::lastIndex>("lastIndex"),
                method<&NSIndexSet::indexGreaterThanIndex_>("indexGreaterThanIndex:"),
                method<&NSIndexSet::indexGreaterThanOrEqualToIndex_>("indexGreaterThanOrEqualToIndex:"),
                method<&NSIndexSet::indexLessThanIndex_>("indexLessThanIndex:"),
                method<&NSIndexSet::indexLessThanOrEqualToIndex_>("indexLessThanOrEqualToIndex:"),
                method<&NSIndexSet::containsIndex_>("containsIndex:"),
                method<&NSIndexSet::containsIndexes_>("containsIndexes:"),
                method<&NSIndexSet::isEqualToIndexSet_>("isEqualToIndexSet:"),
                method<&NSIndexSet::initWithIndex_>("initWithIndex:"),
                method<&NSIndexSet::initWithIndexSet_>("initWithIndexSet:"),
            },
        .classMethods = {method<&NSIndexSet::indexSet>("indexSet")},
    };
}

NSIndexSet NSIndexSet::indexSet() { return alloc(); }

NSIndexSet NSIndexSet::indexSetWithIndex_(NSUInteger index) { return alloc().initWithIndex_(index); }

NSIndexSet NSIndexSet::indexSetWithIndexesInRange_(NSRange range) { return alloc().initWithIndexesInRange_(range); }

NSIndexSet NSIndexSet::init() const { return *this; }

NSIndexSet NSIndexSet::initWithIndex_(NSUInteger index) const { return initWithIndexesInRange_({index, 1}); }

NSIndexSet NSIndexSet::initWithIndexesInRange_(NSRange range) const {
    if (*this != nil && checkedIndexes(range).length > 0) bodyOf(*this)->m_ranges = {range};
    return *this;
}

NSIndexSet NSIndexSet::initWithIndexSet_(NSIndexSet const& other) const {
    if (*this != nil && other != nil) bodyOf(*this)->m_ranges = bodyOf(other)->m_ranges;
    return *this;
}

std::span<NSRange const> NSIndexSet::ranges() const {
    return *this == nil ? Ranges() : Ranges(bodyOf(*this)->m_ranges);
}

NSUInteger NSIndexSet::count() const {
    NSUInteger total = 0;
    for (NSRange const range : ranges())
        total += range.length;
    return total;
}

NSUInteger NSIndexSet::firstIndex() const {
    if (*this == nil) return 0;
    return ranges().empty() ? NSNotFound : ranges().front().location;
}

NSUInteger NSIndexSet::lastIndex() const {
    if (*this == nil) return 0;
    return ranges().empty() ? NSNotFound : endOf(ranges().back()) - 1;
}

NSUInteger NSIndexSet::indexGreaterThanIndex_(NSUInteger index) const {
    if (*this == nil) return 0;
    return index >= NSNotFound ? NSNotFound : indexGreaterThanOrEqualToIndex_(index + 1);
}

NSUInteger NSIndexSet::indexGreaterThanOrEqualToIndex_(NSUInteger index) const {
    if (*this == nil) return 0;
    auto const range = rangeAtOrAfter(ranges(), index);
    return range == ranges().end() ? NSNotFound : std::max(range->location, index);
}

NSUInteger NSIndexSet::indexLessThanIndex_(NSUInteger index) const {
    if (*this == nil) return 0;
    return index == 0 ? NSNotFound : indexLessThanOrEqualToIndex_(index - 1);
}

NSUInteger NSIndexSet::indexLessThanOrEqualToIndex_(NSUInteger index) const {
    if (*this == nil) return 0;
    auto const behind = std::ranges::upper_bound(ranges(), index, {}, &NSRange::location);
    return behind == ranges().begin() ? NSNotFound : std::min(endOf(behind[-1]) - 1, index);
}

bool NSIndexSet::containsIndex_(NSUInteger index) const { return containsIndexesInRange_({index, 1}); }

bool NSIndexSet::containsIndexesInRange_(NSRange range) const {
    if (range.length == 0 || withinLimit(range) != range) return false;
    auto const found = rangeAtOrAfter(ranges(), range.location);
    return found != ranges().end() && intersection(*found, range) == range;
}

bool NSIndexSet::containsIndexes_(NSIndexSet const& other) const {
    return *this != nil &&
           std::ranges::all_of(other.ranges(), [&](NSRange range) { return containsIndexesInRange_(range); });
}

bool NSIndexSet::intersectsIndexesInRange_(NSRange range) const {
    auto const found = rangeAtOrAfter(ranges(), range.location);
    return found != ranges().end() && intersection(*found, withinLimit(range)).length > 0;
}

NSUInteger NSIndexSet::countOfIndexesInRange_(NSRange range) const {
    NSRange const asked = withinLimit(range);
    NSUInteger total = 0;
    for (auto found = rangeAtOrAfter(ranges(), asked.location); found != ranges().end(); ++found) {
        NSUInteger const part = intersection(*found, asked).length;
        if (part == 0) break;
        total += part;
    }
    return total;
}

NSUInteger NSIndexSet::getIndexes_maxCount_inIndexRange_(NSUInteger* indexes, NSUInteger maxCount,
                                                         NSRange* range) const {
    if (*this == nil) return 0;
    NSRange const asked = withinLimit(range ? *range : NSRange{0, NSNotFound});
    NSUInteger written = 0;
    NSUInteger index = indexGreaterThanOrEqualToIndex_(asked.location);
    for (; index < endOf(asked) && written < maxCount; index = indexGreaterThanIndex_(index))
        indexes[written++] = index;
    NSUInteger const next = std::min(index, endOf(asked));
    if (range) *range = {next, endOf(asked) - next};
    return written;
}

bool NSIndexSet::isEqualToIndexSet_(NSIndexSet const& other) const { return isEqual_(other); }

} // namespace mac
