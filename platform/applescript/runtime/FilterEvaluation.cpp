#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/applescript/runtime/ReferenceEvaluation.h"

// Filters: `every file whose name is "a"`. The condition is sent to the application as a test of specifiers without a
// container, which stand for the object that is examined.

namespace mac::applescript {

namespace {

// The code where the expression is the name of a class; 0 for anything else.
Code classNamed(Expression const& expression) {
    Literal const* const literal = expression.as<Literal>();
    TypeLiteral const* const type = literal ? std::get_if<TypeLiteral>(&literal->content) : nullptr;
    return type ? type->code : 0;
}

// What the part lies in. Null for what is no part, and for a part of what is examined itself.
Expression const* wholeAround(Expression const& expression) {
    if (PropertyReference const* const property = expression.as<PropertyReference>()) return property->container;
    ElementReference const* const element = expression.as<ElementReference>();
    return element ? element->container : nullptr;
}

// Whether the operand of a condition is a part of what is examined: name, name of it, name of container.
bool isOfExamined(Expression const& operand) {
    requireStackRoom();
    if (operand.is<ItReference>()) return true;
    if (!operand.is<PropertyReference>() && !operand.is<ElementReference>()) return false;
    Expression const* const container = wholeAround(operand);
    if (!container) return true;
    Expression const& inner = unparenthesized(*container);
    return classNamed(inner) != 0 || isOfExamined(inner);
}

// `name of every file whose …` filters the files. A part by its name or identifier is not filtered, what it lies in is.
Value filtered(Value const& base, Value const& test) {
    requireStackRoom();
    SpecifierObject const& part = base.specifier();
    bool const isSingle = part.form == Form::Property || part.form == Form::Name || part.form == Form::Identifier;
    if (!isSingle || !part.container.is(ValueKind::Specifier))
        return elementSpecifier(Form::Filter, part.want, part.container, base, test);
    Value outer = elementSpecifier(part.form, part.want, filtered(part.container, test), part.from, part.to);
    outer.specifier().property = part.property;
    return outer;
}

// Makes the test of a condition.
class Condition {
public:
    explicit Condition(Evaluator& evaluator) : m_evaluator(evaluator) {}

    Value testOf(Expression const& expression) const {
        requireStackRoom();
        Expression const& condition = unparenthesized(expression);
        UnaryOperation const* const unary = condition.as<UnaryOperation>();
        if (unary && unary->operation == Operation::Not) return made(Operation::Not, testOf(*unary->operand), Value());
        if (LogicalOperation const* const logical = condition.as<LogicalOperation>()) {
            Value const left = testOf(*logical->left);
            return made(logical->operation, left, testOf(*logical->right));
        }
        if (BinaryOperation const* const binary = condition.as<BinaryOperation>()) {
            Value const left = examined(*binary->left);
            return made(binary->operation, left, operand(*binary->right));
        }
        return made(Operation::Equal, operand(condition), Value::boolean(true));
    }

private:
    static Value made(Operation operation, Value const& left, Value const& right) {
        Value value = makeObject<TestObject>(ValueKind::Test);
        TestObject& test = value.test();
        test.operation = operation;
        test.left = left;
        test.right = right;
        return value;
    }

    Value operand(Expression const& expression) const {
        requireStackRoom();
        Expression const& part = unparenthesized(expression);
        if (part.is<ItReference>()) return propertySpecifier(termSymbol(codes::It, u"it"), Value());
        return isOfExamined(part) ? examinedPart(part) : valueOf(m_evaluator, part);
    }

    // A part of what is examined lies in other parts of it alone, so nothing is asked about them again.
    Value examinedPart(Expression const& part) const {
        requireStackRoom();
        Expression const* const outer = wholeAround(part);
        bool const isInPart = outer && !unparenthesized(*outer).is<ItReference>();
        Value const container = isInPart ? examinedContainer(unparenthesized(*outer)) : Value();
        if (PropertyReference const* const property = part.as<PropertyReference>())
            return propertySpecifier(property->name, container);
        ElementSelector const selector = selectorOf(m_evaluator, *part.as<ElementReference>());
        return elementSpecifier(selector.form, selector.want, container, selector.from, selector.to);
    }

    // `class is folder`: where something is examined, a name of a class is that of a property.
    Value examined(Expression const& expression) const {
        Code const code = classNamed(unparenthesized(expression));
        if (code == 0 || code == codes::MissingValue) return operand(expression);
        return propertySpecifier(termSymbol(code, nameOfCode(code)), Value());
    }

    Value examinedContainer(Expression const& container) const {
        Code const code = classNamed(container);
        if (code == 0) return examinedPart(container);
        if (code == codes::MissingValue) return valueOf(m_evaluator, container);
        return propertySpecifier(termSymbol(code, nameOfCode(code)), Value());
    }

    Evaluator& m_evaluator;
};

} // namespace

// The engine's own values are not filtered.
Part filterPart(Evaluator& evaluator, FilterReference const& filter) {
    Condition const condition(evaluator);
    Expression const& inner = unparenthesized(*filter.filtered);
    bool const isPart = inner.is<PropertyReference>() || inner.is<ElementReference>();
    if (isPart) {
        Part const base = partOf(evaluator, inner);
        if (base.isUnasked)
            return {.value = filtered(base.value, condition.testOf(*filter.condition)), .isUnasked = true};
    }
    Value const meant = referenceTo(evaluator, *filter.filtered);
    throw cannotGet(elementSpecifier(Form::Filter, 0, Value(), meant, condition.testOf(*filter.condition)));
}

} // namespace mac::applescript
