#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/foundation/text/NSString.h"
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace mac {

// The value as another type; nothing where it cannot be had. Handlers that were installed come first. Any thread.
std::optional<AEDesc> coerced(AEDesc const& desc, DescType toType);

// The value of a type that is text, without converting anything else; nothing for other types and for bytes that are no
// text of the type.
std::optional<std::u16string> plainTextOf(AEDesc const& desc);

// Text as UTF-16 of the machine.
AEDesc makeText(std::u16string_view units);

// A number on its way from one type of descriptor to another, kept as it was: no integer of 64 bits passes through a
// real.
class DescriptorNumber {
public:
    using Value = std::variant<std::int64_t, std::uint64_t, double>;

    explicit DescriptorNumber(Value value) : m_value(value) {}
    // A whole text of digits, with white space around it; no words such as "inf".
    static std::optional<DescriptorNumber> read(std::u16string_view text);

    double asReal() const;
    // A descriptor of a type of number; nothing where the number is beyond its range.
    std::optional<AEDesc> as(DescType type) const;
    // The fewest digits that read back as the same number.
    std::u16string text() const;

private:
    Value m_value;
};

// Integers, reals and truth values; nothing for anything else and for data of another size than the type's.
std::optional<DescriptorNumber> numberOf(AEDesc const& desc);

// Whether a type is one of integers or reals.
bool isNumberType(DescType type);

} // namespace mac
