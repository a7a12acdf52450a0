#include "platform/foundation/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace mac {

namespace {

template <class Real>
std::string shortestTextOf(Real value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
    constexpr Real firstWithExponent = std::numeric_limits<Real>::max_digits10 == 17 ? Real(1e17) : Real(1e9);
    Real const magnitude = std::abs(value);
    bool const isPlain = magnitude == 0 || (magnitude >= Real(1e-4) && magnitude < firstWithExponent);
    std::array<char, 64> text;
    std::to_chars_result const result =
        std::to_chars(text.data(), text.data() + text.size(), value,
                      isPlain ? std::chars_format::fixed : std::chars_format::scientific);
    return {text.data(), result.ptr};
}

} // namespace

std::string shortestText(double value) { return shortestTextOf(value); }
std::string shortestText(float value) { return shortestTextOf(value); }

} // namespace mac
