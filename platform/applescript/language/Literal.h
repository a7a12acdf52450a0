#pragma once

#include "platform/applescript/language/Operation.h"
#include "platform/applescript/language/ScriptSymbol.h"
#include <string>
#include <variant>

namespace mac::applescript {

// What a source says outright. Integers are a std::int32_t within LeastInteger and MostInteger, other numbers a double,
// text a std::u16string; these are the other kinds.

// A class, a month, a weekday, missing value.
struct TypeLiteral {
    Code code{0};
};
struct ConstantLiteral {
    Code code{0};
};
struct AppleScriptLiteral {};
struct CurrentApplicationLiteral {};
// «data utxt0041»
struct DataLiteral {
    Code type{0};
    std::string bytes{};
};

using LiteralContent = std::variant<bool, std::int32_t, double, std::u16string, TypeLiteral, ConstantLiteral,
                                    AppleScriptLiteral, CurrentApplicationLiteral, DataLiteral>;

// An integer where the number is a whole one in the range of integers, else a real.
inline LiteralContent numberLiteral(double number) {
    bool const isInRange = number >= LeastInteger && number <= MostInteger;
    bool const isInteger = isInRange && static_cast<double>(static_cast<std::int32_t>(number)) == number;
    return isInteger ? LiteralContent(static_cast<std::int32_t>(number)) : LiteralContent(number);
}

} // namespace mac::applescript
