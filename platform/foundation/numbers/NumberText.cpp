#include "platform/foundation/numbers/NumberText.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

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

namespace {

// A number in the parts between which padding goes: "-" "0x" "1f".
struct NumberParts {
    std::string prefix;
    std::string digits;
    bool takesZeros{true};
};

void uppercase(std::string& text) {
    for (char& character : text) {
        if (character >= 'a' && character <= 'z') character = static_cast<char>(character - 'a' + 'A');
    }
}

std::string signText(bool isNegative, FormatConversion const& conversion) {
    if (isNegative) return "-";
    if (conversion.showsPlus) return "+";
    return conversion.showsSpace ? " " : "";
}

std::string padded(NumberParts const& parts, FormatConversion const& conversion) {
    std::size_t const length = parts.prefix.size() + parts.digits.size();
    std::size_t const missing = conversion.width > length ? conversion.width - length : 0;
    if (conversion.isLeftAligned) return parts.prefix + parts.digits + std::string(missing, ' ');
    if (conversion.isZeroPadded && parts.takesZeros) return parts.prefix + std::string(missing, '0') + parts.digits;
    return std::string(missing, ' ') + parts.prefix + parts.digits;
}

int baseOf(char letter) {
    if (letter == 'o') return 8;
    return letter == 'x' || letter == 'X' ? 16 : 10;
}

// As std::to_chars writes it; without a precision as many digits as read back as the same number.
std::string digitsOf(double magnitude, std::chars_format format, std::optional<std::size_t> precision) {
    // The longest double has 309 digits before the point; sign, point and exponent take the rest.
    std::vector<char> text(400 + precision.value_or(0));
    char* const begin = text.data();
    char* const end = begin + text.size();
    std::to_chars_result const result = precision
                                            ? std::to_chars(begin, end, magnitude, format, static_cast<int>(*precision))
                                            : std::to_chars(begin, end, magnitude, format);
    return {begin, result.ptr};
}

// The '#' flag keeps the point, also where no digit follows it.
void insertPoint(std::string& digits, char const* exponentLetters) {
    if (digits.find('.') != std::string::npos) return;
    digits.insert(std::min(digits.find_first_of(exponentLetters), digits.size()), 1, '.');
}

int decimalExponent(std::string const& scientific) {
    char const* begin = scientific.data() + scientific.find('e') + 1;
    if (*begin == '+') ++begin;
    int exponent = 0;
    std::from_chars(begin, scientific.data() + scientific.size(), exponent);
    return exponent;
}

// %#g: the digits of %g with their trailing zeros.
std::string generalWithZeros(double magnitude, std::size_t precision) {
    std::size_t const significant = std::max<std::size_t>(precision, 1);
    std::string scientific = digitsOf(magnitude, std::chars_format::scientific, significant - 1);
    int const exponent = decimalExponent(scientific);
    if (exponent < -4 || exponent >= static_cast<int>(significant)) return scientific;
    std::size_t const fraction = static_cast<std::size_t>(static_cast<int>(significant) - 1 - exponent);
    return digitsOf(magnitude, std::chars_format::fixed, fraction);
}

std::string realDigits(double magnitude, char letter, FormatConversion const& conversion) {
    constexpr std::size_t usualPrecision = 6;
    std::size_t const precision = conversion.precision.value_or(usualPrecision);
    if (letter == 'a') return digitsOf(magnitude, std::chars_format::hex, conversion.precision);
    if (letter == 'e') return digitsOf(magnitude, std::chars_format::scientific, precision);
    if (letter == 'f') return digitsOf(magnitude, std::chars_format::fixed, precision);
    if (conversion.isAlternate) return generalWithZeros(magnitude, precision);
    return digitsOf(magnitude, std::chars_format::general, precision);
}

} // namespace

std::string formattedInteger(std::uint64_t magnitude, bool isNegative, FormatConversion const& conversion) {
    std::array<char, 24> text{};
    char* const textEnd = text.data() + text.size();
    std::to_chars_result const result = std::to_chars(text.data(), textEnd, magnitude, baseOf(conversion.letter));
    NumberParts parts{.prefix = {}, .digits = {text.data(), result.ptr}, .takesZeros = !conversion.precision};
    if (conversion.precision == 0U && magnitude == 0) parts.digits.clear();
    if (conversion.precision && parts.digits.size() < *conversion.precision)
        parts.digits.insert(0, *conversion.precision - parts.digits.size(), '0');
    bool const isSigned = conversion.letter == 'd' || conversion.letter == 'i';
    if (isSigned) parts.prefix = signText(isNegative, conversion);
    if (conversion.isAlternate && conversion.letter == 'o' && !parts.digits.starts_with('0'))
        parts.digits.insert(0, 1, '0');
    if (conversion.isAlternate && baseOf(conversion.letter) == 16 && magnitude != 0) parts.prefix = "0x";
    if (conversion.letter == 'X') {
        uppercase(parts.prefix);
        uppercase(parts.digits);
    }
    return padded(parts, conversion);
}

std::string formattedReal(double value, FormatConversion const& conversion) {
    bool const isUppercase = conversion.letter >= 'A' && conversion.letter <= 'Z';
    char const letter = static_cast<char>(isUppercase ? conversion.letter - 'A' + 'a' : conversion.letter);
    NumberParts parts;
    if (std::isnan(value)) {
        parts = {.prefix = signText(false, conversion), .digits = "nan", .takesZeros = false};
    } else if (std::isinf(value)) {
        parts = {.prefix = signText(value < 0, conversion), .digits = "inf", .takesZeros = false};
    } else {
        parts.prefix = signText(std::signbit(value), conversion) + (letter == 'a' ? "0x" : "");
        parts.digits = realDigits(std::abs(value), letter, conversion);
        if (conversion.isAlternate) insertPoint(parts.digits, letter == 'a' ? "p" : "e");
    }
    if (isUppercase) {
        uppercase(parts.prefix);
        uppercase(parts.digits);
    }
    return padded(parts, conversion);
}

} // namespace mac
