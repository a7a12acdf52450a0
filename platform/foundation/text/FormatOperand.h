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
    // As C reads the bytes of an integer; a real saturates.
    SignedMagnitude integer(std::size_t bytes, bool isSigned) const;
    // 0 for what has no address.
    std::uint64_t address() const;

private:
    // Nil for what is no object.
    id object() const;
    FormatArgument::Integer wideInteger() const;

    FormatArgument::Value const& m_value;
};

} // namespace mac
