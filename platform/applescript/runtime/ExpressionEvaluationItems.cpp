#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"

namespace mac::applescript {

namespace {

std::optional<std::int32_t> integerIn(Value const& value) {
    return value.is(ValueKind::Integer) ? std::optional(value.asInteger()) : std::nullopt;
}

// A number or a variable with an integer.
std::optional<std::int32_t> plainOperand(Frame const& frame, Expression const& expression) {
    if (VariableReference const* const variable = expression.as<VariableReference>())
        return integerIn(variableSlot(frame, *variable));
    Literal const* const literal = expression.as<Literal>();
    return literal ? integerIn(frame.literals[literal->index]) : std::nullopt;
}

// The sum or difference of two integers; nullopt past the integers of the language, which are no places in a list.
std::optional<std::int32_t> plainSum(Frame const& frame, BinaryOperation const& binary) {
    bool const isAddition = binary.operation == Operation::Add;
    if (!isAddition && binary.operation != Operation::Subtract) return {};
    std::optional<std::int32_t> const left = plainOperand(frame, *binary.left);
    std::optional<std::int32_t> const right = left ? plainOperand(frame, *binary.right) : std::nullopt;
    if (!right) return {};
    std::int64_t const first = *left;
    std::int64_t const sum = isAddition ? first + *right : first - *right;
    bool const isInteger = sum >= LeastInteger && sum <= MostInteger;
    return isInteger ? std::optional(static_cast<std::int32_t>(sum)) : std::nullopt;
}

std::optional<std::int32_t> plainInteger(Frame const& frame, Expression const& expression) {
    Expression const& inner = unparenthesized(expression);
    BinaryOperation const* const sum = inner.as<BinaryOperation>();
    return sum ? plainSum(frame, *sum) : plainOperand(frame, inner);
}

} // namespace

Value* plainItem(Evaluator& evaluator, ElementReference const& element) {
    bool const isItem = element.elementClass == codes::Item && element.form == Form::Index;
    if (!isItem || !element.container || !element.selector) return nullptr;
    VariableReference const* const variable = element.container->as<VariableReference>();
    if (!variable) return nullptr;
    Frame const& frame = evaluator.frame();
    Value const& list = variableSlot(frame, *variable);
    if (!list.is(ValueKind::List)) return nullptr;
    std::optional<std::int32_t> const index = plainInteger(frame, *element.selector);
    ValueList& items = list.items();
    bool const isInside = index && *index > 0 && static_cast<std::size_t>(*index) <= items.size();
    return isInside ? &items[static_cast<std::size_t>(*index) - 1] : nullptr;
}

} // namespace mac::applescript
