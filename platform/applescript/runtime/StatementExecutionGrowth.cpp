#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/StackRoom.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/applescript/runtime/StatementExecution.h"
#include <algorithm>
#include <span>

namespace mac::applescript {

namespace {

// Null for an expression that joins nothing.
BinaryOperation const* joining(Expression const& expression) {
    BinaryOperation const* const binary = expression.as<BinaryOperation>();
    return binary && binary->operation == Operation::Concatenate ? binary : nullptr;
}

bool isSameVariable(Expression const& expression, VariableReference const& target) {
    VariableReference const* const variable = expression.as<VariableReference>();
    return variable && variable->place.kind == target.place.kind && variable->place.depth == target.place.depth &&
           variable->place.index == target.place.index;
}

// The a, b, c of `x & a & b & c`, in order, and x.
struct Joined {
    Expression const* leftmost{nullptr};
    std::vector<Expression const*> added{};
};

Joined operandsOf(BinaryOperation const& sum) {
    Joined joined;
    for (BinaryOperation const* part = &sum; part; part = joining(*joined.leftmost)) {
        joined.added.push_back(part->right);
        joined.leftmost = part->left;
    }
    std::ranges::reverse(joined.added);
    return joined;
}

// Whether the value is had without running any handler, which could change the variables. False as well for an
// expression that is too deep to be looked through.
bool runsNothing(Expression const& expression) {
    if (!hasStackRoom()) return false;
    if (expression.is<Literal>() || expression.is<VariableReference>()) return true;
    if (UnaryOperation const* const unary = expression.as<UnaryOperation>()) return runsNothing(*unary->operand);
    if (BinaryOperation const* const binary = expression.as<BinaryOperation>())
        return runsNothing(*binary->left) && runsNothing(*binary->right);
    if (LogicalOperation const* const logical = expression.as<LogicalOperation>())
        return runsNothing(*logical->left) && runsNothing(*logical->right);
    ListExpression const* const list = expression.as<ListExpression>();
    return list && std::ranges::all_of(list->items, [](Expression const* item) { return runsNothing(*item); });
}

void requireRoomFor(std::size_t count, std::size_t most) {
    if (count > most) throw plainError(errors::ValueTooLarge);
}

// What is added to the text or list in the end: joined as far as it is of that kind, and whole once it is not.
class Growth {
public:
    Growth(Value start, TextContext const& context) : m_start(std::move(start)), m_context(context) {}

    void add(Value const& operand) {
        bool const isAdded = m_sum.isNothing() && (m_start.is(ValueKind::Text) ? addText(operand) : addItems(operand));
        if (isAdded) return;
        if (m_sum.isNothing()) m_sum = sumSoFar();
        m_sum = concatenated(m_sum, operand, m_context);
    }

    // The start itself, grown, where `mayGrow` says that only who asks sees it.
    Value take(bool mayGrow) {
        if (!m_sum.isNothing()) return m_sum;
        if (!mayGrow) return sumSoFar();
        if (m_start.is(ValueKind::Text))
            m_start.textObject().append(m_text);
        else
            m_start.items().append(m_items);
        return m_start;
    }

private:
    bool addText(Value const& operand) {
        std::optional<Value> const text = coerced(operand, codes::TextType, m_context);
        if (!text) return false;
        requireRoomFor(m_start.units().size() + m_text.size() + text->units().size(), m_context.mostUnits);
        m_text += text->units();
        return true;
    }

    bool addItems(Value const& operand) {
        Value const list = requireType(resolved(operand, m_context), codes::ListType, m_context);
        requireRoomFor(m_start.items().size() + m_items.size() + list.items().size(), m_context.mostItems);
        m_items.append(list.items());
        return true;
    }

    Value sumSoFar() const {
        if (m_start.is(ValueKind::Text)) return Value::text(m_start.units() + m_text);
        ValueList items = m_start.items();
        items.append(m_items);
        return Value::listOf(std::move(items));
    }

    Value m_start;
    TextContext const& m_context;
    std::u16string m_text;
    ValueList m_items;
    Value m_sum;
};

// Whether only the variable, the result of the statement before and one value of the caller's hold it.
bool isAlone(Frame const& frame, Value const& value, VariableReference const& target) {
    if (variableSlot(frame, target).object() != value.object()) return false;
    std::uint32_t const own = frame.result.object() == value.object() ? 3 : 2;
    return value.object()->count() == own;
}

bool growAtEnd(Evaluator& evaluator, VariableReference const& target, std::vector<Expression const*> const& added) {
    Frame& frame = evaluator.frame();
    Value start = variableSlot(frame, target);
    // An empty list does not grow: what follows it may be the answer itself.
    bool const mayGrow = start.is(ValueKind::Text) || (start.is(ValueKind::List) && !start.items().empty());
    if (!mayGrow) return false;
    // The first operand makes a new list. A handler that a later one runs could still change the variable's list, whose
    // items must be taken before.
    bool const isSettled = start.is(ValueKind::Text) ||
                           std::ranges::all_of(std::span(added).subspan(1),
                                               [](Expression const* operand) { return runsNothing(*operand); });
    if (!isSettled) return false;
    HeapObject const* const object = start.object();
    Growth growth(std::move(start), evaluator.context());
    for (Expression const* const operand : added)
        growth.add(valueOf(evaluator, *operand));
    Value const& held = variableSlot(frame, target);
    Value const grown = growth.take(held.object() == object && isAlone(frame, held, target));
    variableSlot(frame, target) = grown;
    frame.result = grown;
    return true;
}

bool growAtBeginning(Evaluator& evaluator, VariableReference const& target, BinaryOperation const& sum) {
    Frame& frame = evaluator.frame();
    TextContext const& context = evaluator.context();
    if (!variableSlot(frame, target).is(ValueKind::List)) return false;
    Value const added = resolved(valueOf(evaluator, *sum.left), context);
    Value const list = valueOf(evaluator, *sum.right);
    bool const isGrown = list.is(ValueKind::List) && added.is(ValueKind::List) && added.object() != list.object() &&
                         isAlone(frame, list, target);
    Value const grown = isGrown ? list : concatenated(added, list, context);
    if (isGrown) {
        requireRoomFor(added.items().size() + list.items().size(), context.mostItems);
        list.items().prepend(added.items());
    }
    variableSlot(frame, target) = grown;
    frame.result = grown;
    return true;
}

} // namespace

bool executeGrowth(Evaluator& evaluator, SetStatement const& statement) {
    VariableReference const* const target = statement.target->as<VariableReference>();
    BinaryOperation const* const sum = target ? joining(*statement.value) : nullptr;
    if (!sum) return false;
    return withRange(statement.value->range, [&] {
        Joined const joined = operandsOf(*sum);
        if (isSameVariable(*joined.leftmost, *target)) return growAtEnd(evaluator, *target, joined.added);
        return isSameVariable(*sum->right, *target) && growAtBeginning(evaluator, *target, *sum);
    });
}

} // namespace mac::applescript
