#include "platform/applescript/language/StackRoom.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/applescript/runtime/RunLimits.h"

namespace mac::applescript {

namespace {

// How often a running script looks whether it is to stop, where it carries out no commands.
constexpr unsigned StepsBetweenLooks = 256;

// Puts a value back when the block that changed it is left, however it is left.
template <class T>
class Restored {
public:
    Restored(T& variable, T value) : m_variable(variable), m_previous(std::exchange(variable, std::move(value))) {}
    ~Restored() { m_variable = std::move(m_previous); }
    Restored(Restored const&) = delete;
    Restored& operator=(Restored const&) = delete;

private:
    T& m_variable;
    T m_previous;
};

bool isUsable(Node const* node) { return node && node->kind != NodeKind::Nothing; }

} // namespace

void Evaluator::checkpoint() {
    if (++m_steps % StepsBetweenLooks == 0) stopIfAsked();
}

void Evaluator::stopIfAsked() { stopRunIfAsked(); }

Evaluator::Flow Evaluator::execute(Node const& statement) {
    try {
        return executeStatement(statement);
    } catch (ScriptError& error) {
        if (!error.range) error.range = statement.range;
        throw;
    }
}

Evaluator::Flow Evaluator::executeBlock(Node const* block) {
    if (!block) return Flow::Next;
    if (block->kind != NodeKind::Block) return execute(*block);
    for (Node const* const statement : block->list) {
        Flow const flow = execute(*statement);
        if (flow != Flow::Next) return flow;
    }
    return Flow::Next;
}

Evaluator::Flow Evaluator::executeStatement(Node const& statement) {
    switch (statement.kind) {
    case NodeKind::Set: {
        Value const value = valueOf(*statement.b);
        assign(*statement.a, value);
        m_frame->result = value;
        return Flow::Next;
    }
    case NodeKind::Copy: {
        Value const value = deepCopy(valueOf(*statement.b));
        assign(*statement.a, value);
        m_frame->result = value;
        return Flow::Next;
    }
    case NodeKind::If:
        return executeIf(statement);
    case NodeKind::Repeat:
    case NodeKind::RepeatTimes:
    case NodeKind::RepeatWhile:
    case NodeKind::RepeatUntil:
        return executeRepeat(statement);
    case NodeKind::RepeatFrom:
        return executeRepeatFrom(statement);
    case NodeKind::RepeatIn:
        return executeRepeatIn(statement);
    case NodeKind::Tell:
        return executeTell(statement);
    case NodeKind::Try:
        return executeTry(statement);
    case NodeKind::Considering:
        return executeConsidering(statement);
    case NodeKind::Timeout:
        return executeTimeout(statement);
    case NodeKind::Return:
        m_frame->result = statement.a ? evaluate(*statement.a) : Value();
        return Flow::Return;
    case NodeKind::Exit:
        return Flow::Exit;
    case NodeKind::Error:
        raise(statement);
    case NodeKind::Block:
        return executeBlock(&statement);
    case NodeKind::ScriptStatement: {
        Value const made = evaluate(*statement.a);
        if (statement.c) variable(*statement.c) = made;
        m_frame->result = made;
        return Flow::Next;
    }
    case NodeKind::Unavailable:
        throw cannotGet(valueOf(*statement.a));
    case NodeKind::Nothing:
        return Flow::Next;
    default:
        m_frame->result = evaluate(statement);
        return Flow::Next;
    }
}

// Also in the handlers that are called within. Of a transaction nothing is known here but its statements.
Evaluator::Flow Evaluator::executeTimeout(Node const& node) {
    double const seconds = node.a ? requireReal(valueOf(*node.a), context()) : 0;
    RunLimits* const limits = RunLimits::current();
    if (node.code == 0 || !limits) return executeBlock(node.b);
    struct Limited {
        ~Limited() { limits->setReplySeconds(before); }
        RunLimits* limits;
        double before;
    };
    Limited const limited{.limits = limits, .before = limits->replySeconds()};
    limits->setReplySeconds(seconds);
    return executeBlock(node.b);
}

Evaluator::Flow Evaluator::executeIf(Node const& node) {
    std::size_t index = 0;
    for (; index + 1 < node.list.size(); index += 2)
        if (requireBoolean(valueOf(*node.list[index]), context())) return executeBlock(node.list[index + 1]);
    return index < node.list.size() ? executeBlock(node.list[index]) : Flow::Next;
}

bool Evaluator::executeBody(Node const& loop, Flow& flow) {
    checkpoint();
    flow = executeBlock(loop.b);
    if (flow == Flow::Next) return true;
    if (flow == Flow::Exit) flow = Flow::Next;
    return false;
}

Evaluator::Flow Evaluator::executeRepeat(Node const& node) {
    Flow flow = Flow::Next;
    switch (node.kind) {
    case NodeKind::RepeatTimes:
        for (std::int32_t left = requireInteger(valueOf(*node.a), context()); left > 0; --left)
            if (!executeBody(node, flow)) break;
        return flow;
    case NodeKind::RepeatWhile:
        while (requireBoolean(valueOf(*node.a), context()))
            if (!executeBody(node, flow)) break;
        return flow;
    case NodeKind::RepeatUntil:
        while (!requireBoolean(valueOf(*node.a), context()))
            if (!executeBody(node, flow)) break;
        return flow;
    default:
        while (executeBody(node, flow)) {}
        return flow;
    }
}

Evaluator::Flow Evaluator::executeRepeatFrom(Node const& node) {
    // Stricter than a coercion: a bound with a fraction is refused.
    auto const bound = [&](Node const& expression) {
        Value const number = requireNumber(valueOf(expression), context());
        Value const integer = requireType(number, codeOf("long"), context());
        if (integer.asNumber() != number.asNumber()) throw cannotMake(number, codeOf("long"));
        return static_cast<std::int64_t>(integer.asInteger());
    };
    std::int64_t const from = bound(*node.list[0]);
    std::int64_t const to = bound(*node.list[1]);
    std::int64_t const step = node.list[2] ? bound(*node.list[2]) : 1;
    if (step == 0) throw plainError(errors::Parameter);
    Flow flow = Flow::Next;
    for (std::int64_t number = from; step > 0 ? number <= to : number >= to; number += step) {
        variable(*node.c) = Value::integer(static_cast<std::int32_t>(number));
        if (!executeBody(node, flow)) break;
    }
    return flow;
}

Evaluator::Flow Evaluator::executeRepeatIn(Node const& node) {
    Value list = resolved(valueOf(*node.a), context());
    if (!list.is(ValueKind::List) && !list.is(ValueKind::Text)) list = requireType(list, codeOf("list"), context());
    std::size_t const count = countOf(list, codeOf("cobj"), context()).value_or(0);
    Flow flow = Flow::Next;
    for (std::size_t index = 1; index <= count; ++index) {
        variable(*node.c) =
            elementSpecifier(Form::Index, codeOf("cobj"), list, Value::number(static_cast<double>(index)));
        if (!executeBody(node, flow)) break;
    }
    return flow;
}

Evaluator::Flow Evaluator::executeTell(Node const& node) {
    Value target = unaskedValue(*node.a);
    if (!isToldTo(target)) target = resolved(target, context());
    Restored<Value> const it(m_frame->it, std::move(target));
    return executeBlock(node.b);
}

Evaluator::Flow Evaluator::executeConsidering(Node const& node) {
    Restored<unsigned> const considered(context().considered, (context().considered | node.considered) & ~node.ignored);
    return executeBlock(node.b);
}

Evaluator::Flow Evaluator::executeTry(Node const& node) {
    Frame* const frame = m_frame;
    try {
        return executeBlock(node.a);
    } catch (ScriptError const& error) {
        m_frame = frame;
        Node const* const number = node.list[1];
        bool const isOther = number && number->kind != NodeKind::Variable && number->value.asInteger() != error.number;
        if (isOther) throw;
        if (!node.b) return Flow::Next;
        bindError(node, error);
    }
    return executeBlock(node.b);
}

void Evaluator::bindError(Node const& node, ScriptError const& error) {
    auto const bind = [&](std::size_t index, Value const& value) {
        Node const* const target = node.list[index];
        if (isUsable(target) && target->kind == NodeKind::Variable) variable(*target) = value;
    };
    bind(0, Value::text(error.message));
    bind(1, Value::integer(error.number));
    bind(2, error.from);
    bind(3, error.to);
    bind(4, error.partialResult.isNothing() ? Value::list() : error.partialResult);
}

void Evaluator::raise(Node const& node) {
    ScriptError error;
    error.number = errors::UserError;
    error.range = node.range;
    if (node.list[1]) error.number = requireInteger(valueOf(*node.list[1]), context());
    if (node.list[0])
        error.message = requireText(valueOf(*node.list[0]), context());
    else if (node.list[1])
        error.message = messageOfNumber(error.number);
    if (node.list[2]) error.from = valueOf(*node.list[2]);
    if (node.list[3]) error.to = valueOf(*node.list[3]);
    if (node.list[4]) error.partialResult = valueOf(*node.list[4]);
    throw ScriptError(std::move(error));
}

} // namespace mac::applescript
