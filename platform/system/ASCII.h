#pragma once

#include <string>
#include <string_view>

// Letters and digits of ASCII, in text of any width; for implementations.

namespace mac {

constexpr bool isASCIIDigit(char32_t character) { return character >= U'0' && character <= U'9'; }

constexpr char16_t lowercaseASCII(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

// The letters of ASCII alone: other bytes, such as those of longer characters, stay.
inline std::string asciiLowercase(std::string_view text) {
    std::string lower(text);
    for (char& byte : lower) {
        if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
    }
    return lower;
}

// The text must be ASCII.
inline std::u16string unitsFromASCII(std::string_view text) { return {text.begin(), text.end()}; }

} // namespace mac
