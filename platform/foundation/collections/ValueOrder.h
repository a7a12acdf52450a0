#pragma once

#include "platform/foundation/collections/NSArray.h"
#include <memory>
#include <span>
#include <vector>

// The order behind every sorting by descriptors, for implementations.

namespace mac {

// The rows in their stable order, by index. Each row has one value for each descriptor, and the values stand row after
// row. Only sort descriptors may be among the descriptors. A value that does not understand its descriptor's message
// raises NSInvalidArgumentException once it is compared.
std::vector<std::size_t> orderOfRows(std::span<id const> values, NSArray const& descriptors);

// Finds the same order in steps, for a caller that has other things to do meanwhile. The values outlive it and stay as
// they are.
class RowOrdering {
public:
    RowOrdering(std::span<id const> values, NSArray const& descriptors);
    ~RowOrdering();
    RowOrdering(RowOrdering const&) = delete;
    RowOrdering& operator=(RowOrdering const&) = delete;

    // Sorts on, for about as long as sorting so many rows takes. True when the order is found.
    bool advance(std::size_t rows);
    // The rows in their order, once it is found.
    std::vector<std::size_t> const& order() const;

private:
    class Sorting;
    std::unique_ptr<Sorting> m_sorting;
};

}
