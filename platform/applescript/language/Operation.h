#pragma once

#include <cstdint>

namespace mac::applescript {

// Integers have 30 bits; a literal or a sum beyond them is a real.
inline constexpr std::int32_t MostInteger = (1 << 29) - 1;
inline constexpr std::int32_t LeastInteger = -(1 << 29);

// What an operator does with its operands.
enum class Operation : std::uint8_t {
    Add,
    Subtract,
    Multiply,
    Divide,
    IntegerDivide,
    Modulo,
    Power,
    Concatenate,
    Equal,
    NotEqual,
    Less,
    Greater,
    AtMost,
    AtLeast,
    Contains,
    DoesNotContain,
    IsIn,
    IsNotIn,
    StartsWith,
    EndsWith,
    // The parser makes them `not` of the two before.
    DoesNotStartWith,
    DoesNotEndWith,
    And,
    Or,
    Not,
    Negate,
    Plus,
    As,
    Running,
    NotRunning,
};

// How an element is chosen.
enum class Form : std::uint8_t {
    Property,
    Index,
    Name,
    Identifier,
    Range,
    Every,
    Some,
    Middle,
    Last,
    Filter,
    Beginning,
    End,
    Before,
    After,
};

// Bits of what a comparison may leave out.
struct Considerations {
    static constexpr unsigned Case = 1;
    static constexpr unsigned Diacriticals = 2;
    static constexpr unsigned Hyphens = 4;
    static constexpr unsigned Punctuation = 8;
    static constexpr unsigned WhiteSpace = 16;
    static constexpr unsigned Expansion = 32;
    static constexpr unsigned NumericStrings = 64;
    // Case and numeric strings are ignored until a script says otherwise.
    static constexpr unsigned Standard = Diacriticals | Hyphens | Punctuation | WhiteSpace | Expansion;
};

} // namespace mac::applescript
