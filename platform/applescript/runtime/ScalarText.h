#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mac::applescript {

// A real as the language writes it: 3.14159265359, 52.0, 5.0E+6.
// Linux: always with a point, so that a script means the same in every locale.
std::u16string realText(double number);

// The number that text looks like, white space around it ignored; nothing for other text. Empty text is no number.
struct NumberInText {
    double number{0};
    bool looksLikeInteger{false};
};
std::optional<NumberInText> numberInText(std::u16string_view text);

// Half goes to the even neighbour.
double roundedToEven(double number);

// Dates as «class isot» writes them: "2024-05-06T07:08:09", in local time. Dates are seconds since 1904, local time.

// Years have at least four digits.
std::u16string isoDateText(std::int64_t seconds);
// Date, or date and time with T or a blank between them; a Z at the end says that the time is UTC. Nothing for other
// text and for a month, day or time that no calendar has.
std::optional<std::int64_t> dateInISOText(std::u16string_view text);

} // namespace mac::applescript
