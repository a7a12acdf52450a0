#pragma once

#include "platform/applescript/language/LanguageCodes.h"
#include "platform/applescript/runtime/ScriptValue.h"
#include <array>

// The constants that name parts of dates, in their order.

namespace mac::applescript {

inline constexpr auto Months = std::to_array<Code>(
    {codes::January, codes::February, codes::March, codes::April, codes::May, codes::June, codes::July, codes::August,
     codes::September, codes::October, codes::November, codes::December});
// 0 is Sunday.
inline constexpr auto Weekdays = std::to_array<Code>(
    {codes::Sunday, codes::Monday, codes::Tuesday, codes::Wednesday, codes::Thursday, codes::Friday, codes::Saturday});

} // namespace mac::applescript
