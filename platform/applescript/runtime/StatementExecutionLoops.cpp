#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/applescript/runtime/StatementExecution.h"
#include <cmath>

namespace mac::applescript {

namespace {

// Stricter than a coercion: a number with a fraction is refused. Whole reals past the integers are accepted as far as
// each has a neighbour one further.
std::int64_t wholeNumber(Value const& value, TextContext const& context) {
    constexpr double most = 9007199254740992;
    Value const number = requireNumber(value, context);
    bool const isWhole = std::trunc(number.asNumber()) == number.asNumber() && std::abs(number.asNumber()) < most;
    if (!isWhole) throw cannotMake(number, codes::IntegerType);
    return static_cast<std::int64_t>(number.asNumber());
}

// Rounded, where that is an integer.
std::int64_t repetitions(Value const& value, TextContext const& context) {
    std::optional<Value> const integer = coerced(value, codes::IntegerType, context);
    return integer ? integer->asInteger() : wholeNumber(value, context);
}

// Carries out the block once and answers whether the loop goes on after it.
bool executeOnce(Evaluator& evaluator, Statement const* block, Flow& flow) {
    evaluator.checkpoint();
    flow = executeBlock(evaluator, block);
    if (flow == Flow::Next) return true;
    if (flow == Flow::Exit) flow = Flow::Next;
    return false;
}

Value& slotOf(Evaluator& evaluator, Expression const& variable) {
    return variableSlot(evaluator.frame(), *variable.as<VariableReference>());
}

} // namespace

Flow executeRepeat(Evaluator& evaluator, RepeatForever const& loop) {
    Flow flow = Flow::Next;
    while (executeOnce(evaluator, loop.block, flow)) {}
    return flow;
}

Flow executeRepeat(Evaluator& evaluator, RepeatTimes const& loop) {
    Flow flow = Flow::Next;
    for (std::int64_t left = repetitions(valueOf(evaluator, *loop.count), evaluator.context()); left > 0; --left)
        if (!executeOnce(evaluator, loop.block, flow)) break;
    return flow;
}

Flow executeRepeat(Evaluator& evaluator, RepeatCondition const& loop) {
    Flow flow = Flow::Next;
    while (requireBoolean(valueOf(evaluator, *loop.condition), evaluator.context()) == loop.goesOnWhile)
        if (!executeOnce(evaluator, loop.block, flow)) break;
    return flow;
}

Flow executeRepeat(Evaluator& evaluator, RepeatFrom const& loop) {
    auto const bound = [&](Expression const& expression) {
        return wholeNumber(valueOf(evaluator, expression), evaluator.context());
    };
    std::int64_t const from = bound(*loop.from);
    std::int64_t const to = bound(*loop.to);
    std::int64_t const step = loop.step ? bound(*loop.step) : 1;
    if (step == 0) throw plainError(errors::Parameter);
    Flow flow = Flow::Next;
    for (std::int64_t number = from; step > 0 ? number <= to : number >= to; number += step) {
        slotOf(evaluator, *loop.variable) = Value::number(static_cast<double>(number));
        if (!executeOnce(evaluator, loop.block, flow)) break;
    }
    return flow;
}

Flow executeRepeat(Evaluator& evaluator, RepeatIn const& loop) {
    TextContext const& context = evaluator.context();
    Value list = resolved(valueOf(evaluator, *loop.list), context);
    if (!list.is(ValueKind::List) && !list.is(ValueKind::Text)) list = requireType(list, codes::ListType, context);
    std::size_t const count = countOf(list, codes::Item, context).value_or(0);
    Flow flow = Flow::Next;
    for (std::size_t index = 1; index <= count; ++index) {
        Value const place = Value::number(static_cast<double>(index));
        slotOf(evaluator, *loop.variable) = elementSpecifier(Form::Index, codes::Item, list, place);
        if (!executeOnce(evaluator, loop.block, flow)) break;
    }
    return flow;
}

} // namespace mac::applescript
