#include "platform/events/DescriptorCoercion.h"
#include "platform/events/DescriptorContents.h"
#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/text/Encodings.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace mac {

namespace {

constexpr std::array NumberTypes{
    typeSInt16, typeSInt32, typeUInt32, typeSInt64, typeUInt64, typeIEEE32BitFloatingPoint, typeIEEE64BitFloatingPoint};

// The number as an integer of the type, a real rounded to the nearest, halves to the even neighbour.
template <class T>
std::optional<T> integerOf(DescriptorNumber::Value const& value) {
    if (auto const* const real = std::get_if<double>(&value)) {
        double const rounded = std::nearbyint(*real);
        // Both bounds are powers of two, so a real holds them exactly; NaN is within neither.
        auto const first = static_cast<double>(std::numeric_limits<T>::min());
        double const end = std::ldexp(1.0, std::numeric_limits<T>::digits);
        if (!(rounded >= first && rounded < end)) return std::nullopt;
        return static_cast<T>(rounded);
    }
    return std::visit(
        [](auto number) -> std::optional<T> {
            if constexpr (std::is_integral_v<decltype(number)>) {
                if (std::in_range<T>(number)) return static_cast<T>(number);
            }
            return std::nullopt;
        },
        value);
}

template <class T>
std::optional<AEDesc> integerDesc(DescType type, DescriptorNumber::Value const& value) {
    std::optional<T> const number = integerOf<T>(value);
    return number ? std::optional(makeDescOf(type, *number)) : std::nullopt;
}

template <class T>
std::optional<DescriptorNumber> read(AEDesc const& desc, DescType type) {
    std::optional<T> const value = valueOf<T>(desc, type);
    if (!value) return std::nullopt;
    if constexpr (std::is_floating_point_v<T>)
        return DescriptorNumber(static_cast<double>(*value));
    else if constexpr (std::is_signed_v<T>)
        return DescriptorNumber(static_cast<std::int64_t>(*value));
    else
        return DescriptorNumber(static_cast<std::uint64_t>(*value));
}

bool isBlank(char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == 0xA0; }

std::u16string_view trimmed(std::u16string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace

std::optional<DescriptorNumber> DescriptorNumber::read(std::u16string_view text) {
    std::string const digits = utf8FromUnits(trimmed(text));
    std::string_view view = digits;
    if (view.starts_with('+') && !view.starts_with("+-")) view.remove_prefix(1);
    // The conversion would accept words such as "inf".
    if (view.find_first_not_of("0123456789+-.eE") != std::string_view::npos) return std::nullopt;
    char const* const end = view.data() + view.size();
    std::int64_t integer = 0;
    auto const [integerEnd, integerError] = std::from_chars(view.data(), end, integer);
    if (integerError == std::errc() && integerEnd == end) return DescriptorNumber(integer);
    double real = 0;
    auto const [realEnd, realError] = std::from_chars(view.data(), end, real);
    if (realError != std::errc() || realEnd != end) return std::nullopt;
    return DescriptorNumber(real);
}

double DescriptorNumber::asReal() const {
    return std::visit([](auto number) { return static_cast<double>(number); }, m_value);
}

std::optional<AEDesc> DescriptorNumber::as(DescType type) const {
    if (type == typeSInt16) return integerDesc<std::int16_t>(type, m_value);
    if (type == typeSInt32) return integerDesc<std::int32_t>(type, m_value);
    if (type == typeUInt32) return integerDesc<std::uint32_t>(type, m_value);
    if (type == typeSInt64) return integerDesc<std::int64_t>(type, m_value);
    if (type == typeUInt64) return integerDesc<std::uint64_t>(type, m_value);
    if (type == typeIEEE32BitFloatingPoint) return makeDescOf(type, static_cast<float>(asReal()));
    if (type == typeIEEE64BitFloatingPoint) return makeDescOf(type, asReal());
    return std::nullopt;
}

std::u16string DescriptorNumber::text() const {
    std::string const digits = std::visit(
        [](auto number) {
            if constexpr (std::is_floating_point_v<decltype(number)>)
                return shortestText(number);
            else
                return std::to_string(number);
        },
        m_value);
    return {digits.begin(), digits.end()};
}

std::optional<DescriptorNumber> numberOf(AEDesc const& desc) {
    DescType const type = desc.descriptorType;
    if (type == typeTrue) return DescriptorNumber(std::int64_t{1});
    if (type == typeFalse) return DescriptorNumber(std::int64_t{0});
    if (type == typeBoolean) return read<std::uint8_t>(desc, type);
    if (type == typeSInt16) return read<std::int16_t>(desc, type);
    if (type == typeSInt32) return read<std::int32_t>(desc, type);
    if (type == typeUInt32) return read<std::uint32_t>(desc, type);
    if (type == typeSInt64) return read<std::int64_t>(desc, type);
    if (type == typeUInt64) return read<std::uint64_t>(desc, type);
    if (type == typeIEEE32BitFloatingPoint) return read<float>(desc, type);
    if (type == typeIEEE64BitFloatingPoint) return read<double>(desc, type);
    return std::nullopt;
}

bool isNumberType(DescType type) { return std::ranges::find(NumberTypes, type) != NumberTypes.end(); }

} // namespace mac
