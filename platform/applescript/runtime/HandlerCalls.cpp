#include "platform/applescript/runtime/HandlerCalls.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/applescript/runtime/ReferenceEvaluation.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/applescript/runtime/StatementExecution.h"
#include <algorithm>
#include <span>

namespace mac::applescript {

namespace {

// A chain of parents that closes is a script's mistake; it has an end here.
constexpr int LongestChain = 1000;

std::u16string joinedTexts(std::vector<Parameter> const& parts);

// How the parameter is written.
struct ParameterText {
    std::u16string operator()(NamedParameter const& named) const {
        return named.variable->as<VariableReference>()->name->spelling;
    }
    std::u16string operator()(ListPattern const& list) const { return u"{" + joinedTexts(list.parts) + u"}"; }
    std::u16string operator()(RecordPattern const& record) const { return u"{" + joinedTexts(record.parts) + u"}"; }
};

std::u16string joinedTexts(std::vector<Parameter> const& parts) {
    std::u16string text;
    for (Parameter const& part : parts)
        text += (text.empty() ? u"" : u", ") + std::visit(ParameterText(), part.pattern);
    return text;
}

ScriptError parametersDoNotMatch(std::span<Value const> arguments, HandlerDefinition const& handler) {
    return {.number = errors::ParametersDoNotMatch,
            .message = sourceForm(Value::list({arguments.begin(), arguments.end()})) +
                       u" doesn’t match the parameters {" + joinedTexts(handler.positional) + u"} for " +
                       handler.name->spelling + u"."};
}

FoundHandler findHandler(Value const& start, Symbol name) {
    Value current = start;
    for (int step = 0; step < LongestChain && current.is(ValueKind::Script); ++step) {
        ScriptObject& script = current.script();
        if (HandlerDefinition const* const handler = script.handlerNamed(name))
            return {.owner = current, .handler = handler};
        // A property that holds a handler is called like one.
        Value const* const held = script.propertyNamed(name);
        if (held && held->is(ValueKind::Handler))
            return {.owner = held->handler().owner, .handler = held->handler().definition};
        Value const next = script.parent();
        current = next;
    }
    return {};
}

// Runs a handler in a frame of its own; `bind` gives its parameters their values.
template <class Bind>
Value enter(Evaluator& evaluator, FoundHandler const& found, Value const& me, Bind const& bind) {
    requireStackRoom();
    evaluator.checkpoint();
    Value const owner = found.owner;
    ScriptObject& script = owner.script();
    std::vector<Value> locals(found.handler->localCount);
    Frame frame{.script = &script,
                .outermost = &script.outermost(),
                .literals = script.literals(),
                .locals = locals.data(),
                .me = me,
                .it = me};
    EnteredFrame const entered(evaluator, frame);
    bind();
    executeBlock(evaluator, found.handler->block);
    return std::move(frame.result);
}

Value callPositional(Evaluator& evaluator, FoundHandler const& found, Value const& me,
                     std::span<Value const> arguments) {
    std::span<Parameter const> const parameters = found.handler->positional;
    std::span<Parameter const> const leftOut = parameters.subspan(std::min(arguments.size(), parameters.size()));
    bool const isEnough = std::ranges::all_of(leftOut, &Parameter::isOptional);
    if (arguments.size() > parameters.size() || !isEnough) throw parametersDoNotMatch(arguments, *found.handler);
    return enter(evaluator, found, me, [&] {
        for (std::size_t index = 0; index < parameters.size(); ++index)
            bindParameter(evaluator, parameters[index], index < arguments.size() ? &arguments[index] : nullptr);
    });
}

Value callLabeled(Evaluator& evaluator, FoundHandler const& found, Value const& me, HandlerMessage const& message) {
    HandlerDefinition const& handler = *found.handler;
    std::vector<std::pair<Parameter const*, Value const*>> bindings;
    auto const add = [&](Parameter const& parameter, Value const* given, std::u16string_view label) {
        if (!given && !parameter.isOptional()) throw missingParameter(label, handler.name->spelling);
        bindings.emplace_back(&parameter, given);
    };
    if (handler.direct) add(*handler.direct, message.direct.isNothing() ? nullptr : &message.direct, u"direct");
    for (LabeledParameter const& labeled : handler.labeled) {
        auto const given = std::ranges::find_if(
            message.labeled, [&](auto const& argument) { return isSameName(argument.first, labeled.label); });
        add(labeled.parameter, given == message.labeled.end() ? nullptr : &given->second, labeled.label->spelling);
    }
    return enter(evaluator, found, me, [&] {
        for (auto const& [parameter, given] : bindings)
            bindParameter(evaluator, *parameter, given);
    });
}

Value receiverOf(Evaluator& evaluator, Expression const* receiver, Symbol name) {
    TextContext const& context = evaluator.context();
    Value const named = receiver ? unaskedValue(evaluator, *receiver) : evaluator.frame().it;
    Value meant = isToldTo(named) ? named : resolved(named, context);
    if (isToldTo(meant)) refuseCall(meant, name, context);
    return meant;
}

std::vector<Value> argumentsOf(Evaluator& evaluator, PositionalCall const& call) {
    std::vector<Value> arguments;
    arguments.reserve(call.arguments.size());
    for (Expression const* const argument : call.arguments)
        arguments.push_back(valueOf(evaluator, *argument));
    return arguments;
}

HandlerMessage messageOf(Evaluator& evaluator, LabeledCall const& call) {
    HandlerMessage message;
    if (call.direct) message.direct = valueOf(evaluator, *call.direct);
    for (LabeledArgument const& argument : call.arguments)
        message.labeled.emplace_back(argument.label, valueOf(evaluator, *argument.value));
    return message;
}

// The handler of the parent that a call is handed on to.
FoundHandler parentHandler(Value const& parent, Symbol name) {
    FoundHandler found = findHandler(parent, name);
    if (!found.handler) throw notUnderstood(parent.isNothing() ? Value::currentApplication() : parent, name->spelling);
    return found;
}

} // namespace

FoundHandler findCommandHandler(Value const& script, EventCode event) {
    Value current = script;
    for (int step = 0; step < LongestChain && current.is(ValueKind::Script); ++step) {
        for (HandlerDefinition const* const handler : current.script().definition().commandHandlers)
            if (handler->command->code == event) return {.owner = current, .handler = handler};
        Value const next = current.script().parent();
        current = next;
    }
    return {};
}

Value callCommandHandler(Evaluator& evaluator, FoundHandler const& found, Value const& me,
                         CommandArguments const& arguments) {
    HandlerDefinition const& handler = *found.handler;
    return enter(evaluator, found, me, [&] {
        if (handler.direct)
            bindParameter(evaluator, *handler.direct, arguments.direct.isNothing() ? nullptr : &arguments.direct);
        for (LabeledParameter const& labeled : handler.labeled)
            bindParameter(evaluator, labeled.parameter, arguments.find(labeled.label->code));
    });
}

Value evaluateCall(Evaluator& evaluator, PositionalCall const& call) {
    Value const receiver = receiverOf(evaluator, call.receiver, call.name);
    FoundHandler const found = findHandler(receiver, call.name);
    std::vector<Value> const arguments = argumentsOf(evaluator, call);
    if (!found.handler) throw notUnderstood(receiver, call.name->spelling);
    return callPositional(evaluator, found, receiver, arguments);
}

Value evaluateCall(Evaluator& evaluator, LabeledCall const& call) {
    Value const receiver = receiverOf(evaluator, call.receiver, call.name);
    FoundHandler const found = findHandler(receiver, call.name);
    if (!found.handler) throw notUnderstood(receiver, call.name->spelling);
    return callLabeled(evaluator, found, receiver, messageOf(evaluator, call));
}

Value evaluateContinue(Evaluator& evaluator, ContinueExpression const& passedOn) {
    Expression const& call = *passedOn.call;
    Value const parent = evaluator.frame().script->parent();
    Value const me = evaluator.frame().me;
    if (CommandCall const* const command = call.as<CommandCall>()) {
        FoundHandler const found = findCommandHandler(parent, command->command->code);
        CommandArguments const arguments = commandArguments(evaluator, *command);
        if (found.handler) return callCommandHandler(evaluator, found, me, arguments);
        return performCommand(evaluator, *command->command, arguments);
    }
    if (LabeledCall const* const labeled = call.as<LabeledCall>()) {
        FoundHandler const found = parentHandler(parent, labeled->name);
        return callLabeled(evaluator, found, me, messageOf(evaluator, *labeled));
    }
    if (PositionalCall const* const positional = call.as<PositionalCall>()) {
        FoundHandler const found = parentHandler(parent, positional->name);
        return callPositional(evaluator, found, me, argumentsOf(evaluator, *positional));
    }
    // `continue f`: a name alone is a call without arguments.
    VariableReference const* const variable = call.as<VariableReference>();
    PropertyReference const* const property = call.as<PropertyReference>();
    if (!variable && !property) return valueOf(evaluator, call);
    return callPositional(evaluator, parentHandler(parent, variable ? variable->name : property->name), me, {});
}

Value sendMessage(Evaluator& evaluator, Value const& script, HandlerMessage const& message) {
    FoundHandler const found = findHandler(script, identifierSymbol(message.name));
    if (!found.handler) throw notUnderstood(script, message.name);
    if (found.handler->command) return callCommandHandler(evaluator, found, script, {.direct = message.direct});
    if (!found.handler->isPositional) return callLabeled(evaluator, found, script, message);
    Value const given =
        message.direct.isNothing() ? Value::list() : requireType(message.direct, codes::ListType, evaluator.context());
    // The list may be replaced or changed while the handler runs.
    ValueList const items = given.items();
    return callPositional(evaluator, found, script, items);
}

Value sendEvent(Evaluator& evaluator, Value const& script, EventCode event, CommandArguments const& arguments) {
    FoundHandler const found = findCommandHandler(script, event);
    if (found.handler) return callCommandHandler(evaluator, found, script, arguments);
    CommandTerm const* const command = Terminology::base().commandOf(event);
    throw notUnderstood(script, command ? command->name : rawCommand(event).name);
}

Value callRunHandler(Evaluator& evaluator, ScriptObject& script, std::vector<Value> const& arguments) {
    FoundHandler const found{.owner = script.self(), .handler = script.definition().run};
    return enter(evaluator, found, found.owner, [&] {
        Value const given = Value::list(arguments);
        if (found.handler->direct) bindParameter(evaluator, *found.handler->direct, &given);
    });
}

} // namespace mac::applescript
