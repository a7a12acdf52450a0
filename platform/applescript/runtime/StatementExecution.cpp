#include "platform/applescript/runtime/StatementExecution.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/applescript/runtime/ReferenceEvaluation.h"
#include "platform/applescript/runtime/RunLimits.h"

namespace mac::applescript {

namespace {

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

// Waits for replies at most so long until it goes, in the handlers that are called meanwhile as well.
class ReplyLimit {
public:
    ReplyLimit(RunLimits& limits, double seconds) : m_limits(limits), m_before(limits.replySeconds()) {
        m_limits.setReplySeconds(seconds);
    }
    ~ReplyLimit() { m_limits.setReplySeconds(m_before); }
    ReplyLimit(ReplyLimit const&) = delete;
    ReplyLimit& operator=(ReplyLimit const&) = delete;

private:
    RunLimits& m_limits;
    double m_before;
};

// The kinds of statements, each with what it does. A kind without a function here does not compile.
class StatementEffect {
public:
    explicit StatementEffect(Evaluator& evaluator) : m_evaluator(evaluator) {}

    Flow operator()(ExpressionStatement const& statement) const {
        frame().result = evaluate(m_evaluator, *statement.expression);
        return Flow::Next;
    }

    Flow operator()(SetStatement const& statement) const {
        if (executeGrowth(m_evaluator, statement)) return Flow::Next;
        return assigned(*statement.target, valueOf(m_evaluator, *statement.value));
    }

    Flow operator()(CopyStatement const& statement) const {
        return assigned(*statement.target, deepCopy(valueOf(m_evaluator, *statement.value)));
    }

    Flow operator()(IfStatement const& statement) const {
        for (IfStatement::Branch const& branch : statement.branches)
            if (isTrue(*branch.condition)) return executeBlock(m_evaluator, branch.block);
        return executeBlock(m_evaluator, statement.elseBlock);
    }

    Flow operator()(Block const& block) const {
        for (Statement const* const statement : block.statements) {
            Flow const flow = executeBlock(m_evaluator, statement);
            if (flow != Flow::Next) return flow;
        }
        return Flow::Next;
    }

    Flow operator()(RepeatForever const& loop) const { return executeRepeat(m_evaluator, loop); }
    Flow operator()(RepeatTimes const& loop) const { return executeRepeat(m_evaluator, loop); }
    Flow operator()(RepeatCondition const& loop) const { return executeRepeat(m_evaluator, loop); }
    Flow operator()(RepeatFrom const& loop) const { return executeRepeat(m_evaluator, loop); }
    Flow operator()(RepeatIn const& loop) const { return executeRepeat(m_evaluator, loop); }

    Flow operator()(TellStatement const& statement) const {
        Value target = unaskedValue(m_evaluator, *statement.target);
        if (!isToldTo(target)) target = resolved(target, context());
        Restored<Value> const it(frame().it, std::move(target));
        return executeBlock(m_evaluator, statement.block);
    }

    Flow operator()(TryStatement const& statement) const {
        try {
            return executeBlock(m_evaluator, statement.block);
        } catch (ScriptError const& error) {
            bool const isOther = statement.handledNumber && *statement.handledNumber != error.number;
            if (isOther) throw;
            if (!statement.errorBlock) return Flow::Next;
            bindError(statement, error);
        }
        return executeBlock(m_evaluator, statement.errorBlock);
    }

    Flow operator()(ConsideringStatement const& statement) const {
        unsigned const considered = (context().considered | statement.considered) & ~statement.ignored;
        Restored<unsigned> const restored(context().considered, considered);
        return executeBlock(m_evaluator, statement.block);
    }

    Flow operator()(TimeoutStatement const& statement) const {
        double const seconds = requireReal(valueOf(m_evaluator, *statement.seconds), context());
        RunLimits* const limits = RunLimits::current();
        if (!limits) return executeBlock(m_evaluator, statement.block);
        ReplyLimit const limit(*limits, seconds);
        return executeBlock(m_evaluator, statement.block);
    }

    // A transaction is not opened with the application: its statements are executed as they stand.
    Flow operator()(TransactionStatement const& statement) const {
        if (statement.session) valueOf(m_evaluator, *statement.session);
        return executeBlock(m_evaluator, statement.block);
    }

    Flow operator()(ReturnStatement const& statement) const {
        frame().result = statement.value ? evaluate(m_evaluator, *statement.value) : Value();
        return Flow::Return;
    }

    Flow operator()(ExitStatement const& /*statement*/) const { return Flow::Exit; }

    Flow operator()(ErrorStatement const& statement) const {
        ScriptError error;
        error.number = errors::UserError;
        if (statement.number) error.number = requireInteger(valueOf(m_evaluator, *statement.number), context());
        if (statement.message)
            error.message = requireText(valueOf(m_evaluator, *statement.message), context());
        else if (statement.number)
            error.message = messageOfNumber(error.number);
        if (statement.from) error.from = valueOf(m_evaluator, *statement.from);
        if (statement.to) error.to = valueOf(m_evaluator, *statement.to);
        if (statement.partialResult) error.partialResult = valueOf(m_evaluator, *statement.partialResult);
        throw ScriptError(std::move(error));
    }

    Flow operator()(ScriptStatement const& statement) const {
        Value const made = evaluate(m_evaluator, *statement.script);
        setVariable(statement.variable, made);
        frame().result = made;
        return Flow::Next;
    }

    Flow operator()(UnavailableStatement const& statement) const {
        throw cannotGet(valueOf(m_evaluator, *statement.needed));
    }

    Flow operator()(EmptyStatement const& /*statement*/) const { return Flow::Next; }

private:
    Frame& frame() const { return m_evaluator.frame(); }
    TextContext& context() const { return m_evaluator.context(); }

    bool isTrue(Expression const& condition) const {
        return requireBoolean(valueOf(m_evaluator, condition), context());
    }

    Flow assigned(Expression const& target, Value const& value) const {
        assign(m_evaluator, target, value);
        frame().result = value;
        return Flow::Next;
    }

    // Null: the source names no variable.
    void setVariable(Expression const* variable, Value const& value) const {
        if (variable) variableSlot(frame(), *variable->as<VariableReference>()) = value;
    }

    void bindError(TryStatement const& statement, ScriptError const& error) const {
        setVariable(statement.message, Value::text(error.message));
        setVariable(statement.number, Value::number(error.number));
        setVariable(statement.from, error.from);
        setVariable(statement.to, error.to);
        setVariable(statement.partialResult, error.partialResult.isNothing() ? Value::list() : error.partialResult);
    }

    Evaluator& m_evaluator;
};

} // namespace

Flow executeBlock(Evaluator& evaluator, Statement const* block) {
    if (!block) return Flow::Next;
    return withRange(block->range, [&] { return std::visit(StatementEffect(evaluator), block->content); });
}

} // namespace mac::applescript
