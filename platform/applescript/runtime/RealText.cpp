#include "platform/applescript/runtime/RealText.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace mac::applescript {

namespace {

// The choices nobody wrote down; they fit every number seen.
constexpr double LeastExponential = 10000;
constexpr double MostSmallExponential = 0.001;
constexpr int SignificantDigits = 15;
constexpr int MostDecimals = 12;
constexpr std::size_t LongestReal = 400;

std::u16string widenedASCII(std::string_view ascii) { return std::u16string(ascii.begin(), ascii.end()); }

// One decimal stays.
void stripZeros(std::string& digits) {
    while (digits.ends_with('0') && !digits.ends_with(".0"))
        digits.pop_back();
}

std::string written(double number, std::chars_format format, int precision) {
    std::array<char, LongestReal> buffer{};
    auto const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, format, precision);
    return std::string(buffer.data(), end.ptr);
}

bool isBlankInNumber(char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == u'\u00A0'; }

} // namespace

std::u16string realText(double number) {
    if (std::isnan(number)) return u"NAN";
    if (std::isinf(number)) return number > 0 ? u"INF" : u"-INF";
    double const size = std::abs(number);
    if (size == 0) return std::signbit(number) ? u"-0.0" : u"0.0";
    if (size < LeastExponential && size > MostSmallExponential) {
        int const whole = size < 1 ? 0 : static_cast<int>(std::floor(std::log10(size))) + 1;
        std::string digits =
            written(number, std::chars_format::fixed, std::min(MostDecimals, SignificantDigits - whole));
        stripZeros(digits);
        return widenedASCII(digits);
    }
    std::string const text = written(number, std::chars_format::scientific, SignificantDigits - 1);
    std::size_t const mark = text.find('e');
    std::string digits = text.substr(0, mark);
    stripZeros(digits);
    std::string exponent = text.substr(mark + 2);
    exponent.erase(0, std::min(exponent.find_first_not_of('0'), exponent.size() - 1));
    return widenedASCII(digits + "E" + text[mark + 1] + exponent);
}

std::optional<NumberInText> numberInText(std::u16string_view text) {
    while (!text.empty() && isBlankInNumber(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlankInNumber(text.back()))
        text.remove_suffix(1);
    if (text.empty() || text.size() > LongestReal) return {};
    std::string ascii;
    for (char16_t const unit : text) {
        bool const belongs = (unit >= u'0' && unit <= u'9') || unit == u'.' || unit == u'+' || unit == u'-' ||
                             unit == u'e' || unit == u'E';
        if (!belongs) return {};
        ascii += static_cast<char>(unit);
    }
    std::string_view digits = ascii;
    if (digits.front() == '+') digits.remove_prefix(1);
    NumberInText found;
    auto const read = std::from_chars(digits.data(), digits.data() + digits.size(), found.number);
    if (read.ptr != digits.data() + digits.size()) return {};
    if (read.ec == std::errc::result_out_of_range) return {};
    if (read.ec != std::errc()) return {};
    found.looksLikeInteger = digits.find_first_of(".eE") == std::string_view::npos;
    return found;
}

double roundedToEven(double number) {
    double const below = std::floor(number);
    double const rest = number - below;
    if (rest < 0.5) return below;
    if (rest > 0.5) return below + 1;
    return std::fmod(below, 2) == 0 ? below : below + 1;
}

} // namespace mac::applescript
