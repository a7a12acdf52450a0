#include "platform/applescript/Coercion.h"
#include "platform/applescript/ElementAccess.h"
#include "platform/applescript/Evaluator.h"
#include "platform/applescript/Operators.h"
#include "platform/foundation/Encodings.h"

namespace mac::applescript {

namespace {

Node const& unparenthesized(Node const& node) {
    Node const* inner = &node;
    while (inner->kind == NodeKind::Expression)
        inner = inner->a;
    return *inner;
}

// Text where a place is asked for is a name.
Form formOf(Node const& node, Value const& from) {
    return node.form == Form::Index && from.is(ValueKind::Text) ? Form::Name : node.form;
}

} // namespace

// In `text from word 1 to word 3` the ends are elements of what the range is in.
Value Evaluator::rangeEnd(Node const& node) {
    Node const& end = unparenthesized(node);
    if (end.kind != NodeKind::Element || end.a) return resolved(valueOf(node), context());
    Value const from = end.b ? resolved(valueOf(*end.b), context()) : Value();
    return elementSpecifier(formOf(end, from), end.code, Value(), from);
}

// character id 65, string id {72, 105}
Value Evaluator::constructedText(Node const& node) {
    Value const identifiers = requireType(valueOf(*node.b), codeOf("list"), context());
    std::u16string text;
    for (Value const& identifier : identifiers.items()) {
        std::int32_t const point = requireInteger(identifier, context());
        if (point < 0 || point > 0x10FFFF) throw cannotMake(identifier, node.code);
        appendCodePoint(text, static_cast<char32_t>(point));
    }
    return Value::text(std::move(text));
}

Value Evaluator::evaluateElement(Node const& node) {
    bool const isConstructor = node.form == Form::Identifier && !node.a &&
                               (node.code == codeOf("cha ") || node.code == codeOf("TEXT") ||
                                node.code == codeOf("ctxt") || node.code == codeOf("utxt"));
    if (isConstructor) return constructedText(node);
    ElementSelector selector;
    Value const container = resolved(node.a ? valueOf(*node.a) : m_frame->it, context());
    selector.want = node.code;
    if (node.b) selector.from = node.form == Form::Range ? rangeEnd(*node.b) : resolved(valueOf(*node.b), context());
    if (node.c) selector.to = rangeEnd(*node.c);
    selector.form = formOf(node, selector.from);
    std::optional<Value> const found = elementOf(container, selector, context());
    if (found) return *found;
    if (container.is(ValueKind::Application)) throw cannotGet(container);
    bool const isImplied = !node.a && container.is(ValueKind::Script);
    throw cannotGet(
        elementSpecifier(selector.form, selector.want, isImplied ? Value() : container, selector.from, selector.to));
}

Value Evaluator::evaluateProperty(Node const& node) {
    if (node.name->code == codeOf("pcnt") && node.a) {
        Value const reference = valueOf(*node.a);
        if (reference.is(ValueKind::Specifier)) return objectOf(reference.specifier(), reference, context());
    }
    Value const container = resolved(node.a ? valueOf(*node.a) : m_frame->it, context());
    std::optional<Value> found = propertyOf(container, node.name, context());
    // What the target does not know is asked of the script, and of AppleScript behind it.
    if (!found && !node.a && !container.is(ValueKind::Script)) found = propertyOf(m_frame->me, node.name, context());
    if (found && !found->isNothing()) return *found;
    if (container.is(ValueKind::Application)) throw cannotGet(container);
    bool const isImplied = !node.a && container.is(ValueKind::Script);
    throw cannotGet(propertySpecifier(node.name, isImplied ? Value() : container));
}

Value Evaluator::containerReference(Node const* node) {
    if (!node) return m_frame->it.is(ValueKind::Script) ? Value() : m_frame->it;
    Node const& inner = unparenthesized(*node);
    bool const isPart = inner.kind == NodeKind::Property || inner.kind == NodeKind::Element;
    bool const isShared = inner.kind == NodeKind::Variable && inner.place.kind != Place::Kind::Local;
    return isPart || isShared ? referenceTo(inner) : valueOf(inner);
}

Value Evaluator::referenceTo(Node const& node) {
    Node const& target = unparenthesized(node);
    switch (target.kind) {
    case NodeKind::Variable: {
        if (target.place.kind == Place::Kind::Local) {
            Value const value = valueOf(target);
            if (value.is(ValueKind::Specifier)) return value;
            throw cannotMake(value, codeOf("obj "));
        }
        ScriptObject* script = target.place.kind == Place::Kind::TopLevel ? m_frame->root : m_frame->lexical;
        for (std::uint16_t depth = target.place.depth; depth > 0; --depth)
            script = script->enclosing();
        return propertySpecifier(target.name, script->self());
    }
    case NodeKind::Property: {
        bool const isOfAppleScript = !target.a && m_frame->it.is(ValueKind::Script);
        return propertySpecifier(target.name, isOfAppleScript ? m_frame->me : containerReference(target.a));
    }
    case NodeKind::Element: {
        Value const from =
            target.b ? (target.form == Form::Range ? rangeEnd(*target.b) : resolved(valueOf(*target.b), context()))
                     : Value();
        Value const to = target.c ? rangeEnd(*target.c) : Value();
        return elementSpecifier(formOf(target, from), target.code, containerReference(target.a), from, to);
    }
    default: {
        Value const value = valueOf(target);
        bool const isObject =
            value.is(ValueKind::Specifier) || value.is(ValueKind::Script) || value.is(ValueKind::Application);
        if (isObject) return value;
        throw cannotMake(value, codeOf("obj "));
    }
    }
}

// The engine's own values are not filtered; applications will be asked.
Value Evaluator::evaluateFilter(Node const& node) {
    Value const base = referenceTo(*node.a);
    Value const& root = rootOf(base);
    if (root.is(ValueKind::Application)) throw cannotGet(root);
    throw cannotGet(elementSpecifier(Form::Filter, 0, Value(), base, testOf(*node.b)));
}

Value Evaluator::operandOfTest(Node const& node) {
    Node const& operand = unparenthesized(node);
    if (operand.kind == NodeKind::It) return propertySpecifier(termSymbol(codeOf("it  "), u"it"), Value());
    bool const isOfExamined = (operand.kind == NodeKind::Property || operand.kind == NodeKind::Element) &&
                              (!operand.a || unparenthesized(*operand.a).kind == NodeKind::It);
    if (!isOfExamined) return valueOf(operand);
    if (operand.kind == NodeKind::Property) return propertySpecifier(operand.name, Value());
    Value const from = operand.b ? resolved(valueOf(*operand.b), context()) : Value();
    return elementSpecifier(formOf(operand, from), operand.code, Value(), from);
}

Value Evaluator::testOf(Node const& node) {
    Node const& condition = unparenthesized(node);
    Value const made = makeObject<TestObject>(ValueKind::Test);
    TestObject& test = made.test();
    test.operation = condition.operation;
    bool const isNot = condition.kind == NodeKind::Unary && condition.operation == Operation::Not;
    if (isNot) {
        test.left = testOf(*condition.a);
        return made;
    }
    if (condition.kind != NodeKind::Binary || !condition.b) {
        test.operation = Operation::Equal;
        test.left = operandOfTest(condition);
        test.right = Value::boolean(true);
        return made;
    }
    bool const isLogical = condition.operation == Operation::And || condition.operation == Operation::Or;
    test.left = isLogical ? testOf(*condition.a) : operandOfTest(*condition.a);
    test.right = isLogical ? testOf(*condition.b) : operandOfTest(*condition.b);
    return made;
}

void Evaluator::assign(Node const& target, Value const& value) {
    switch (target.kind) {
    case NodeKind::Variable:
        variable(target) = value;
        return;
    case NodeKind::Expression:
        assign(*target.a, value);
        return;
    case NodeKind::Property:
        assignProperty(target, value);
        return;
    case NodeKind::Element:
        assignElement(target, value);
        return;
    case NodeKind::List: {
        Value const list = requireType(value, codeOf("list"), context());
        // All right sides before any left one.
        std::vector<Value> const items = list.items();
        for (std::size_t index = 0; index < target.list.size(); ++index) {
            if (index >= items.size())
                throw cannotGet(
                    elementSpecifier(Form::Index, codeOf("cobj"), list, Value::number(static_cast<double>(index) + 1)));
            assign(*target.list[index], items[index]);
        }
        return;
    }
    case NodeKind::Record: {
        // Whatever has properties: a date as well.
        Value const record = resolved(value, context());
        for (std::size_t index = 0; index < target.list.size(); ++index) {
            std::optional<Value> const field = propertyOf(record, target.names[index], context());
            if (!field) throw cannotGet(propertySpecifier(target.names[index], record));
            assign(*target.list[index], *field);
        }
        return;
    }
    case NodeKind::Result:
        m_frame->result = value;
        return;
    default:
        throw cannotSet(valueOf(target), value);
    }
}

void Evaluator::assignProperty(Node const& target, Value const& value) {
    Value const owner = target.a ? valueOf(*target.a) : m_frame->it;
    bool const isContents = target.name->code == codeOf("pcnt") && owner.is(ValueKind::Specifier);
    if (isContents) {
        setObject(owner, value, context());
        return;
    }
    Value const container = resolved(owner, context());
    if (setPropertyOf(container, target.name, value, context())) return;
    if (!target.a && setPropertyOf(m_frame->me, target.name, value, context())) return;
    if (container.is(ValueKind::Application)) throw cannotGet(container);
    throw cannotSet(propertySpecifier(target.name, target.a ? container : Value()), value);
}

void Evaluator::assignElement(Node const& target, Value const& value) {
    Value const container = resolved(target.a ? valueOf(*target.a) : m_frame->it, context());
    ElementSelector selector;
    selector.want = target.code;
    if (target.b)
        selector.from = target.form == Form::Range ? rangeEnd(*target.b) : resolved(valueOf(*target.b), context());
    if (target.c) selector.to = rangeEnd(*target.c);
    selector.form = formOf(target, selector.from);
    if (setElementOf(container, selector, value, context())) return;
    if (container.is(ValueKind::Application)) throw cannotGet(container);
    throw cannotSet(elementSpecifier(selector.form, selector.want, container, selector.from, selector.to), value);
}

} // namespace mac::applescript
