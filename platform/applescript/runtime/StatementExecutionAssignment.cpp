#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/applescript/runtime/ReferenceEvaluation.h"
#include "platform/applescript/runtime/StatementExecution.h"

namespace mac::applescript {

namespace {

// The items of a list that a pattern takes apart. They are taken before the first of its parts is set.
class PatternItems {
public:
    PatternItems(Value const& value, TextContext const& context)
        : m_list(requireType(value, codes::ListType, context)), m_items(m_list.items()) {}

    Value const& at(std::size_t index) const {
        if (index < m_items.size()) return m_items[index];
        throw cannotGet(
            elementSpecifier(Form::Index, codes::Item, m_list, Value::number(static_cast<double>(index) + 1)));
    }

private:
    Value m_list;
    ValueList m_items;
};

// Whatever has properties: a date as well as a record.
Value propertyForPattern(Value const& owner, Symbol key, TextContext const& context) {
    std::optional<Value> found = propertyOf(owner, key, context);
    if (!found) throw cannotGet(propertySpecifier(key, owner));
    return *std::move(found);
}

void assignProperty(Evaluator& evaluator, PropertyReference const& target, Value const& value) {
    TextContext& context = evaluator.context();
    Value const owner = target.container ? unaskedValue(evaluator, *target.container) : evaluator.frame().it;
    bool const isContents = target.name->code == codes::Contents && owner.is(ValueKind::Specifier);
    if (isContents) return setObject(owner, value, context);
    std::optional<Value> place = placeInApplication(evaluator, &target, owner);
    Value const container = place || isToldTo(owner) ? owner : resolved(owner, context);
    if (!place && target.container) place = placeInApplication(evaluator, &target, container);
    if (place) return setInApplication(propertySpecifier(target.name, *place), value, context);
    if (!isToldTo(container) && setPropertyOf(container, target.name, value, context)) return;
    // `me` may be replaced by what is set.
    Value const me = evaluator.frame().me;
    if (!target.container && setPropertyOf(me, target.name, value, context)) return;
    throw cannotSet(propertySpecifier(target.name, target.container ? container : Value()), value);
}

void assignElement(Evaluator& evaluator, ElementReference const& target, Value const& value) {
    TextContext const& context = evaluator.context();
    Value const owner = target.container ? unaskedValue(evaluator, *target.container) : evaluator.frame().it;
    Value const container = isToldTo(owner) ? owner : resolved(owner, context);
    if (isToldTo(container)) return setInApplication(elementPart(evaluator, target).value, value, context);
    ElementSelector const selector = selectorOf(evaluator, target);
    if (setElementOf(container, selector, value, context)) return;
    throw cannotSet(elementSpecifier(selector.form, selector.want, container, selector.from, selector.to), value);
}

// The kinds of expressions, each with how it is set. A kind without a function here is one that cannot be set.
class Target {
public:
    Target(Evaluator& evaluator, Expression const& target, Value const& value)
        : m_evaluator(evaluator), m_target(target), m_value(value) {}

    void operator()(VariableReference const& variable) const { variableSlot(m_evaluator.frame(), variable) = m_value; }
    void operator()(Parentheses const& parentheses) const { assign(m_evaluator, *parentheses.inner, m_value); }
    void operator()(PropertyReference const& property) const { assignProperty(m_evaluator, property, m_value); }
    void operator()(ResultReference const& /*result*/) const { m_evaluator.frame().result = m_value; }

    void operator()(ElementReference const& element) const {
        Value* const item = plainItem(m_evaluator, element);
        if (!item) return assignElement(m_evaluator, element, m_value);
        *item = m_value;
    }

    void operator()(FilterReference const& filter) const {
        setInApplication(filterPart(m_evaluator, filter).value, m_value, m_evaluator.context());
    }

    void operator()(ListExpression const& list) const {
        PatternItems const items(m_value, m_evaluator.context());
        for (std::size_t index = 0; index < list.items.size(); ++index)
            assign(m_evaluator, *list.items[index], items.at(index));
    }

    void operator()(RecordExpression const& record) const {
        Value const owner = resolved(m_value, m_evaluator.context());
        for (RecordField const& field : record.fields)
            assign(m_evaluator, *field.value, propertyForPattern(owner, field.key, m_evaluator.context()));
    }

    template <class Kind>
    void operator()(Kind const& /*other*/) const {
        throw cannotSet(valueOf(m_evaluator, m_target), m_value);
    }

private:
    Evaluator& m_evaluator;
    Expression const& m_target;
    Value const& m_value;
};

// The forms of parameters, each with how it takes its argument.
class ParameterTarget {
public:
    ParameterTarget(Evaluator& evaluator, Value const* argument) : m_evaluator(evaluator), m_argument(argument) {}

    void operator()(NamedParameter const& named) const {
        if (!m_argument && !named.defaultValue) return;
        Value const value = m_argument ? *m_argument : valueOf(m_evaluator, *named.defaultValue);
        assign(m_evaluator, *named.variable,
               named.classes.empty() ? value : requireOneOf(value, named.classes, m_evaluator.context()));
    }

    void operator()(ListPattern const& list) const {
        if (!m_argument) return;
        PatternItems const items(*m_argument, m_evaluator.context());
        for (std::size_t index = 0; index < list.parts.size(); ++index)
            bindParameter(m_evaluator, list.parts[index], &items.at(index));
    }

    void operator()(RecordPattern const& record) const {
        if (!m_argument) return;
        Value const owner = resolved(*m_argument, m_evaluator.context());
        for (std::size_t index = 0; index < record.keys.size(); ++index) {
            Value const value = propertyForPattern(owner, record.keys[index], m_evaluator.context());
            bindParameter(m_evaluator, record.parts[index], &value);
        }
    }

private:
    Evaluator& m_evaluator;
    Value const* m_argument;
};

} // namespace

void assign(Evaluator& evaluator, Expression const& target, Value const& value) {
    std::visit(Target(evaluator, target, value), target.content);
}

void bindParameter(Evaluator& evaluator, Parameter const& parameter, Value const* argument) {
    std::visit(ParameterTarget(evaluator, argument), parameter.pattern);
}

} // namespace mac::applescript
