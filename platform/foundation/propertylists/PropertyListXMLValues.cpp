#include "platform/foundation/propertylists/PropertyListXMLValues.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace mac {

namespace chrono = std::chrono;

namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::int64_t kSecondsOfDay = 86400;
// Years have four digits and a sign.
constexpr int kLastYear = 9999;
constexpr unsigned kMonthsOfYear = 12;

struct Sign {
    bool isNegative;
    std::string_view rest;
};

Sign splitSign(std::string_view text) {
    bool const isNegative = text.starts_with('-');
    return {isNegative, isNegative || text.starts_with('+') ? text.substr(1) : text};
}

template <class Value, class... Base>
std::optional<Value> whole(std::string_view text, Base... base) {
    Value value{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base...);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

// A fixed number of digits.
std::optional<int> digits(std::string_view text, std::size_t position, std::size_t count) {
    std::string_view const part = text.substr(position, count);
    if (!std::ranges::all_of(part, isASCIIDigit)) return std::nullopt;
    return whole<int>(part);
}

constexpr std::array<std::uint8_t, 256> makeDecodingTable() {
    std::array<std::uint8_t, 256> table{};
    table.fill(0xFF);
    for (std::size_t index = 0; index < kAlphabet.size(); ++index)
        table[static_cast<unsigned char>(kAlphabet[index])] = static_cast<std::uint8_t>(index);
    return table;
}

bool isBlank(char character) { return character == ' ' || character == '\t' || character == '\n' || character == '\r'; }

void appendPadded(std::string& text, int value, std::size_t width) {
    std::string const number = std::to_string(value);
    text.append(width - number.size(), '0').append(number);
}

} // namespace

NSNumber integerOfText(std::string_view text) {
    Sign const sign = splitSign(text);
    bool const isHexadecimal = sign.rest.starts_with("0x") || sign.rest.starts_with("0X");
    std::string_view const number = isHexadecimal ? sign.rest.substr(2) : sign.rest;
    std::optional<std::uint64_t> const value = whole<std::uint64_t>(number, isHexadecimal ? 16 : 10);
    if (!value) return nil;
    constexpr std::uint64_t kMostNegative = std::uint64_t{1} << 63;
    if (!sign.isNegative)
        return *value < kMostNegative ? NSNumber::numberWithLongLong_(static_cast<long long>(*value))
                                      : NSNumber::numberWithUnsignedLongLong_(*value);
    if (*value > kMostNegative) return nil;
    return NSNumber::numberWithLongLong_(std::bit_cast<long long>(std::uint64_t{0} - *value));
}

NSNumber realOfText(std::string_view text) {
    Sign const sign = splitSign(text);
    std::string const number = asciiLowercase(sign.rest);
    double magnitude = 0;
    if (number == "nan") {
        magnitude = std::numeric_limits<double>::quiet_NaN();
    } else if (number == "inf" || number == "infinity") {
        magnitude = std::numeric_limits<double>::infinity();
    } else {
        bool const isDecimal = std::ranges::all_of(number, [](char character) {
            return isASCIIDigit(character) || std::string_view(".e+-").find(character) != std::string_view::npos;
        });
        std::optional<double> const value =
            isDecimal && !number.starts_with('-') ? whole<double>(number) : std::nullopt;
        if (!value) return nil;
        magnitude = *value;
    }
    return NSNumber::numberWithDouble_(sign.isNegative ? -magnitude : magnitude);
}

NSDate dateOfText(std::string_view text) {
    bool const isNegative = text.starts_with('-');
    if (isNegative) text.remove_prefix(1);
    constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
    bool const hasForm = std::ranges::equal(text, kForm, [](char character, char form) {
        return form == '0' ? isASCIIDigit(character) : character == form;
    });
    if (!hasForm) return nil;
    auto const months = static_cast<unsigned>(*digits(text, 5, 2));
    unsigned const yearsOfMonths = months == 0 ? 0 : (months - 1) / kMonthsOfYear;
    int const year = *digits(text, 0, 4) * (isNegative ? -1 : 1) + static_cast<int>(yearsOfMonths);
    chrono::year_month_day const day(chrono::year(year), chrono::month(months - yearsOfMonths * kMonthsOfYear),
                                     chrono::day(static_cast<unsigned>(*digits(text, 8, 2))));
    std::int64_t const hour = *digits(text, 11, 2);
    std::int64_t const minute = *digits(text, 14, 2);
    std::int64_t const second = *digits(text, 17, 2);
    if (!day.ok() || year > kLastYear || hour > 23 || minute > 59 || second > 59) return nil;
    std::int64_t const days = chrono::sys_days(day).time_since_epoch().count();
    std::int64_t const seconds = days * kSecondsOfDay + hour * 3600 + minute * 60 + second;
    return NSDate::dateWithTimeIntervalSinceReferenceDate_(static_cast<double>(seconds) - NSTimeIntervalSince1970);
}

std::optional<std::vector<std::byte>> dataOfText(std::string_view text) {
    static constexpr std::array<std::uint8_t, 256> kTable = makeDecodingTable();
    std::vector<std::byte> data;
    data.reserve(text.size() / 4 * 3);
    std::uint32_t bits = 0;
    std::size_t characters = 0;
    std::size_t padding = 0;
    for (char const character : text) {
        if (isBlank(character)) continue;
        std::uint8_t const value = kTable[static_cast<unsigned char>(character)];
        bool const isPadding = character == '=';
        if (value == 0xFF && !isPadding) return std::nullopt;
        if (padding > 0 && !isPadding) return std::nullopt;
        padding += isPadding ? 1 : 0;
        bits = bits << 6 | (isPadding ? 0U : value);
        if (++characters % 4 != 0) continue;
        if (padding > 2) return std::nullopt;
        for (std::size_t index = 0; index < 3 - padding; ++index)
            data.push_back(static_cast<std::byte>(bits >> (16 - 8 * index)));
        bits = 0;
    }
    if (characters % 4 != 0) return std::nullopt;
    return data;
}

std::string textOfNumber(NSNumber const& number) {
    if (number.kind() == NSNumber::Kind::Unsigned) return std::to_string(number.unsignedLongLongValue());
    if (number.kind() != NSNumber::Kind::Real) return std::to_string(number.longLongValue());
    double const value = number.doubleValue();
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value < 0 ? "-infinity" : "+infinity";
    if (value == 0 && !std::signbit(value)) return "0.0";
    // The digits that Mac OS X writes: enough for any double to be read back, so that 0.1 is 0.10000000000000001.
    constexpr int digits = 17;
    std::array<char, 32> buffer{};
    auto const [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, digits);
    return {buffer.data(), end};
}

std::optional<std::string> textOfDate(NSDate const& date) {
    // Rounded before the sum, which may be rounded up.
    double const since1970 = std::floor(date.timeIntervalSinceReferenceDate()) + NSTimeIntervalSince1970;
    static constexpr double kFirst = static_cast<double>(
        chrono::sys_days(chrono::year(-kLastYear) / 1 / 1).time_since_epoch().count() * kSecondsOfDay);
    static constexpr double kBehindLast = static_cast<double>(
        chrono::sys_days(chrono::year(kLastYear + 1) / 1 / 1).time_since_epoch().count() * kSecondsOfDay);
    // Written so that NaN is outside.
    if (!(since1970 >= kFirst && since1970 < kBehindLast)) return std::nullopt;
    chrono::sys_seconds const moment{chrono::seconds(static_cast<std::int64_t>(since1970))};
    chrono::sys_days const midnight = chrono::floor<chrono::days>(moment);
    chrono::year_month_day const day(midnight);
    chrono::hh_mm_ss const time(moment - midnight);
    int const year = static_cast<int>(day.year());
    std::string text = year < 0 ? "-" : "";
    appendPadded(text, std::abs(year), 4);
    appendPadded(text += '-', static_cast<int>(static_cast<unsigned>(day.month())), 2);
    appendPadded(text += '-', static_cast<int>(static_cast<unsigned>(day.day())), 2);
    appendPadded(text += 'T', static_cast<int>(time.hours().count()), 2);
    appendPadded(text += ':', static_cast<int>(time.minutes().count()), 2);
    appendPadded(text += ':', static_cast<int>(time.seconds().count()), 2);
    return text += 'Z';
}

std::string textOfData(std::span<std::byte const> data) {
    std::string text;
    text.reserve((data.size() + 2) / 3 * 4);
    for (std::size_t start = 0; start < data.size(); start += 3) {
        std::size_t const count = std::min<std::size_t>(3, data.size() - start);
        std::uint32_t bits = 0;
        for (std::size_t index = 0; index < 3; ++index)
            bits = bits << 8 | (index < count ? std::to_integer<std::uint32_t>(data[start + index]) : 0U);
        for (std::size_t index = 0; index < 4; ++index)
            text += index <= count ? kAlphabet[bits >> (18 - 6 * index) & 0x3F] : '=';
    }
    return text;
}

} // namespace mac
