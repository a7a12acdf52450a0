#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace mac {

// A real as the framework writes it where no format says more: %.16g for a double and %.7g for a float, so that 0.1 is
// "0.1"; "nan", "inf" and "-inf". No locale. For implementations.
std::string generalText(double value);
std::string generalText(float value);

// The nearest float, which is infinite from half a step past the largest on; the language leaves what lies beyond open.
float nearestFloat(double value);

// The fewest digits that read back as the same number, with an exponent below 0.0001 and from 1e17 on.
std::string shortestText(double value);

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
