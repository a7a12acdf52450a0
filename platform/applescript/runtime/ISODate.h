#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mac::applescript {

// Dates as «class isot» writes them: "2024-05-06T07:08:09", in local time. Dates are seconds since 1904, local time.

// Years have at least four digits.
std::u16string isoDateText(std::int64_t seconds);
// Date, or date and time with T or a blank between them; a Z at the end says that the time is UTC. Nothing for other
// text and for a month, day or time that no calendar has.
std::optional<std::int64_t> dateInISOText(std::u16string_view text);

} // namespace mac::applescript
