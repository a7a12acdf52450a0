#pragma once

#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/text/NSString.h"
#include <cstdint>

namespace mac {

// Values as people of the user's locale write them. For implementations; any thread.

// Day and time, local: "22/11/2026 14:05" in the locale's short form. Nil for nil.
NSString localizedDate(NSDate const& date);
// With a unit of powers of 1000: "12.3 MB".
NSString localizedSize(std::uint64_t bytes);

} // namespace mac
