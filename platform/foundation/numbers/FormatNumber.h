#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace mac {

// A conversion such as %-08.3x: the flags, width and precision of C's, and its letter.
struct FormatConversion {
    bool isLeftAligned{false};
    bool showsPlus{false};
    bool showsSpace{false};
    bool isZeroPadded{false};
    bool isAlternate{false};
    std::size_t width{0};
    std::optional<std::size_t> precision{};
    char letter{'d'};
};

// What C prints for the number, without a locale. The letter is one of "diuxXo" or "fFeEgGaA".
std::string formattedInteger(std::uint64_t magnitude, bool isNegative, FormatConversion const& conversion);
std::string formattedReal(double value, FormatConversion const& conversion);

} // namespace mac
