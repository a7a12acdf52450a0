#include "platform/applescript/runtime/ScalarText.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace mac::applescript {

namespace {

// Chosen so that every known example comes out right; the rules are not documented.
constexpr double LeastExponential = 10000;
constexpr double MostSmallExponential = 0.001;
constexpr int SignificantDigits = 15;
constexpr int MostDecimals = 12;
constexpr std::size_t LongestReal = 400;

std::u16string widenedASCII(std::string_view ascii) { return std::u16string(ascii.begin(), ascii.end()); }

// At least one decimal is kept.
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

namespace {

constexpr std::int64_t UnixEpochSince1904 = 2082844800;

class Scanner {
public:
    explicit Scanner(std::u16string_view text) : m_rest(text) {}

    // Exactly so many digits; they make the scan fail where they are missing or past the limit.
    int number(std::size_t digits, int most) {
        int read = 0;
        for (std::size_t place = 0; place < digits; ++place) {
            bool const isDigit = place < m_rest.size() && m_rest[place] >= u'0' && m_rest[place] <= u'9';
            if (!isDigit) return fail();
            read = read * 10 + (m_rest[place] - u'0');
        }
        m_rest.remove_prefix(digits);
        return read <= most ? read : fail();
    }

    bool take(char16_t unit) {
        if (!m_rest.starts_with(unit)) return false;
        m_rest.remove_prefix(1);
        return true;
    }

    void expect(char16_t unit) {
        if (!take(unit)) fail();
    }

    bool isAtEnd() const { return m_rest.empty(); }
    bool hasFailed() const { return m_hasFailed; }

private:
    int fail() {
        m_hasFailed = true;
        return 0;
    }

    std::u16string_view m_rest;
    bool m_hasFailed{false};
};

} // namespace

std::u16string isoDateText(std::int64_t seconds) {
    DateParts const parts = partsOfDate(seconds);
    std::array<char, 64> text{};
    int const length =
        std::snprintf(text.data(), text.size(), "%04lld-%02d-%02dT%02d:%02d:%02d", static_cast<long long>(parts.year),
                      parts.month, parts.day, parts.hour, parts.minute, parts.second);
    return {text.begin(), text.begin() + length};
}

std::optional<std::int64_t> dateInISOText(std::u16string_view text) {
    Scanner scanner(text);
    DateParts parts;
    parts.year = scanner.number(4, 9999);
    scanner.expect(u'-');
    parts.month = scanner.number(2, 12);
    scanner.expect(u'-');
    parts.day = scanner.number(2, 31);
    bool isUTC = false;
    if (scanner.take(u'T') || scanner.take(u' ')) {
        parts.hour = scanner.number(2, 23);
        scanner.expect(u':');
        parts.minute = scanner.number(2, 59);
        if (scanner.take(u':')) parts.second = scanner.number(2, 59);
        isUTC = scanner.take(u'Z');
    }
    if (scanner.hasFailed() || !scanner.isAtEnd()) return {};
    std::int64_t const seconds = dateOfParts(parts);
    DateParts const found = partsOfDate(seconds);
    if (found.month != parts.month || found.day != parts.day) return {};
    return isUTC ? dateOfUnixTime(seconds - UnixEpochSince1904) : seconds;
}

} // namespace mac::applescript
