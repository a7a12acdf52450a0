#pragma once

#include "platform/foundation/collections/NSArray.h"
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace mac {

// The object's value of a key path, itself for an empty one; quick where the path is a single key.
id valueOfKeyPath(id const& object, NSString const& keyPath);

// Reads what objects are sorted by: one value for each criterion.
class SortValueReader {
public:
    explicit SortValueReader(NSArray const& criteria);

    std::size_t width() const { return m_keyPaths.size(); }
    void append(std::vector<id>& values, id const& object) const;

private:
    std::vector<NSString> m_keyPaths;
};

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

    // Takes the values of all criteria, object after object. The objects with a former place come first, in the order
    // of those; so do equal ones in the result.
    Result sort(std::vector<id> values, std::span<std::size_t const> formerPlaces, NSArray const& criteria) const;
    // The same order, found without sorting all; nullopt where too much is new or has changed, and all must be sorted.
    std::optional<std::vector<std::size_t>> orderWithoutSorting(std::span<id const> values,
                                                                std::span<std::size_t const> formerPlaces,
                                                                NSArray const& criteria) const;
    std::vector<id> const& values() const { return m_values; }
    // Answers what was kept before.
    std::vector<id> keep(std::vector<id> values) { return std::exchange(m_values, std::move(values)); }

    // The values in that order, object after object; so many values has each.
    static std::vector<id> valuesInOrder(std::vector<id> values, std::span<std::size_t const> order, std::size_t width);

private:
    bool isAsBefore(std::span<id const> values, std::span<std::size_t const> formerPlaces, std::size_t width) const;

    std::vector<id> m_values;
};

} // namespace mac
