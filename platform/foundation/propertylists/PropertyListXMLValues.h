#pragma once

#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/system/Result.h"
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// The texts of single values in the XML form. The readers answer nil or nullopt for any other text, also for one padded
// with blanks.

// Decimal or hexadecimal with an optional sign, from -2^63 to 2^64 - 1.
NSNumber integerOfText(std::string_view text);
// Decimal with an optional exponent, or "nan", "inf" or "infinity" in any case, with an optional sign. What is too
// large or too small for a double is nil.
NSNumber realOfText(std::string_view text);
// "2001-01-01T00:00:00Z" and no other form, but for a minus sign before the year. Months past the twelfth are those of
// the following years. Nil outside the years -9999 to 9999.
NSDate dateOfText(std::string_view text);
// Base 64 with white space anywhere, padded at the end.
std::optional<std::vector<std::byte>> dataOfText(std::string_view text);

std::string textOfNumber(NSNumber const& number);
// Whole seconds, rounded down. nullopt outside the years -9999 to 9999.
std::optional<std::string> textOfDate(NSDate const& date);
std::string textOfData(std::span<std::byte const> data);

} // namespace mac
