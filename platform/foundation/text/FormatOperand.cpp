#include "platform/foundation/text/FormatOperand.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/numbers/NumberText.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <cmath>

namespace mac {

namespace {

using Integer = FormatArgument::Integer;

constexpr std::size_t WidestInteger = sizeof(std::uint64_t);
// Arguments narrower than an int become one when they are passed.
constexpr std::size_t NarrowestPassed = sizeof(int);

std::uint64_t lowBytes(std::uint64_t bits, std::size_t bytes) {
    return bytes >= WidestInteger ? bits : bits & ((std::uint64_t{1} << (bytes * 8)) - 1);
}

std::uint64_t highestMagnitude(std::size_t bytes, bool isSigned) {
    return lowBytes(~std::uint64_t{0}, bytes) >> (isSigned ? 1 : 0);
}

SignedMagnitude signedLowBytes(std::uint64_t bits, std::size_t bytes) {
    std::uint64_t const low = lowBytes(bits, bytes);
    if (low <= highestMagnitude(bytes, true)) return {low, false};
    return {lowBytes(0 - low, bytes), true};
}

SignedMagnitude saturated(double value, std::size_t bytes, bool isSigned) {
    constexpr double pastRange = 18446744073709551616.0;
    if (std::isnan(value) || (value < 0 && !isSigned)) return {};
    double const whole = std::trunc(std::abs(value));
    std::uint64_t const magnitude = whole >= pastRange ? ~std::uint64_t{0} : static_cast<std::uint64_t>(whole);
    bool const isNegative = value < 0 && magnitude != 0;
    return {std::min(magnitude, highestMagnitude(bytes, isSigned) + (isNegative ? 1 : 0)), isNegative};
}

std::u16string decimalText(Integer const& integer) {
    if (integer.isSigned) return unitsFromASCII(std::to_string(static_cast<std::int64_t>(integer.bits)));
    return unitsFromASCII(std::to_string(integer.bits));
}

std::u16string hexadecimalText(std::uintptr_t address) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::u16string text;
    for (; address != 0; address >>= 4)
        text.insert(text.begin(), static_cast<char16_t>(digits[address & 0xF]));
    return u"0x" + text;
}

} // namespace

bool FormatOperand::isNilObject() const { return std::holds_alternative<id>(m_value) && object() == nil; }

bool FormatOperand::isNullPointer() const {
    auto const* const pointer = std::get_if<void const*>(&m_value);
    return pointer && !*pointer;
}

std::u16string FormatOperand::text() const {
    if (isNilObject() || isNullPointer()) return u"(null)";
    if (auto const* const number = std::get_if<double>(&m_value)) return unitsFromASCII(generalText(*number));
    if (auto const* const number = std::get_if<Integer>(&m_value)) return decimalText(*number);
    if (std::holds_alternative<void const*>(m_value)) return hexadecimalText(address());
    NSString const description = object().description();
    return description == nil ? u"(null)" : std::u16string(description.codeUnits());
}

double FormatOperand::real() const {
    if (auto const* const number = std::get_if<double>(&m_value)) return *number;
    if (NSNumber const number = as<NSNumber>(object()); number != nil) return number.doubleValue();
    if (NSString const string = as<NSString>(object()); string != nil) return string.doubleValue();
    Integer const integer = wideInteger();
    if (integer.isSigned) return static_cast<double>(static_cast<std::int64_t>(integer.bits));
    return static_cast<double>(integer.bits);
}

SignedMagnitude FormatOperand::integer(std::size_t bytes, bool isSigned) const {
    if (auto const* const number = std::get_if<double>(&m_value)) return saturated(*number, bytes, isSigned);
    NSNumber const number = as<NSNumber>(object());
    if (number.kind() == NSNumber::Kind::Real) return saturated(number.doubleValue(), bytes, isSigned);
    Integer const integer = wideInteger();
    if (isSigned) return signedLowBytes(integer.bits, bytes);
    return {lowBytes(integer.bits, std::min(bytes, std::max(integer.width, NarrowestPassed))), false};
}

std::uint64_t FormatOperand::address() const {
    if (auto const* const pointer = std::get_if<void const*>(&m_value))
        return reinterpret_cast<std::uintptr_t>(*pointer);
    if (auto const* const integer = std::get_if<Integer>(&m_value)) return integer->bits;
    return reinterpret_cast<std::uintptr_t>(object().body());
}

id FormatOperand::object() const {
    id const* const object = std::get_if<id>(&m_value);
    return object ? *object : id();
}

// The value of what is no real. An object that stands for no number gives its address, as in C.
Integer FormatOperand::wideInteger() const {
    if (auto const* const integer = std::get_if<Integer>(&m_value)) return *integer;
    if (NSNumber const number = as<NSNumber>(object()); number != nil)
        return {number.unsignedLongLongValue(), number.kind() != NSNumber::Kind::Unsigned, WidestInteger};
    if (NSString const string = as<NSString>(object()); string != nil)
        return {static_cast<std::uint64_t>(string.longLongValue()), true, WidestInteger};
    return {address(), false, WidestInteger};
}

} // namespace mac
