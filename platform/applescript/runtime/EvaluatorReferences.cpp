#include "platform/applescript/language/StackRoom.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/foundation/Encodings.h"

namespace mac::applescript {

namespace {

Node const& unparenthesized(Node const& node) {
    Node const* inner = &node;
    while (inner->kind == NodeKind::Expression)
        inner = inner->a;
    return *inner;
}

// Whether the operand of a condition is a part of what is examined: name, name of it, name of container.
bool isOfExamined(Node const& operand) {
    if (operand.kind == NodeKind::It) return true;
    if (operand.kind != NodeKind::Property && operand.kind != NodeKind::Element) return false;
    if (!operand.a) return true;
    Node const& container = unparenthesized(*operand.a);
    bool const isClass = container.kind == NodeKind::Literal && container.value.is(ValueKind::Type);
    return isClass || isOfExamined(container);
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

Value Evaluator::asked(Part const& part) {
    return part.isUnasked ? getInApplication(part.value, 0, context()) : part.value;
}

Value Evaluator::evaluateElement(Node const& node) { return asked(elementPart(node)); }
Value Evaluator::evaluateProperty(Node const& node) { return asked(propertyPart(node)); }
Value Evaluator::evaluateFilter(Node const& node) { return asked(filterPart(node)); }

Evaluator::Part Evaluator::partOf(Node const& node) {
    switch (node.kind) {
    case NodeKind::Property:
        return propertyPart(node);
    case NodeKind::Element:
        return elementPart(node);
    case NodeKind::Filter:
        return filterPart(node);
    default:
        return {.value = valueOf(node)};
    }
}

Value Evaluator::unaskedValue(Node const& node) {
    try {
        requireStackRoom();
        Value value = partOf(unparenthesized(node)).value;
        if (value.isNothing()) throw plainError(errors::NoResult);
        return value;
    } catch (ScriptError& error) {
        if (!error.range) error.range = node.range;
        throw;
    }
}

// An object of an application holds its parts, and what is told does, unless only the language knows such a thing. A
// file in the words of an application that is told is that application's.
std::optional<Value> Evaluator::placeInApplication(Node const& node, Value const& container) const {
    bool const isProperty = node.kind == NodeKind::Property;
    if (isToldTo(container)) {
        bool const isImplied = isProperty && !node.a && !node.isOfApplication;
        bool const isOfLanguage = isImplied && !hasTermFor(container, node.name->code) &&
                                  propertyOfAppleScript(node.name, m_state.text).has_value();
        if (isOfLanguage) return {};
        return container;
    }
    bool const mayBeFile = container.is(ValueKind::File) && isToldTo(m_frame->it);
    if (!mayBeFile) return {};
    bool const isOfFile = isProperty && (node.name->code == codeOf("psxp") || node.name->code == codeOf("pcls"));
    bool const isKnown = !isProperty || hasTermFor(m_frame->it, node.name->code);
    if (isOfFile || !isKnown) return {};
    return fileInApplication(container, m_frame->it);
}

Evaluator::Part Evaluator::elementPart(Node const& node) {
    bool const isConstructor = node.form == Form::Identifier && !node.a &&
                               (node.code == codeOf("cha ") || node.code == codeOf("TEXT") ||
                                node.code == codeOf("ctxt") || node.code == codeOf("utxt"));
    if (isConstructor) return {.value = constructedText(node)};
    Value container = node.a ? unaskedValue(*node.a) : m_frame->it;
    std::optional<Value> place = placeInApplication(node, container);
    if (!place) {
        container = resolved(container, context());
        place = placeInApplication(node, container);
    }
    ElementSelector selector;
    selector.want = node.code;
    if (node.b) selector.from = node.form == Form::Range ? rangeEnd(*node.b) : resolved(valueOf(*node.b), context());
    if (node.c) selector.to = rangeEnd(*node.c);
    selector.form = formOf(node, selector.from);
    if (place)
        return {.value = elementSpecifier(selector.form, selector.want, *place, selector.from, selector.to),
                .isUnasked = true};
    std::optional<Value> const found = elementOf(container, selector, context());
    if (found) return {.value = *found};
    bool const isImplied = !node.a && container.is(ValueKind::Script);
    throw cannotGet(
        elementSpecifier(selector.form, selector.want, isImplied ? Value() : container, selector.from, selector.to));
}

Evaluator::Part Evaluator::propertyPart(Node const& node) {
    Value container = node.a ? unaskedValue(*node.a) : m_frame->it;
    if (node.name->code == codeOf("pcnt") && node.a && container.is(ValueKind::Specifier))
        return {.value = isInApplication(container) ? getInApplication(container, 0, context())
                                                    : objectOf(container.specifier(), container, context())};
    std::optional<Value> place = placeInApplication(node, container);
    if (!place) {
        if (!isToldTo(container)) container = resolved(container, context());
        place = isToldTo(container) && !node.a ? std::nullopt : placeInApplication(node, container);
    }
    if (place) return {.value = propertySpecifier(node.name, *place), .isUnasked = true};
    std::optional<Value> found = isToldTo(container) ? std::nullopt : propertyOf(container, node.name, context());
    // What the target does not know is asked of the script, and of AppleScript behind it.
    if (!found && !node.a && !container.is(ValueKind::Script)) found = propertyOf(m_frame->me, node.name, context());
    if (found && !found->isNothing()) return {.value = *found};
    bool const hasGetter = node.command && (container.is(ValueKind::File) || container.is(ValueKind::Integer));
    if (hasGetter) return {.value = performCommand(*node.command, {.direct = container}, node)};
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

namespace {

// `name of every file whose …` filters the files. A part by its name or identifier is not filtered, what it lies in is.
Value filtered(Value const& base, Value const& test) {
    SpecifierObject const& part = base.specifier();
    bool const isSingle = part.form == Form::Property || part.form == Form::Name || part.form == Form::Identifier;
    if (!isSingle || !part.container.is(ValueKind::Specifier))
        return elementSpecifier(Form::Filter, part.want, part.container, base, test);
    Value const outer = elementSpecifier(part.form, part.want, filtered(part.container, test), part.from, part.to);
    outer.specifier().property = part.property;
    return outer;
}

} // namespace

// The engine's own values are not filtered.
Evaluator::Part Evaluator::filterPart(Node const& node) {
    Node const& inner = unparenthesized(*node.a);
    bool const isPart = inner.kind == NodeKind::Property || inner.kind == NodeKind::Element;
    if (isPart) {
        Part const base = partOf(inner);
        if (base.isUnasked) return {.value = filtered(base.value, testOf(*node.b)), .isUnasked = true};
    }
    throw cannotGet(elementSpecifier(Form::Filter, 0, Value(), referenceTo(*node.a), testOf(*node.b)));
}

Value Evaluator::operandOfTest(Node const& node) {
    Node const& operand = unparenthesized(node);
    if (operand.kind == NodeKind::It) return propertySpecifier(termSymbol(codeOf("it  "), u"it"), Value());
    if (!isOfExamined(operand)) return valueOf(operand);
    Value container;
    if (operand.a && unparenthesized(*operand.a).kind != NodeKind::It) container = examinedOperand(*operand.a);
    if (operand.kind == NodeKind::Property) return propertySpecifier(operand.name, container);
    Value const from = operand.b ? resolved(valueOf(*operand.b), context()) : Value();
    return elementSpecifier(formOf(operand, from), operand.code, container, from);
}

// `class is folder`: where something is examined, a name of a class is that of a property.
Value Evaluator::examinedOperand(Node const& node) {
    Node const& operand = unparenthesized(node);
    bool const isClass =
        operand.kind == NodeKind::Literal && operand.value.is(ValueKind::Type) && !operand.value.isMissing();
    if (!isClass) return operandOfTest(node);
    Code const code = operand.value.asCode();
    return propertySpecifier(termSymbol(code, nameOfCode(code)), Value());
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
    test.left = isLogical ? testOf(*condition.a) : examinedOperand(*condition.a);
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
        if (Value* const item = plainItem(target))
            *item = value;
        else
            assignElement(target, value);
        return;
    case NodeKind::Filter:
        setInApplication(filterPart(target).value, value, context());
        return;
    case NodeKind::List: {
        Value const list = requireType(value, codeOf("list"), context());
        // All right sides before any left one.
        ValueList const items = list.items();
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
    Value const owner = target.a ? unaskedValue(*target.a) : m_frame->it;
    bool const isContents = target.name->code == codeOf("pcnt") && owner.is(ValueKind::Specifier);
    if (isContents) {
        setObject(owner, value, context());
        return;
    }
    std::optional<Value> place = placeInApplication(target, owner);
    Value const container = place || isToldTo(owner) ? owner : resolved(owner, context());
    if (!place && target.a) place = placeInApplication(target, container);
    if (place) {
        setInApplication(propertySpecifier(target.name, *place), value, context());
        return;
    }
    if (!isToldTo(container) && setPropertyOf(container, target.name, value, context())) return;
    if (!target.a && setPropertyOf(m_frame->me, target.name, value, context())) return;
    throw cannotSet(propertySpecifier(target.name, target.a ? container : Value()), value);
}

void Evaluator::assignElement(Node const& target, Value const& value) {
    Value const owner = target.a ? unaskedValue(*target.a) : m_frame->it;
    bool const isInList = !isToldTo(owner);
    Value const container = isInList ? resolved(owner, context()) : owner;
    if (isToldTo(container)) {
        setInApplication(elementPart(target).value, value, context());
        return;
    }
    ElementSelector selector;
    selector.want = target.code;
    if (target.b)
        selector.from = target.form == Form::Range ? rangeEnd(*target.b) : resolved(valueOf(*target.b), context());
    if (target.c) selector.to = rangeEnd(*target.c);
    selector.form = formOf(target, selector.from);
    if (setElementOf(container, selector, value, context())) return;
    throw cannotSet(elementSpecifier(selector.form, selector.want, container, selector.from, selector.to), value);
}

} // namespace mac::applescript
