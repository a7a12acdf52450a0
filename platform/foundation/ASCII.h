#pragma once

#include <string>
#include <string_view>

// Letters and digits of ASCII, in text of any width; for implementations.

namespace mac {

constexpr bool isASCIIDigit(char32_t character) { return character >= U'0' && character <= U'9'; }

constexpr char16_t lowercaseASCII(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

// The text must be ASCII.
inline std::u16string unitsFromASCII(std::string_view text) { return {text.begin(), text.end()}; }

} // namespace mac
