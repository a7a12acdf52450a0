#pragma once

namespace mac {

// The framework's own lists, whatever the locale: they have the zero-width space and no U+180E.
constexpr bool isWhitespace(char16_t unit) {
    return unit == 0x09 || unit == 0x20 || unit == 0xA0 || unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200B) ||
           unit == 0x202F || unit == 0x205F || unit == 0x3000;
}

constexpr bool isNewline(char16_t unit) {
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

} // namespace mac
