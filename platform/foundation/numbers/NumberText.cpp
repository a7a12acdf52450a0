#include "platform/foundation/numbers/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace mac {

namespace {

std::string textWithDigits(double value, int digits) {
    if (std::isnan(value)) return "nan";
    std::array<char, 64> text;
    std::to_chars_result const result =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, digits);
    return {text.data(), result.ptr};
}

} // namespace

std::string shortestText(double value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
    double const magnitude = std::abs(value);
    bool const isPlain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e17);
    std::array<char, 64> text;
    std::to_chars_result const result =
        std::to_chars(text.data(), text.data() + text.size(), value,
                      isPlain ? std::chars_format::fixed : std::chars_format::scientific);
    return {text.data(), result.ptr};
}

float nearestFloat(double value) {
    constexpr double largest = std::numeric_limits<float>::max();
    constexpr double firstInfinite = 0x1.FFFFFFp127;
    if (std::abs(value) >= firstInfinite) return std::copysign(HUGE_VALF, value < 0 ? -1.0F : 1.0F);
    return static_cast<float>(std::isnan(value) ? value : std::clamp(value, -largest, largest));
}

std::string generalText(double value) { return textWithDigits(value, 16); }
std::string generalText(float value) { return textWithDigits(value, 7); }

} // namespace mac
