#pragma once

#include "platform/applescript/language/Operation.h"
#include "platform/applescript/runtime/ScriptValue.h"
#include <optional>

namespace mac::applescript {

// Two integers of the language never leave the range of 64 bits; past the language's own range the result is a real.
inline Value integerOrReal(std::int64_t number) {
    bool const isInteger = number >= LeastInteger && number <= MostInteger;
    return isInteger ? Value::integer(static_cast<std::int32_t>(number)) : Value::real(static_cast<double>(number));
}

inline std::optional<Value> integerResult(Operation operation, std::int32_t left, std::int32_t right) {
    switch (operation) {
    case Operation::Add:
        return integerOrReal(std::int64_t{left} + right);
    case Operation::Subtract:
        return integerOrReal(std::int64_t{left} - right);
    case Operation::Equal:
        return Value::boolean(left == right);
    case Operation::NotEqual:
        return Value::boolean(left != right);
    case Operation::Less:
        return Value::boolean(left < right);
    case Operation::Greater:
        return Value::boolean(left > right);
    case Operation::AtMost:
        return Value::boolean(left <= right);
    case Operation::AtLeast:
        return Value::boolean(left >= right);
    default:
        return {};
    }
}

// The result for two integers, or the sum of a real and a number, without any of what else operands may be; nullopt
// where that is not enough.
inline std::optional<Value> quickResult(Operation operation, Value const& left, Value const& right) {
    if (left.is(ValueKind::Integer) && right.is(ValueKind::Integer))
        return integerResult(operation, left.asInteger(), right.asInteger());
    bool const isSum = operation == Operation::Add || operation == Operation::Subtract;
    if (!isSum || !left.is(ValueKind::Real) || !right.isNumber()) return {};
    double const sum = left.asReal() + (operation == Operation::Add ? right.asNumber() : -right.asNumber());
    bool const isFinite = sum - sum == 0;
    return isFinite ? std::optional(Value::real(sum)) : std::nullopt;
}

} // namespace mac::applescript
