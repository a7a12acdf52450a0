#include "platform/applescript/runtime/ReferenceEvaluation.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/foundation/text/Encodings.h"

namespace mac::applescript {

namespace {

// Text where a place is asked for is a name.
Form formOf(ElementReference const& element, Value const& from) {
    return element.form == Form::Index && from.is(ValueKind::Text) ? Form::Name : element.form;
}

Value asked(Part const& part, TextContext const& context) {
    return part.isUnasked ? getInApplication(part.value, 0, context) : part.value;
}

// In `text from word 1 to word 3` the ends are elements of what the range is in.
Value rangeEnd(Evaluator& evaluator, Expression const& expression) {
    TextContext const& context = evaluator.context();
    ElementReference const* const end = unparenthesized(expression).as<ElementReference>();
    if (!end || end->container) return resolved(valueOf(evaluator, expression), context);
    Value const from = end->selector ? resolved(valueOf(evaluator, *end->selector), context) : Value();
    return elementSpecifier(formOf(*end, from), end->elementClass, Value(), from);
}

// character id 65, string id {72, 105}
Value constructedText(Evaluator& evaluator, ElementReference const& element) {
    TextContext const& context = evaluator.context();
    Value const identifiers = requireType(valueOf(evaluator, *element.selector), codes::ListType, context);
    std::u16string text;
    for (Value const& identifier : identifiers.items()) {
        std::int32_t const point = requireInteger(identifier, context);
        if (point < 0 || point > 0x10FFFF) throw cannotMake(identifier, element.elementClass);
        appendCodePoint(text, static_cast<char32_t>(point));
    }
    return Value::text(std::move(text));
}

Value containerReference(Evaluator& evaluator, Expression const* container) {
    Value const& it = evaluator.frame().it;
    if (!container) return it.is(ValueKind::Script) ? Value() : it;
    Expression const& inner = unparenthesized(*container);
    VariableReference const* const variable = inner.as<VariableReference>();
    bool const isShared = variable && variable->place.kind != Place::Kind::Local;
    bool const isPart = inner.is<PropertyReference>() || inner.is<ElementReference>();
    return isPart || isShared ? referenceTo(evaluator, inner) : valueOf(evaluator, inner);
}

// A variable that outlives its handler; a local one only where it holds a reference itself.
Value referenceToVariable(Evaluator& evaluator, Expression const& expression, VariableReference const& variable) {
    if (variable.place.kind == Place::Kind::Local) {
        Value value = valueOf(evaluator, expression);
        if (value.is(ValueKind::Specifier)) return value;
        throw cannotMake(value, codes::ReferenceType);
    }
    Frame const& frame = evaluator.frame();
    ScriptObject* script = variable.place.kind == Place::Kind::TopLevel ? frame.outermost : frame.script;
    for (std::uint16_t depth = variable.place.depth; depth > 0; --depth)
        script = script->enclosing();
    return propertySpecifier(variable.name, script->self());
}

} // namespace

Value evaluateProperty(Evaluator& evaluator, PropertyReference const& property) {
    return asked(propertyPart(evaluator, property), evaluator.context());
}

Value evaluateElement(Evaluator& evaluator, ElementReference const& element) {
    return asked(elementPart(evaluator, element), evaluator.context());
}

Value evaluateFilter(Evaluator& evaluator, FilterReference const& filter) {
    return asked(filterPart(evaluator, filter), evaluator.context());
}

Part partOf(Evaluator& evaluator, Expression const& expression) {
    if (PropertyReference const* const property = expression.as<PropertyReference>())
        return propertyPart(evaluator, *property);
    if (ElementReference const* const element = expression.as<ElementReference>())
        return elementPart(evaluator, *element);
    if (FilterReference const* const filter = expression.as<FilterReference>()) return filterPart(evaluator, *filter);
    return {.value = valueOf(evaluator, expression)};
}

Value unaskedValue(Evaluator& evaluator, Expression const& expression) {
    return withRange(expression.range, [&] {
        requireStackRoom();
        Value value = partOf(evaluator, unparenthesized(expression)).value;
        if (value.isNothing()) throw plainError(errors::NoResult);
        return value;
    });
}

// An object of an application holds its parts, and what is told does, unless only the language knows such a thing. A
// file in the words of an application that is told is that application's.
std::optional<Value> placeInApplication(Evaluator& evaluator, PropertyReference const* property,
                                        Value const& container) {
    if (isToldTo(container)) {
        bool const isImplied = property && !property->container && !property->isOfApplication;
        bool const isOfLanguage = isImplied && !hasTermFor(container, property->name->code) &&
                                  propertyOfAppleScript(property->name, evaluator.context()).has_value();
        if (isOfLanguage) return {};
        return container;
    }
    Value const& it = evaluator.frame().it;
    bool const mayBeFile = container.is(ValueKind::File) && isToldTo(it);
    if (!mayBeFile) return {};
    bool const isOfFile =
        property && (property->name->code == codes::POSIXPath || property->name->code == codes::Class);
    bool const isKnown = !property || hasTermFor(it, property->name->code);
    if (isOfFile || !isKnown) return {};
    return fileInApplication(container, it);
}

ElementSelector selectorOf(Evaluator& evaluator, ElementReference const& element) {
    ElementSelector selector;
    selector.want = element.elementClass;
    if (element.selector)
        selector.from = element.form == Form::Range
                            ? rangeEnd(evaluator, *element.selector)
                            : resolved(valueOf(evaluator, *element.selector), evaluator.context());
    if (element.rangeEnd) selector.to = rangeEnd(evaluator, *element.rangeEnd);
    selector.form = formOf(element, selector.from);
    return selector;
}

Part elementPart(Evaluator& evaluator, ElementReference const& element) {
    bool const isClassOfText = isTextClass(element.elementClass) || element.elementClass == codes::CharacterType;
    bool const isConstructor = isClassOfText && element.form == Form::Identifier && !element.container;
    if (isConstructor && element.selector) return {.value = constructedText(evaluator, element)};
    TextContext const& context = evaluator.context();
    Value container = element.container ? unaskedValue(evaluator, *element.container) : evaluator.frame().it;
    std::optional<Value> place = placeInApplication(evaluator, nullptr, container);
    if (!place) {
        container = resolved(container, context);
        place = placeInApplication(evaluator, nullptr, container);
    }
    ElementSelector const selector = selectorOf(evaluator, element);
    if (place)
        return {.value = elementSpecifier(selector.form, selector.want, *place, selector.from, selector.to),
                .isUnasked = true};
    std::optional<Value> const found = elementOf(container, selector, context);
    if (found) return {.value = *found};
    bool const isImplied = !element.container && container.is(ValueKind::Script);
    throw cannotGet(
        elementSpecifier(selector.form, selector.want, isImplied ? Value() : container, selector.from, selector.to));
}

Part propertyPart(Evaluator& evaluator, PropertyReference const& property) {
    TextContext const& context = evaluator.context();
    Value container = property.container ? unaskedValue(evaluator, *property.container) : evaluator.frame().it;
    bool const isContents =
        property.name->code == codes::Contents && property.container && container.is(ValueKind::Specifier);
    if (isContents)
        return {.value = isInApplication(container) ? getInApplication(container, 0, context)
                                                    : objectOf(container.specifier(), container, context)};
    std::optional<Value> place = placeInApplication(evaluator, &property, container);
    if (!place) {
        if (!isToldTo(container)) container = resolved(container, context);
        bool const isImpliedTarget = isToldTo(container) && !property.container;
        place = isImpliedTarget ? std::nullopt : placeInApplication(evaluator, &property, container);
    }
    if (place) return {.value = propertySpecifier(property.name, *place), .isUnasked = true};
    std::optional<Value> found = isToldTo(container) ? std::nullopt : propertyOf(container, property.name, context);
    // What the target does not know is asked of the script, and of AppleScript behind it.
    if (!found && !property.container && !container.is(ValueKind::Script))
        found = propertyOf(evaluator.frame().me, property.name, context);
    if (found && !found->isNothing()) return {.value = *found};
    bool const hasGetter = property.getter && (container.is(ValueKind::File) || container.is(ValueKind::Integer));
    if (hasGetter) return {.value = performCommand(evaluator, *property.getter, {.direct = container})};
    bool const isImplied = !property.container && container.is(ValueKind::Script);
    throw cannotGet(propertySpecifier(property.name, isImplied ? Value() : container));
}

Value referenceTo(Evaluator& evaluator, Expression const& expression) {
    Expression const& target = unparenthesized(expression);
    if (VariableReference const* const variable = target.as<VariableReference>())
        return referenceToVariable(evaluator, target, *variable);
    if (PropertyReference const* const property = target.as<PropertyReference>()) {
        Frame const& frame = evaluator.frame();
        bool const isOfAppleScript = !property->container && frame.it.is(ValueKind::Script);
        return propertySpecifier(property->name,
                                 isOfAppleScript ? frame.me : containerReference(evaluator, property->container));
    }
    if (ElementReference const* const element = target.as<ElementReference>()) {
        ElementSelector const selector = selectorOf(evaluator, *element);
        return elementSpecifier(selector.form, selector.want, containerReference(evaluator, element->container),
                                selector.from, selector.to);
    }
    Value value = valueOf(evaluator, target);
    bool const isObject =
        value.is(ValueKind::Specifier) || value.is(ValueKind::Script) || value.is(ValueKind::Application);
    if (isObject) return value;
    throw cannotMake(value, codes::ReferenceType);
}

} // namespace mac::applescript
