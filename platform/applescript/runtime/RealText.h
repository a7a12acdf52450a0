#pragma once

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

} // namespace mac::applescript
