#include "platform/applescript/language/StackRoom.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/applescript/runtime/SourceForm.h"

namespace mac::applescript {

namespace {

// What stands left of `and` and `or` is not coerced, but for a list that holds just a boolean.
bool leftBoolean(Value const& left, TextContext const& context) {
    Value const value = resolved(left, context);
    if (value.is(ValueKind::Boolean)) return value.asBoolean();
    if (value.is(ValueKind::List) && value.items().size() == 1) return leftBoolean(value.items().front(), context);
    throw cannotMake(value, codeOf("bool"));
}

Value integerOrReal(std::int64_t number) {
    bool const isInteger = number >= LeastInteger && number <= MostInteger;
    return isInteger ? Value::integer(static_cast<std::int32_t>(number)) : Value::real(static_cast<double>(number));
}

// Two integers, without any of what else operands may be. Nothing where that is not enough.
std::optional<Value> integerOperation(Operation operation, std::int32_t left, std::int32_t right) {
    switch (operation) {
    case Operation::Add:
        return integerOrReal(std::int64_t{left} + right);
    case Operation::Subtract:
        return integerOrReal(std::int64_t{left} - right);
    case Operation::Equal:
        return Value::boolean(left == right);
    case Operation::NotEqual:
        return Value::boolean(left != right);
    case Operation::Less:
        return Value::boolean(left < right);
    case Operation::Greater:
        return Value::boolean(left > right);
    case Operation::AtMost:
        return Value::boolean(left <= right);
    case Operation::AtLeast:
        return Value::boolean(left >= right);
    default:
        return {};
    }
}

bool isRealSum(Operation operation, Value const& left, Value const& right) {
    return left.is(ValueKind::Real) && right.isNumber() &&
           (operation == Operation::Add || operation == Operation::Subtract);
}

} // namespace

Evaluator::Evaluator(EngineState& state, RunOptions const& options)
    : m_state(state), m_options(options), m_lowestStackAddress(lowestStackAddress()) {}

Value& Evaluator::variable(Node const& node) {
    switch (node.place.kind) {
    case Place::Kind::Local:
        return m_frame->locals[node.place.index];
    case Place::Kind::TopLevel:
        return m_frame->root->variables[node.place.index];
    default: {
        ScriptObject* script = m_frame->lexical;
        for (std::uint16_t depth = node.place.depth; depth > 0; --depth)
            script = script->enclosing();
        return script->properties[node.place.index];
    }
    }
}

Value Evaluator::evaluate(Node const& node) {
    switch (node.kind) {
    case NodeKind::Literal:
        return node.value;
    case NodeKind::Variable: {
        Value const& value = variable(node);
        if (!value.isNothing()) return value;
        break;
    }
    case NodeKind::Binary: {
        if (currentStackAddress() < m_lowestStackAddress) break;
        if (!node.b || node.operation == Operation::And || node.operation == Operation::Or) break;
        Value const left = evaluate(*node.a);
        Value const right = evaluate(*node.b);
        if (left.is(ValueKind::Integer) && right.is(ValueKind::Integer)) {
            std::optional<Value> quick = integerOperation(node.operation, left.asInteger(), right.asInteger());
            if (quick) return *std::move(quick);
        } else if (isRealSum(node.operation, left, right)) {
            double const operand = right.asNumber();
            double const sum = left.asReal() + (node.operation == Operation::Add ? operand : -operand);
            if (sum - sum == 0) return Value::real(sum);
        }
        try {
            requireStackRoom();
            return evaluateOperation(node.operation, left, right);
        } catch (ScriptError& error) {
            if (!error.range) error.range = node.range;
            throw;
        }
    }
    case NodeKind::Expression:
        return evaluate(*node.a);
    case NodeKind::Element:
        if (Value const* const item = plainItem(node); item && !item->is(ValueKind::Specifier)) return *item;
        break;
    default:
        break;
    }
    return evaluateGuarded(node);
}

Value Evaluator::evaluateGuarded(Node const& node) {
    try {
        requireStackRoom();
        return evaluateNode(node);
    } catch (ScriptError& error) {
        if (!error.range) error.range = node.range;
        throw;
    }
}

Value Evaluator::valueOf(Node const& node) {
    Value value = evaluate(node);
    if (value.isNothing()) {
        ScriptError error = plainError(errors::NoResult);
        error.range = node.range;
        throw ScriptError(std::move(error));
    }
    return value;
}

Value Evaluator::evaluateNode(Node const& node) {
    switch (node.kind) {
    case NodeKind::It:
        return m_frame->it;
    case NodeKind::Me:
        return m_frame->me;
    case NodeKind::Result:
        if (m_frame->result.isNothing()) throw variableNotDefined(identifierSymbol(u"result"));
        return m_frame->result;
    case NodeKind::Variable:
        return handlerAround(node.name);
    case NodeKind::Property:
        return evaluateProperty(node);
    case NodeKind::Element:
        return evaluateElement(node);
    case NodeKind::List: {
        std::vector<Value> items;
        items.reserve(node.list.size());
        for (Node const* const item : node.list)
            items.push_back(valueOf(*item));
        return Value::list(std::move(items));
    }
    case NodeKind::Record: {
        std::vector<std::pair<Symbol, Value>> fields;
        fields.reserve(node.list.size());
        for (std::size_t index = 0; index < node.list.size(); ++index)
            fields.emplace_back(node.names[index], valueOf(*node.list[index]));
        return Value::record(std::move(fields));
    }
    case NodeKind::Unary:
        return evaluateUnary(node);
    case NodeKind::Binary:
        return evaluateBinary(node);
    case NodeKind::Coercion:
        return evaluateCoercion(node);
    case NodeKind::ReferenceTo:
        return referenceTo(*node.a);
    case NodeKind::Filter:
        return evaluateFilter(node);
    case NodeKind::Call:
        return evaluateCall(node);
    case NodeKind::LabeledCall:
        return evaluateLabeledCall(node);
    case NodeKind::Command:
        return evaluateCommand(node);
    case NodeKind::Count:
        return evaluateCount(node);
    case NodeKind::Application: {
        std::u16string const name = requireText(valueOf(*node.a), context());
        return makeObject<ApplicationObject>(ValueKind::Application, name, node.code != 0);
    }
    case NodeKind::Date:
        return evaluateDate(node);
    case NodeKind::File:
        return evaluateFile(node);
    case NodeKind::Continue:
        return evaluateContinue(node);
    case NodeKind::Script:
        return instantiate(*node.definition, m_frame->lexical, m_frame->lexical->tree());
    default:
        return {};
    }
}

// A name that no variable has a value for is that of a handler of the script or of one around it.
Value Evaluator::handlerAround(Symbol name) const {
    for (ScriptObject* script = m_frame->lexical; script; script = script->enclosing()) {
        Value found = script->handlerValue(name);
        if (!found.isNothing()) return found;
    }
    throw variableNotDefined(name);
}

Value Evaluator::evaluateUnary(Node const& node) {
    Value const operand = valueOf(*node.a);
    if (node.operation == Operation::Not) return Value::boolean(!requireBoolean(operand, context()));
    if (node.operation == Operation::Negate) return negated(operand, context());
    return requireNumber(operand, context());
}

// An application that nobody knows does not run.
Value Evaluator::isRunning(Node const& node) {
    Value const left = unaskedValue(*node.a);
    Value const running = propertySpecifier(termSymbol(codeOf("prun"), u"running"), left);
    bool const asks = node.operation == Operation::Running;
    if (isInApplication(left)) return Value::boolean(getInApplication(running, 0, context()).asBoolean() == asks);
    Value const application = resolved(left, context());
    if (!application.is(ValueKind::Application)) throw cannotGet(running);
    bool const isKnown = application.application().byIdentifier || applicationOf(application.application());
    if (!isKnown) return Value::boolean(!asks);
    return Value::boolean(getInApplication(running, codeOf("bool"), context()).asBoolean() == asks);
}

// What `evaluate` leaves over: and, or, is running.
Value Evaluator::evaluateBinary(Node const& node) {
    bool const isPredicate = node.operation == Operation::Running || node.operation == Operation::NotRunning;
    if (isPredicate) return isRunning(node);
    Value const left = valueOf(*node.a);
    bool const whole = leftBoolean(left, context());
    if (whole != (node.operation == Operation::And)) return Value::boolean(whole);
    return Value::boolean(requireBoolean(valueOf(*node.b), context()));
}

Value Evaluator::evaluateOperation(Operation operation, Value const& left, Value const& right) {
    if (left.isNothing() || right.isNothing()) throw plainError(errors::NoResult);
    switch (operation) {
    case Operation::Concatenate:
        return concatenated(left, right, context());
    case Operation::Equal:
        return Value::boolean(isEqualValue(left, right, context()));
    case Operation::NotEqual:
        return Value::boolean(!isEqualValue(left, right, context()));
    case Operation::Less:
    case Operation::Greater:
    case Operation::AtMost:
    case Operation::AtLeast:
        return Value::boolean(isOrdered(operation, left, right, context()));
    case Operation::Contains:
    case Operation::DoesNotContain:
    case Operation::IsIn:
    case Operation::IsNotIn:
    case Operation::StartsWith:
    case Operation::EndsWith:
        return Value::boolean(isContained(operation, left, right, context()));
    default:
        return arithmetic(operation, left, right, context());
    }
}

Value Evaluator::evaluateCoercion(Node const& node) { return requireOneOf(valueOf(*node.a), node.codes, context()); }

Value Evaluator::evaluateDate(Node const& node) {
    Value const written = resolved(valueOf(*node.a), context());
    if (written.is(ValueKind::Date)) return written;
    std::u16string const text = requireText(written, context());
    std::int64_t base = currentDate();
    if (node.b) {
        Value const day = resolved(valueOf(*node.b), context());
        if (!day.is(ValueKind::Date)) throw cannotMake(day, codeOf("ldt "));
        base = day.seconds();
    }
    std::optional<std::int64_t> const found = dateInText(text, base);
    if (found) return Value::date(*found);
    throw ScriptError{.number = errors::InvalidDate,
                      .message = u"Invalid date and time date " + sourceForm(Value::text(text)) + u"."};
}

Value Evaluator::evaluateFile(Node const& node) {
    Value const written = resolved(valueOf(*node.a), context());
    if (node.code == codeOf("psxf"))
        return makeObject<FileObject>(ValueKind::File, FileObject::Kind::PosixFile, requireText(written, context()));
    bool const isAlias = node.code == codeOf("alis");
    FileObject::Kind const kind = isAlias ? FileObject::Kind::Alias : FileObject::Kind::File;
    Value const file = makeObject<FileObject>(ValueKind::File, kind, requirePath(written, context()));
    if (isAlias && !existsAt(file.file().path)) throw fileNotFound(file);
    return file;
}

Value Evaluator::evaluateCount(Node const& node) {
    Value counted = node.a ? unaskedValue(*node.a) : m_frame->it;
    if (counted.is(ValueKind::File) && isToldTo(m_frame->it)) counted = fileInApplication(counted, m_frame->it);
    if (!isToldTo(counted)) counted = resolved(counted, context());
    if (isToldTo(counted)) return Value::number(static_cast<double>(countInApplication(counted, node.code, context())));
    std::optional<std::size_t> const count = countOf(counted, node.code, context());
    if (!count) throw notUnderstood(counted, u"count");
    return Value::number(static_cast<double>(*count));
}

Value Evaluator::load(std::shared_ptr<SyntaxTree> const& tree) { return instantiate(*tree->top, nullptr, tree); }

// Properties are set in their order, by what can be seen where the script object stands.
Value Evaluator::instantiate(ScriptDefinition& definition, ScriptObject* enclosing,
                             std::shared_ptr<SyntaxTree> const& tree) {
    Value const made = makeObject<ScriptObject>(ValueKind::Script, tree, definition, enclosing);
    ScriptObject& script = made.script();
    std::vector<Value> locals(m_frame ? 0 : definition.run->localCount);
    Frame frame;
    frame.lexical = &script;
    frame.root = &script.outermost();
    frame.me = frame.it = made;
    frame.locals = m_frame ? m_frame->locals : locals.data();
    Frame* const outer = std::exchange(m_frame, &frame);
    struct Leave {
        Frame*& current;
        Frame* outer;
        ~Leave() { current = outer; }
    } const leave{m_frame, outer};
    for (std::size_t index = 0; index < definition.properties.size(); ++index) {
        auto const& [name, initial] = definition.properties[index];
        script.properties[index] = valueOf(*initial);
        if (name->code == codeOf("pare")) script.parentValue = script.properties[index];
    }
    return made;
}

} // namespace mac::applescript
