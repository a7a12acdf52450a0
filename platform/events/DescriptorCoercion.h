#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/foundation/text/NSString.h"
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace mac {

// The value converted to another type; nullopt if it cannot be converted. Installed handlers are tried first. Any
// thread.
std::optional<AEDesc> coerced(AEDesc const& desc, DescType toType);

// The text of a descriptor of a text type; nullopt for other types, which are not converted, and for bytes that are no
// text of the type.
std::optional<std::u16string> plainTextOf(AEDesc const& desc);

// A descriptor of type typeUnicodeText with these UTF-16 code units.
AEDesc makeText(std::u16string_view units);

// A number that is converted from one type of descriptor to another without loss: an integer of 64 bits never passes
// through a real.
class DescriptorNumber {
public:
    using Value = std::variant<std::int64_t, std::uint64_t, double>;

    explicit DescriptorNumber(Value value) : m_value(value) {}
    // The number that the whole text spells in digits, with white space around it; nullopt for words such as "inf".
    static std::optional<DescriptorNumber> read(std::u16string_view text);

    double asReal() const;
    // A descriptor of the given type of number; nullopt if the number is beyond its range.
    std::optional<AEDesc> as(DescType type) const;
    // The fewest digits that read back as the same number.
    std::u16string text() const;

private:
    Value m_value;
};

// The value of an integer, a real or a truth value; nullopt for anything else and for data of another size than the
// type's.
std::optional<DescriptorNumber> numberOf(AEDesc const& desc);

// Whether the type is that of an integer or a real.
bool isNumberType(DescType type);

} // namespace mac
