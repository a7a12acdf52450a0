#pragma once

#include "platform/foundation/NSArray.h"
#include <span>
#include <vector>

// The order behind every sorting by descriptors, for implementations.

namespace mac {

// The rows in their stable order, by index. Each row has one value for each descriptor, and the values stand row after
// row. Only sort descriptors may be among the descriptors. A value that does not understand its descriptor's message
// raises NSInvalidArgumentException once it is compared.
std::vector<std::size_t> orderOfRows(std::span<id const> values, NSArray const& descriptors);

}
