#pragma once

#include "platform/applescript/language/LanguageCodes.h"
#include "platform/applescript/runtime/ScriptValue.h"
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mac::applescript {

// Dates count the seconds of local time since 1 January 1904, in the Gregorian calendar throughout.
// Linux: months, weekdays and order are those of US English in every locale, so that a script reads the same
// everywhere.

struct DateParts {
    std::int64_t year{1904};
    int month{1};
    int day{1};
    int hour{0};
    int minute{0};
    int second{0};
};

DateParts partsOfDate(std::int64_t seconds);
// Parts beyond their range carry over: 32 January is 1 February.
std::int64_t dateOfParts(DateParts const& parts);
// 0 is Sunday.
int weekdayOfDate(std::int64_t seconds);

// "Friday, November 9, 2007", "11/9/07", "11:35:50 AM", and the first and last joined.
std::u16string longDateText(std::int64_t seconds);
std::u16string shortDateText(std::int64_t seconds);
std::u16string timeText(std::int64_t seconds);
std::u16string fullDateText(std::int64_t seconds);

// Text as people write dates; what is missing comes from `base`: its day, or midnight. Nothing for what is no date.
std::optional<std::int64_t> dateInText(std::u16string_view text, std::int64_t base);

std::int64_t currentDate();
// Seconds between 1970 in UTC and 1904 in local time at that moment.
std::int64_t dateOfUnixTime(std::int64_t seconds);
// The inverse of dateOfUnixTime.
std::int64_t unixTimeOfDate(std::int64_t seconds);
std::int64_t secondsToGMT();

// The constants that name parts of dates, in their order.

inline constexpr auto Months = std::to_array<Code>(
    {codes::January, codes::February, codes::March, codes::April, codes::May, codes::June, codes::July, codes::August,
     codes::September, codes::October, codes::November, codes::December});
// 0 is Sunday.
inline constexpr auto Weekdays = std::to_array<Code>(
    {codes::Sunday, codes::Monday, codes::Tuesday, codes::Wednesday, codes::Thursday, codes::Friday, codes::Saturday});

} // namespace mac::applescript
