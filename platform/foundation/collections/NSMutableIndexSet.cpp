#include "platform/foundation/collections/IndexSetBody.h"
#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/NSString.h"
#include <algorithm>

namespace mac {

void NSIndexSet::Body::add(NSRange range) {
    if (range.length == 0) return;
    // Ranges that the new one overlaps or touches are merged with it.
    auto const first = std::ranges::lower_bound(m_ranges, range.location, {}, endOf);
    auto const last = std::ranges::upper_bound(first, m_ranges.end(), endOf(range), {}, &NSRange::location);
    if (first == last) {
        m_ranges.insert(first, range);
        return;
    }
    NSUInteger const start = std::min(range.location, first->location);
    NSUInteger const end = std::max(endOf(range), endOf(last[-1]));
    *first = {start, end - start};
    m_ranges.erase(first + 1, last);
}

void NSIndexSet::Body::remove(NSRange range) {
    if (range.length == 0) return;
    auto const first = std::ranges::upper_bound(m_ranges, range.location, {}, endOf);
    auto const last = std::ranges::lower_bound(first, m_ranges.end(), endOf(range), {}, &NSRange::location);
    if (first == last) return;
    // What stays of the outer ones, before and behind.
    NSUInteger const end = endOf(last[-1]);
    std::vector<NSRange> rest;
    if (first->location < range.location) rest.push_back({first->location, range.location - first->location});
    if (end > endOf(range)) rest.push_back({endOf(range), end - endOf(range)});
    auto const place = m_ranges.erase(first, last);
    m_ranges.insert(place, rest.begin(), rest.end());
}

ClassDescription NSMutableIndexSet::describeClass() {
    return {
        .name = "NSMutableIndexSet",
        .superclass = classOf<NSIndexSet>(),
        .makeBody = &makeEmptyBody<NSMutableIndexSet>,
        .methods =
            {
                method<&NSMutableIndexSet::addIndex_>("addIndex:"),
                method<&NSMutableIndexSet::addIndexes_>("addIndexes:"),
                method<&NSMutableIndexSet::removeIndex_>("removeIndex:"),
                method<&NSMutableIndexSet::removeIndexes_>("removeIndexes:"),
                method<&NSMutableIndexSet::removeAllIndexes>("removeAllIndexes"),
                method<&NSMutableIndexSet::shiftIndexesStartingAtIndex_by_>("shiftIndexesStartingAtIndex:by:"),
            },
        .classMethods = {method<&NSMutableIndexSet::indexSet>("indexSet")},
    };
}

NSMutableIndexSet NSMutableIndexSet::indexSet() { return alloc(); }

NSMutableIndexSet NSMutableIndexSet::indexSetWithIndex_(NSUInteger index) { return alloc().initWithIndex_(index); }

NSMutableIndexSet NSMutableIndexSet::indexSetWithIndexesInRange_(NSRange range) {
    return alloc().initWithIndexesInRange_(range);
}

NSMutableIndexSet NSMutableIndexSet::init() const { return *this; }

NSMutableIndexSet NSMutableIndexSet::initWithIndex_(NSUInteger index) const {
    NSIndexSet::initWithIndex_(index);
    return *this;
}

NSMutableIndexSet NSMutableIndexSet::initWithIndexesInRange_(NSRange range) const {
    NSIndexSet::initWithIndexesInRange_(range);
    return *this;
}

NSMutableIndexSet NSMutableIndexSet::initWithIndexSet_(NSIndexSet const& other) const {
    NSIndexSet::initWithIndexSet_(other);
    return *this;
}

void NSMutableIndexSet::addIndex_(NSUInteger index) const { addIndexesInRange_({index, 1}); }

void NSMutableIndexSet::addIndexesInRange_(NSRange range) const {
    if (*this != nil) bodyOf(*this)->add(checkedIndexes(range));
}

void NSMutableIndexSet::addIndexes_(NSIndexSet const& other) const {
    if (*this == nil || other == nil) return;
    // In one pass, since each of many ranges in between would move those behind it.
    std::span<NSRange const> const added = other.ranges();
    std::vector<NSRange> all;
    all.reserve(ranges().size() + added.size());
    std::ranges::merge(ranges(), added, std::back_inserter(all), {}, &NSRange::location, &NSRange::location);
    Body united;
    for (NSRange const range : all)
        united.add(range);
    bodyOf(*this)->m_ranges = std::move(united.m_ranges);
}

void NSMutableIndexSet::removeIndex_(NSUInteger index) const { removeIndexesInRange_({index, 1}); }

void NSMutableIndexSet::removeIndexesInRange_(NSRange range) const {
    if (*this != nil) bodyOf(*this)->remove(checkedIndexes(range));
}

void NSMutableIndexSet::removeIndexes_(NSIndexSet const& other) const {
    if (*this == nil) return;
    std::span<NSRange const> const removed = other.ranges();
    std::vector<NSRange> rest;
    auto obstacle = removed.begin();
    for (NSRange const range : ranges()) {
        NSUInteger start = range.location;
        for (; obstacle != removed.end() && obstacle->location < endOf(range); ++obstacle) {
            if (obstacle->location > start) rest.push_back({start, obstacle->location - start});
            start = std::max(start, endOf(*obstacle));
            // The shifted range may overlap the next one.
            if (start > endOf(range)) break;
        }
        if (start < endOf(range)) rest.push_back({start, endOf(range) - start});
    }
    bodyOf(*this)->m_ranges = std::move(rest);
}

void NSMutableIndexSet::removeAllIndexes() const {
    if (*this != nil) bodyOf(*this)->m_ranges.clear();
}

void NSMutableIndexSet::shiftIndexesStartingAtIndex_by_(NSUInteger index, NSInteger delta) const {
    if (*this == nil || delta == 0 || indexGreaterThanOrEqualToIndex_(index) == NSNotFound) return;
    std::int64_t const first = std::int64_t{indexGreaterThanOrEqualToIndex_(index)} + delta;
    std::int64_t const last = std::int64_t{lastIndex()} + delta;
    if (first < 0 || last >= std::int64_t{NSNotFound})
        throw NSRangeException("Shifting by " + std::to_string(delta) + " takes an index to " +
                               std::to_string(first < 0 ? first : last));
    Body moved(bodyOf(*this)->m_ranges);
    moved.remove({0, index});
    Body shifted(bodyOf(*this)->m_ranges);
    // Those from the index on go from their places; so do those that they would push away.
    NSUInteger const cleared =
        delta < 0 ? index - std::min(index, static_cast<NSUInteger>(-std::int64_t{delta})) : index;
    shifted.remove({cleared, NSNotFound - cleared});
    for (NSRange const range : moved.m_ranges)
        shifted.add({static_cast<NSUInteger>(std::int64_t{range.location} + delta), range.length});
    bodyOf(*this)->m_ranges = std::move(shifted.m_ranges);
}

} // namespace mac
