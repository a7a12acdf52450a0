#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/HandlerCalls.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/applescript/runtime/QuickOperations.h"
#include "platform/applescript/runtime/ReferenceEvaluation.h"

namespace mac::applescript {

namespace {

// What stands left of `and` and `or` is not coerced, but for a list that holds just a boolean.
bool leftBoolean(Value const& left, TextContext const& context) {
    Value const value = resolved(left, context);
    if (value.is(ValueKind::Boolean)) return value.asBoolean();
    if (value.is(ValueKind::List) && value.items().size() == 1) return leftBoolean(value.items().front(), context);
    throw cannotMake(value, codes::BooleanType);
}

// A name that no variable has a value for is that of a handler of the script or of one around it.
Value handlerAround(Frame const& frame, Symbol name) {
    for (ScriptObject* script = frame.script; script; script = script->enclosing()) {
        Value found = script->handlerValue(name);
        if (!found.isNothing()) return found;
    }
    throw variableNotDefined(name);
}

// The kinds of expressions, each with what its value is. A kind without a function here does not compile.
class ExpressionValue {
public:
    explicit ExpressionValue(Evaluator& evaluator) : m_evaluator(evaluator) {}

    Value operator()(Literal const& literal) const { return frame().literals[literal.index]; }
    Value operator()(ItReference const& /*it*/) const { return frame().it; }
    Value operator()(MeReference const& /*me*/) const { return frame().me; }

    Value operator()(ResultReference const& /*result*/) const {
        if (frame().result.isNothing()) throw variableNotDefined(identifierSymbol(u"result"));
        return frame().result;
    }

    Value operator()(VariableReference const& variable) const {
        Value const& value = variableSlot(frame(), variable);
        return value.isNothing() ? handlerAround(frame(), variable.name) : value;
    }

    Value operator()(PropertyReference const& property) const { return evaluateProperty(m_evaluator, property); }
    Value operator()(ElementReference const& element) const { return evaluateElement(m_evaluator, element); }
    Value operator()(FilterReference const& filter) const { return evaluateFilter(m_evaluator, filter); }

    Value operator()(ListExpression const& list) const {
        std::vector<Value> items;
        items.reserve(list.items.size());
        for (Expression const* const item : list.items)
            items.push_back(valueOf(m_evaluator, *item));
        return Value::list(std::move(items));
    }

    Value operator()(RecordExpression const& record) const {
        std::vector<std::pair<Symbol, Value>> fields;
        fields.reserve(record.fields.size());
        for (RecordField const& field : record.fields)
            fields.emplace_back(field.key, valueOf(m_evaluator, *field.value));
        return Value::record(std::move(fields));
    }

    Value operator()(UnaryOperation const& unary) const {
        Value const operand = valueOf(m_evaluator, *unary.operand);
        if (unary.operation == Operation::Not) return Value::boolean(!requireBoolean(operand, context()));
        if (unary.operation == Operation::Negate) return negated(operand, context());
        return requireNumber(operand, context());
    }

    Value operator()(BinaryOperation const& binary) const {
        Value const left = valueOf(m_evaluator, *binary.left);
        Value const right = valueOf(m_evaluator, *binary.right);
        return operationResult(binary.operation, left, right, context());
    }

    Value operator()(LogicalOperation const& logical) const {
        bool const left = leftBoolean(valueOf(m_evaluator, *logical.left), context());
        bool const isDecided = left != (logical.operation == Operation::And);
        if (isDecided) return Value::boolean(left);
        return Value::boolean(requireBoolean(valueOf(m_evaluator, *logical.right), context()));
    }

    Value operator()(CoercionExpression const& coercion) const {
        return requireOneOf(valueOf(m_evaluator, *coercion.operand), coercion.classes, context());
    }

    Value operator()(ReferenceToExpression const& reference) const {
        return referenceTo(m_evaluator, *reference.target);
    }

    Value operator()(PositionalCall const& call) const { return evaluateCall(m_evaluator, call); }
    Value operator()(LabeledCall const& call) const { return evaluateCall(m_evaluator, call); }
    Value operator()(ContinueExpression const& passedOn) const { return evaluateContinue(m_evaluator, passedOn); }
    Value operator()(CommandCall const& call) const { return evaluateCommand(m_evaluator, call); }

    Value operator()(RunningTest const& test) const { return evaluateRunning(m_evaluator, test); }
    Value operator()(CountExpression const& count) const { return evaluateCount(m_evaluator, count); }
    Value operator()(DateExpression const& date) const { return evaluateDate(m_evaluator, date); }
    Value operator()(FileReference const& file) const { return evaluateFile(m_evaluator, file); }
    Value operator()(ApplicationReference const& application) const {
        return evaluateApplication(m_evaluator, application);
    }

    Value operator()(ScriptExpression const& script) const {
        return instantiate(m_evaluator, *script.definition, frame().script->loadedTree(), frame().script);
    }

    Value operator()(Parentheses const& parentheses) const { return evaluate(m_evaluator, *parentheses.inner); }

private:
    Frame& frame() const { return m_evaluator.frame(); }
    TextContext& context() const { return m_evaluator.context(); }

    Evaluator& m_evaluator;
};

Value evaluateGuarded(Evaluator& evaluator, Expression const& expression) {
    return withRange(expression.range, [&] {
        requireStackRoom();
        return std::visit(ExpressionValue(evaluator), expression.content);
    });
}

Value evaluateBinary(Evaluator& evaluator, BinaryOperation const& binary, SourceRange range) {
    Value const left = evaluate(evaluator, *binary.left);
    Value const right = evaluate(evaluator, *binary.right);
    if (std::optional<Value> quick = quickResult(binary.operation, left, right)) return *std::move(quick);
    return withRange(range, [&] {
        requireStackRoom();
        return operationResult(binary.operation, left, right, evaluator.context());
    });
}

} // namespace

// The kinds that a script evaluates over and over come first, with the least done for them.
Value evaluate(Evaluator& evaluator, Expression const& expression) {
    if (Literal const* const literal = expression.as<Literal>()) return evaluator.frame().literals[literal->index];
    if (VariableReference const* const variable = expression.as<VariableReference>()) {
        Value const& value = variableSlot(evaluator.frame(), *variable);
        if (!value.isNothing()) return value;
    } else if (BinaryOperation const* const binary = expression.as<BinaryOperation>()) {
        if (evaluator.hasStackRoom()) return evaluateBinary(evaluator, *binary, expression.range);
    } else if (ElementReference const* const element = expression.as<ElementReference>()) {
        Value const* const item = plainItem(evaluator, *element);
        if (item && !item->is(ValueKind::Specifier)) return *item;
    } else if (Parentheses const* const parentheses = expression.as<Parentheses>()) {
        return evaluate(evaluator, *parentheses->inner);
    }
    return evaluateGuarded(evaluator, expression);
}

Value valueOf(Evaluator& evaluator, Expression const& expression) {
    Value value = evaluate(evaluator, expression);
    if (!value.isNothing()) return value;
    ScriptError error = plainError(errors::NoResult);
    error.range = expression.range;
    throw ScriptError(std::move(error));
}

} // namespace mac::applescript
