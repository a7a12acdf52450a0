#pragma once

#include "platform/foundation/collections/NSIndexSet.h"
#include <vector>

namespace mac {

// The ranges behind an index set, for implementations. The mutable class has the same body.
class NSIndexSet::Body : public ObjectBody {
public:
    Body() = default;
    explicit Body(std::vector<NSRange> ranges) : m_ranges(std::move(ranges)) {}

    bool isEqual(id const& other) const override;
    std::uint64_t hash() const override;
    NSString description() const override;
    id copy() const override;
    id mutableCopy() const override;

    // REQUIRES: every index of the range is below NSNotFound.
    void add(NSRange range);
    void remove(NSRange range);

    // Ascending, none empty, no two touching, all below NSNotFound.
    std::vector<NSRange> m_ranges;
};

// The index behind the range's last one.
inline NSUInteger endOf(NSRange range) { return range.location + range.length; }
// Raises NSRangeException unless every index of the range is below NSNotFound; an empty range has none.
NSRange checkedIndexes(NSRange range);

} // namespace mac
