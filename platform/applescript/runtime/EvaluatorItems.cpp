#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// `item i of l` where l is a variable with a list and i is made of numbers and variables: what sorting and searching do
// all the time. Whatever else it may be goes the long way, with the same answer.

std::optional<std::int32_t> Evaluator::plainInteger(Node const& node) {
    switch (node.kind) {
    case NodeKind::Literal:
        return node.value.is(ValueKind::Integer) ? std::optional(node.value.asInteger()) : std::nullopt;
    case NodeKind::Variable: {
        Value const& value = variable(node);
        return value.is(ValueKind::Integer) ? std::optional(value.asInteger()) : std::nullopt;
    }
    case NodeKind::Expression:
        return plainInteger(*node.a);
    default:
        return plainSum(node);
    }
}

// Two integers of the language add up to no more than an integer of the machine holds; past the language's the sum is
// no place in a list.
std::optional<std::int32_t> Evaluator::plainSum(Node const& node) {
    bool const isAddition = node.operation == Operation::Add;
    if (node.kind != NodeKind::Binary || (!isAddition && node.operation != Operation::Subtract)) return {};
    if (node.a->kind == NodeKind::Binary || node.b->kind == NodeKind::Binary) return {};
    std::optional<std::int32_t> const left = plainInteger(*node.a);
    std::optional<std::int32_t> const right = left ? plainInteger(*node.b) : std::nullopt;
    if (!right) return {};
    std::int32_t const sum = isAddition ? *left + *right : *left - *right;
    return sum >= LeastInteger && sum <= MostInteger ? std::optional(sum) : std::nullopt;
}

// Null where the long way is to be gone. The item is in its place until something else is evaluated.
Value* Evaluator::plainItem(Node const& node) {
    bool const isItem = node.code == codeOf("cobj") && node.form == Form::Index && node.a && node.b;
    if (!isItem || node.a->kind != NodeKind::Variable) return nullptr;
    Value const& list = variable(*node.a);
    if (!list.is(ValueKind::List)) return nullptr;
    std::optional<std::int32_t> const index = plainInteger(*node.b);
    ValueList& items = list.items();
    bool const isInside = index && *index > 0 && static_cast<std::size_t>(*index) <= items.size();
    return isInside ? &items[static_cast<std::size_t>(*index) - 1] : nullptr;
}

} // namespace mac::applescript
