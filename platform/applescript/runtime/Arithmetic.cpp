#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptObject.h"
#include <cmath>
#include <unordered_map>

namespace mac::applescript {

namespace {

// Dates beyond this many seconds have no calendar.
constexpr double MostDate = 1e13;

double finite(double number) {
    if (!std::isfinite(number)) throw plainError(errors::NumberTooLarge);
    return number;
}

bool isWhole(Value const& number) {
    return number.is(ValueKind::Integer) || number.asReal() == std::trunc(number.asReal());
}

// An integer where the left is one and the right is whole, so long as it fits.
Value resultOf(double number, Value const& left, Value const& right) {
    bool const isInteger = left.is(ValueKind::Integer) && isWhole(right);
    return isInteger ? Value::number(finite(number)) : Value::real(finite(number));
}

Value divided(Operation operation, Value const& left, Value const& right) {
    double const dividend = left.asNumber();
    double const divisor = right.asNumber();
    if (divisor == 0) throw divisionByZero(dividend);
    if (operation == Operation::Divide) return Value::real(finite(dividend / divisor));
    if (operation == Operation::IntegerDivide) return Value::number(finite(std::trunc(dividend / divisor)));
    return resultOf(std::fmod(dividend, std::abs(divisor)), left, right);
}

Value dateArithmetic(Operation operation, Value const& left, Value const& right, TextContext const& context) {
    bool const isDifference = operation == Operation::Subtract && left.is(ValueKind::Date) && right.is(ValueKind::Date);
    if (isDifference) return Value::number(static_cast<double>(left.seconds() - right.seconds()));
    if (!left.is(ValueKind::Date)) throw cannotMake(right, codes::NumberType);
    if (right.is(ValueKind::Date) || (operation != Operation::Add && operation != Operation::Subtract))
        throw cannotMake(right.is(ValueKind::Date) ? right : left, codes::NumberType);
    double const seconds = std::trunc(requireReal(right, context));
    double const sum = static_cast<double>(left.seconds()) + (operation == Operation::Add ? seconds : -seconds);
    if (!(std::abs(sum) < MostDate)) throw plainError(errors::NumberTooLarge);
    return Value::date(static_cast<std::int64_t>(sum));
}

void requireRoom(std::size_t count, std::size_t most) {
    if (count > most) throw plainError(errors::ValueTooLarge);
}

} // namespace

Value arithmetic(Operation operation, Value const& unresolvedLeft, Value const& unresolvedRight,
                 TextContext const& context) {
    Value const first = resolved(unresolvedLeft, context);
    Value const second = resolved(unresolvedRight, context);
    if (first.is(ValueKind::Date) || second.is(ValueKind::Date))
        return dateArithmetic(operation, first, second, context);
    Value const left = requireNumber(first, context);
    Value const right = requireNumber(second, context);
    switch (operation) {
    case Operation::Add:
        return resultOf(left.asNumber() + right.asNumber(), left, right);
    case Operation::Subtract:
        return resultOf(left.asNumber() - right.asNumber(), left, right);
    case Operation::Multiply:
        return resultOf(left.asNumber() * right.asNumber(), left, right);
    case Operation::Power:
        return Value::real(finite(std::pow(left.asNumber(), right.asNumber())));
    default:
        return divided(operation, left, right);
    }
}

Value negated(Value const& operand, TextContext const& context) {
    Value const number = requireNumber(operand, context);
    return number.is(ValueKind::Integer) ? Value::number(-static_cast<double>(number.asInteger()))
                                         : Value::real(-number.asReal());
}

Value concatenated(Value const& unresolvedLeft, Value const& unresolvedRight, TextContext const& context) {
    Value const left = resolved(unresolvedLeft, context);
    if (left.is(ValueKind::Text)) {
        std::optional<Value> const right = coerced(unresolvedRight, codes::TextType, context);
        if (right) {
            requireRoom(left.units().size() + right->units().size(), context.mostUnits);
            return Value::text(left.units() + right->units());
        }
    }
    Value const right = resolved(unresolvedRight, context);
    if (left.is(ValueKind::Record) && right.is(ValueKind::Record)) {
        std::vector<std::pair<Symbol, Value>> fields = left.fields();
        for (auto const& [key, value] : right.fields()) {
            bool isKnown = false;
            for (auto const& field : left.fields())
                isKnown = isKnown || isSameName(field.first, key);
            if (!isKnown) fields.emplace_back(key, value);
        }
        return Value::record(std::move(fields));
    }
    // An empty list before a list gives that list itself, not a copy.
    bool const addsNothing = left.is(ValueKind::List) && left.items().empty() && right.is(ValueKind::List);
    if (addsNothing) return right;
    // A record gives its values.
    ValueList items = requireType(left, codes::ListType, context).items();
    ValueList const added = requireType(right, codes::ListType, context).items();
    requireRoom(items.size() + added.size(), context.mostItems);
    items.append(added);
    return Value::listOf(std::move(items));
}

Value operationResult(Operation operation, Value const& left, Value const& right, TextContext const& context) {
    if (left.isNothing() || right.isNothing()) throw plainError(errors::NoResult);
    switch (operation) {
    case Operation::Concatenate:
        return concatenated(left, right, context);
    case Operation::Equal:
        return Value::boolean(isEqualValue(left, right, context));
    case Operation::NotEqual:
        return Value::boolean(!isEqualValue(left, right, context));
    case Operation::Less:
    case Operation::Greater:
    case Operation::AtMost:
    case Operation::AtLeast:
        return Value::boolean(isOrdered(operation, left, right, context));
    case Operation::Contains:
    case Operation::DoesNotContain:
    case Operation::IsIn:
    case Operation::IsNotIn:
    case Operation::StartsWith:
    case Operation::EndsWith:
        return Value::boolean(isContained(operation, left, right, context));
    default:
        return arithmetic(operation, left, right, context);
    }
}

Value deepCopy(Value const& value) {
    struct Copying {
        // Each object of the original has one copy, so that circles and sharing stay.
        std::unordered_map<HeapObject const*, Value> made;

        Value copy(Value const& original, int depth) {
            constexpr int deepest = 500;
            if (depth > deepest) throw plainError(errors::StackOverflow);
            bool const isShared = original.is(ValueKind::List) || original.is(ValueKind::Record) ||
                                  original.is(ValueKind::Date) || original.is(ValueKind::Script);
            if (!isShared) return original;
            if (auto const known = made.find(original.object()); known != made.end()) return known->second;
            Value const copied = emptyCopy(original);
            made.emplace(original.object(), copied);
            if (original.is(ValueKind::Date)) return copied;
            if (original.is(ValueKind::Script)) {
                copyState(copied.script(), depth);
                return copied;
            }
            if (original.is(ValueKind::List)) {
                copied.items().reserve(original.items().size());
                for (Value const& item : original.items())
                    copied.items().push_back(copy(item, depth + 1));
                return copied;
            }
            for (auto const& [key, field] : original.fields())
                copied.fields().emplace_back(key, copy(field, depth + 1));
            return copied;
        }

        // The parent and the script around it stay the same ones.
        void copyState(ScriptObject& script, int depth) {
            for (Value& property : script.properties)
                property = copy(property, depth + 1);
            for (Value& variable : script.variables)
                variable = copy(variable, depth + 1);
        }

        static Value emptyCopy(Value const& original) {
            if (original.is(ValueKind::Script)) return original.script().duplicate();
            if (original.is(ValueKind::Date)) return Value::date(original.seconds());
            return original.is(ValueKind::List) ? Value::list() : Value::record();
        }
    };
    return Copying{}.copy(value, 0);
}

} // namespace mac::applescript
