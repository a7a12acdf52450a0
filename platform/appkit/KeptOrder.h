#pragma once

#include "platform/foundation/NSArray.h"
#include <span>
#include <vector>

namespace mac {

// The object's value of a key path, itself for an empty one; quick where the path is a single key.
id valueOfKeyPath(id const& object, NSString const& keyPath);

// The order of an array controller's content. It remembers by what the objects were sorted, so that a content which is
// mostly what it was needs no sorting of all of it.
class KeptOrder {
public:
    // A place that an object did not have.
    static constexpr std::size_t None = SIZE_MAX;

    struct Result {
        // The indexes of the objects, in order.
        std::vector<std::size_t> order;
        // The values of all criteria for each object in order; what the next call compares with.
        std::vector<id> values;
    };

    // The objects with a former place come first, in the order of those; so do equal ones in the result.
    Result sort(std::span<id const> objects, std::span<std::size_t const> formerPlaces, NSArray const& criteria) const;
    std::vector<id> const& values() const { return m_values; }
    void keep(std::vector<id> values) { m_values = std::move(values); }

private:
    bool isAsBefore(std::span<id const> values, std::span<std::size_t const> formerPlaces, std::size_t width) const;

    std::vector<id> m_values;
};

} // namespace mac
