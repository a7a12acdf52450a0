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

// How tightly operators bind: of two, the one with the higher number takes the operand between them.
namespace precedence {
inline constexpr int Or = 1;
inline constexpr int And = 2;
inline constexpr int Not = 3;
inline constexpr int Equality = 4;
inline constexpr int Relation = 5;
inline constexpr int Coercion = 6;
inline constexpr int Concatenation = 7;
inline constexpr int Sum = 8;
inline constexpr int Product = 9;
inline constexpr int Power = 10;
} // namespace precedence

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
