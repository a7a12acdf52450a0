#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/Operators.h"
#include <algorithm>
#include <span>

namespace mac::applescript {

namespace {

bool isSum(Node const& node) { return node.kind == NodeKind::Binary && node.operation == Operation::Concatenate; }

bool isSameVariable(Node const& node, Node const& target) {
    return node.kind == NodeKind::Variable && node.place.kind == target.place.kind &&
           node.place.depth == target.place.depth && node.place.index == target.place.index;
}

// The a, b, c of `x & a & b & c`, in order.
std::vector<Node const*> addedOperands(Node const& sum) {
    std::vector<Node const*> operands;
    for (Node const* node = &sum; isSum(*node); node = node->a)
        operands.push_back(node->b);
    return {operands.rbegin(), operands.rend()};
}

Node const& leftmostOperand(Node const& sum) {
    Node const* node = &sum;
    while (isSum(*node))
        node = node->a;
    return *node;
}

// Whether the value is had without running any handler, which could change the variables.
bool runsNothing(Node const& node) {
    switch (node.kind) {
    case NodeKind::Literal:
    case NodeKind::Variable:
        return true;
    case NodeKind::Unary:
        return runsNothing(*node.a);
    case NodeKind::Binary:
        return runsNothing(*node.a) && runsNothing(*node.b);
    case NodeKind::List:
        return std::ranges::all_of(node.list, [](Node const* item) { return runsNothing(*item); });
    default:
        return false;
    }
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
        std::optional<Value> const text = coerced(operand, codeOf("ctxt"), m_context);
        if (!text) return false;
        requireRoomFor(m_start.units().size() + m_text.size() + text->units().size(), m_context.mostUnits);
        m_text += text->units();
        return true;
    }

    bool addItems(Value const& operand) {
        Value const list = requireType(resolved(operand, m_context), codeOf("list"), m_context);
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

} // namespace

// Whether only the variable, the result of the statement before and one value of the caller's hold it.
bool Evaluator::isAlone(Value const& value, Node const& target) {
    if (variable(target).object() != value.object()) return false;
    std::uint32_t const own = m_frame->result.object() == value.object() ? 3 : 2;
    return value.object()->count() == own;
}

bool Evaluator::growAtEnd(Node const& target, Node const& sum) {
    Value start = variable(target);
    // An empty list does not grow: what follows it may be the answer itself.
    bool const mayGrow = start.is(ValueKind::Text) || (start.is(ValueKind::List) && !start.items().empty());
    if (!mayGrow) return false;
    std::vector<Node const*> const operands = addedOperands(sum);
    // The first operand makes a new list. A handler that a later one runs could still change the variable's list, whose
    // items must be taken before.
    bool const isSettled =
        start.is(ValueKind::Text) ||
        std::ranges::all_of(std::span(operands).subspan(1), [](Node const* operand) { return runsNothing(*operand); });
    if (!isSettled) return false;
    HeapObject const* const object = start.object();
    Growth growth(std::move(start), context());
    for (Node const* const operand : operands)
        growth.add(valueOf(*operand));
    Value const& held = variable(target);
    Value const grown = growth.take(held.object() == object && isAlone(held, target));
    variable(target) = grown;
    m_frame->result = grown;
    return true;
}

bool Evaluator::growAtBeginning(Node const& target, Node const& sum) {
    if (!variable(target).is(ValueKind::List)) return false;
    Value const added = resolved(valueOf(*sum.a), context());
    Value const list = valueOf(*sum.b);
    bool const isGrown = list.is(ValueKind::List) && added.is(ValueKind::List) && added.object() != list.object() &&
                         isAlone(list, target);
    Value const grown = isGrown ? list : concatenated(added, list, context());
    if (isGrown) {
        requireRoomFor(added.items().size() + list.items().size(), context().mostItems);
        list.items().prepend(added.items());
    }
    variable(target) = grown;
    m_frame->result = grown;
    return true;
}

bool Evaluator::executeGrowth(Node const& statement) {
    Node const& target = *statement.a;
    Node const& sum = *statement.b;
    if (target.kind != NodeKind::Variable || !isSum(sum)) return false;
    try {
        if (isSameVariable(leftmostOperand(sum), target)) return growAtEnd(target, sum);
        return isSameVariable(*sum.b, target) && growAtBeginning(target, sum);
    } catch (ScriptError& error) {
        if (!error.range) error.range = sum.range;
        throw;
    }
}

} // namespace mac::applescript
