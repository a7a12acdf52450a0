#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/text/NSString.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace mac {

namespace {

// What the framework's reading of numbers passes over: a list of its own, apart from the white space of character sets.
bool isBlankBeforeNumber(char16_t unit) {
    return unit <= 0x20 || (unit >= 0x7F && unit <= 0xA0) || (unit >= 0x2000 && unit <= 0x200B) || unit == 0x3000;
}

void skipBlanks(std::u16string_view& text) {
    while (!text.empty() && isBlankBeforeNumber(text[0]))
        text.remove_prefix(1);
}

// True for a minus.
bool takeSign(std::u16string_view& text) {
    if (text.empty() || (text[0] != u'-' && text[0] != u'+')) return false;
    bool const isMinus = text[0] == u'-';
    text.remove_prefix(1);
    return isMinus;
}

std::size_t digitCount(std::u16string_view text) {
    return static_cast<std::size_t>(std::ranges::find_if_not(text, isASCIIDigit) - text.begin());
}

template <class Integer>
Integer integerValueOf(std::u16string_view text) {
    using Limits = std::numeric_limits<Integer>;
    skipBlanks(text);
    bool const isNegative = takeSign(text);
    Integer const end = isNegative ? Limits::min() : Limits::max();
    // Counted downwards, where one more value fits.
    Integer value = 0;
    for (char16_t const unit : text.substr(0, digitCount(text))) {
        auto const digit = static_cast<Integer>(unit - u'0');
        if (value < (Limits::min() + digit) / 10) return end;
        value = static_cast<Integer>(value * 10 - digit);
    }
    if (isNegative) return value;
    return value == Limits::min() ? end : static_cast<Integer>(-value);
}

// The part of the text that is a decimal number: digits, point, digits and an exponent where it has digits.
std::string decimalNumber(std::u16string_view text) {
    std::size_t length = digitCount(text);
    bool hasDigits = length > 0;
    if (length < text.size() && text[length] == u'.') {
        std::size_t const fraction = digitCount(text.substr(length + 1));
        hasDigits = hasDigits || fraction > 0;
        length += 1 + fraction;
    }
    if (!hasDigits) return {};
    if (length < text.size() && (text[length] == u'e' || text[length] == u'E')) {
        std::u16string_view exponent = text.substr(length + 1);
        takeSign(exponent);
        std::size_t const digits = digitCount(exponent);
        if (digits > 0) length = text.size() - exponent.size() + digits;
    }
    std::u16string_view const units = text.substr(0, length);
    return {units.begin(), units.end()};
}

// The value of a number that is too large or too small for a double.
double outOfRange(std::string_view number) {
    std::size_t const letter = std::min(number.find_first_of("eE"), number.size());
    constexpr int pastRange = 1 << 30;
    long long exponent = 0;
    if (letter < number.size()) {
        std::string_view digits = number.substr(letter + 1);
        if (digits.starts_with('+')) digits.remove_prefix(1);
        std::from_chars_result const result = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
        if (result.ec == std::errc::result_out_of_range) exponent = digits.starts_with('-') ? -pastRange : pastRange;
    }
    std::size_t const point = std::min(number.find('.'), letter);
    std::size_t const first = number.find_first_of("123456789");
    long long const magnitude = static_cast<long long>(point) - static_cast<long long>(first);
    return magnitude + exponent > 0 ? HUGE_VAL : 0;
}

} // namespace

int NSString::intValue() const { return integerValueOf<int>(codeUnits()); }

NSInteger NSString::integerValue() const { return integerValueOf<NSInteger>(codeUnits()); }

long long NSString::longLongValue() const { return integerValueOf<long long>(codeUnits()); }

double NSString::doubleValue() const {
    std::u16string_view text = codeUnits();
    skipBlanks(text);
    bool const isNegative = takeSign(text);
    std::string const number = decimalNumber(text);
    if (number.empty()) return 0;
    double value = 0;
    std::from_chars_result const result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) value = outOfRange(number);
    return isNegative ? -value : value;
}

float NSString::floatValue() const { return nearestFloat(doubleValue()); }

bool NSString::boolValue() const {
    std::u16string_view text = codeUnits();
    skipBlanks(text);
    takeSign(text);
    while (text.starts_with(u'0'))
        text.remove_prefix(1);
    if (text.empty()) return false;
    return std::u16string_view(u"YyTt123456789").find(text[0]) != std::u16string_view::npos;
}

} // namespace mac
