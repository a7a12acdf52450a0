#pragma once

#include "platform/foundation/text/Format.h"
#include <string>

namespace mac {

// An integer of up to 64 bits, with its sign apart.
struct SignedMagnitude {
    std::uint64_t magnitude{0};
    bool isNegative{false};
};

// What an argument gives to a conversion that wants text, a real, an integer or an address, whatever its own type.
class FormatOperand {
public:
    explicit FormatOperand(FormatArgument const& argument) : m_value(argument.value()) {}

    bool isNilObject() const;
    bool isNullPointer() const;
    std::u16string text() const;
    double real() const;
    // The integer of that width, as C reads its bytes; a real saturates.
    SignedMagnitude integer(std::size_t bytes, bool isSigned) const;
    // The address; 0 for an argument without one.
    std::uint64_t address() const;

private:
    // The object; nil for an argument that is not one.
    id object() const;
    FormatArgument::Integer wideInteger() const;

    FormatArgument::Value const& m_value;
};

} // namespace mac
