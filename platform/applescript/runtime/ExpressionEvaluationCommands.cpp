#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/applescript/runtime/HandlerCalls.h"
#include "platform/applescript/runtime/ReferenceEvaluation.h"

namespace mac::applescript {

namespace {

constexpr EventCode Exists = eventOf("coredoex");
constexpr EventCode Run = eventOf("aevtoapp");

// Gives each parameter of the call the value that `valueOfArgument` has for it.
template <class Function>
CommandArguments argumentsBy(CommandCall const& call, Function const& valueOfArgument) {
    CommandArguments arguments;
    if (call.direct) arguments.direct = valueOfArgument(*call.direct);
    for (CommandArgument const& argument : call.arguments)
        arguments.named.emplace_back(argument.code, valueOfArgument(*argument.value));
    return arguments;
}

// An application gets the specifiers of its objects as they are written. A reference of the script's own means nothing
// to others.
CommandArguments unaskedArguments(Evaluator& evaluator, CommandCall const& call) {
    return argumentsBy(call, [&](Expression const& argument) {
        Value const value = unaskedValue(evaluator, argument);
        return isToldTo(value) ? value : resolved(value, evaluator.context());
    });
}

Value exists(Evaluator& evaluator, CommandCall const& call) {
    if (!call.direct) throw missingParameter(u"direct", u"exists");
    TextContext const& context = evaluator.context();
    Value const it = evaluator.frame().it;
    Value meant;
    try {
        meant = unaskedValue(evaluator, *call.direct);
        if (meant.is(ValueKind::File) && isToldTo(it)) meant = fileInApplication(meant, it);
        if (!isInApplication(meant)) meant = resolved(meant, context);
    } catch (ScriptError const& error) {
        bool const isAbsent = error.number == errors::CannotGet && error.application.empty() && !isToldTo(error.from);
        if (!isAbsent) throw;
        return Value::boolean(false);
    }
    if (meant.is(ValueKind::Application)) return Value::boolean(applicationOf(meant.application()) != nullptr);
    return Value::boolean(!isInApplication(meant) || existsInApplication(meant, context));
}

// The application that what the command is about lies in, else the one that is told something. Nothing for none.
Value targetOf(Evaluator& evaluator, CommandArguments const& arguments) {
    if (isToldTo(arguments.direct)) return arguments.direct;
    Value const& it = evaluator.frame().it;
    return isToldTo(it) ? it : Value();
}

Value performByApplication(Evaluator& evaluator, Value const& target, CommandTerm const& command,
                           CommandArguments const& arguments) {
    return performInApplication(
        evaluator, target,
        {.term = command, .direct = arguments.direct, .named = arguments.named, .subject = evaluator.frame().it});
}

// A command to a script goes to that script. nullopt where it is about no script, or the script does not take it.
std::optional<Value> performByScript(Evaluator& evaluator, Value const& script, EventCode event,
                                     CommandArguments const& arguments) {
    if (!script.is(ValueKind::Script)) return {};
    FoundHandler const found = findCommandHandler(script, event);
    bool const isOwn = found.handler && found.owner.object() == script.object();
    if (event == Run && !isOwn) return evaluator.runScript(script.script(), {});
    if (!found.handler) return {};
    return callCommandHandler(evaluator, found, script, {.named = arguments.named});
}

Value carryOut(Evaluator& evaluator, CommandCall const& call) {
    CommandTerm const& command = *call.command;
    if (command.code == Exists) return exists(evaluator, call);
    bool const isAddition = additionFor(command.code) != nullptr;
    CommandArguments const arguments =
        isAddition ? commandArguments(evaluator, call) : unaskedArguments(evaluator, call);
    Value const target = isAddition ? Value() : targetOf(evaluator, arguments);
    if (!target.isNothing()) return performByApplication(evaluator, target, command, arguments);
    Value const direct = isInApplication(arguments.direct) ? Value() : resolved(arguments.direct, evaluator.context());
    if (std::optional<Value> answer = performByScript(evaluator, direct, command.code, arguments))
        return *std::move(answer);
    Frame const& frame = evaluator.frame();
    Value const receiver = frame.it.is(ValueKind::Script) ? frame.it : frame.me;
    FoundHandler const found = findCommandHandler(receiver, command.code);
    if (found.handler) return callCommandHandler(evaluator, found, receiver, arguments);
    return performCommand(evaluator, command, arguments);
}

} // namespace

CommandArguments commandArguments(Evaluator& evaluator, CommandCall const& call) {
    return argumentsBy(call, [&](Expression const& argument) { return valueOf(evaluator, argument); });
}

// A command may have taken long.
Value evaluateCommand(Evaluator& evaluator, CommandCall const& call) {
    Value answer = carryOut(evaluator, call);
    Evaluator::stopIfAsked();
    return answer;
}

Value performCommand(Evaluator& evaluator, CommandTerm const& command, CommandArguments const& arguments) {
    if (Addition const addition = additionFor(command.code)) {
        if (command.direct == DirectParameter::Required && arguments.direct.isNothing())
            throw missingParameter(u"direct", command.name);
        if (evaluator.options().computesOnly && hasEffects(command.code)) throw plainError(errors::AccessNotAllowed);
        return addition(evaluator, arguments);
    }
    Value const told = targetOf(evaluator, arguments);
    if (!told.isNothing()) return performByApplication(evaluator, told, command, arguments);
    bool const isToIt = arguments.direct.isNothing();
    Value const target = resolved(isToIt ? evaluator.frame().it : arguments.direct, evaluator.context());
    if (command.code == Run && target.is(ValueKind::Script) && isToIt) return evaluator.runScript(target.script(), {});
    throw notUnderstood(target, command.name);
}

} // namespace mac::applescript
