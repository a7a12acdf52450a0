#include "platform/applescript/language/StackRoom.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/SourceForm.h"
#include <algorithm>
#include <span>

namespace mac::applescript {

namespace {

// A chain of parents that closes is a script's mistake; it has an end here.
constexpr int LongestChain = 1000;

std::u16string patternText(Node const& pattern) {
    if (pattern.kind == NodeKind::Variable) return pattern.name->spelling;
    std::u16string text;
    for (Node const* const part : pattern.list)
        text += (text.empty() ? u"" : u", ") + patternText(*part);
    return u"{" + text + u"}";
}

ScriptError parametersDoNotMatch(std::span<Value const> arguments, HandlerDefinition const& handler) {
    std::u16string parameters;
    for (Node const* const pattern : handler.positional)
        parameters += (parameters.empty() ? u"" : u", ") + patternText(*pattern);
    return {.number = errors::ParametersDoNotMatch,
            .message = sourceForm(Value::list({arguments.begin(), arguments.end()})) +
                       u" doesn’t match the parameters {" + parameters + u"} for " + handler.name->spelling + u"."};
}

bool isOptional(Node const* pattern) { return pattern->kind == NodeKind::Variable && pattern->b; }

} // namespace

Value const* CommandArguments::find(Code code) const {
    auto const found = std::ranges::find_if(named, [&](auto const& argument) { return argument.first == code; });
    return found == named.end() ? nullptr : &found->second;
}

Evaluator::FoundHandler Evaluator::findHandler(Value const& start, Symbol name) const {
    Value current = start;
    for (int step = 0; step < LongestChain && current.is(ValueKind::Script); ++step) {
        ScriptObject& script = current.script();
        if (HandlerDefinition const* const handler = script.handlerNamed(name))
            return {.owner = &script, .handler = handler, .kept = current};
        // A property that holds a handler is called like one.
        Value const* const held = script.propertyNamed(name);
        if (held && held->is(ValueKind::Handler))
            return {.owner = &held->handler().owner.script(),
                    .handler = held->handler().definition,
                    .kept = held->handler().owner};
        Value const next = script.parent();
        current = next;
    }
    return {};
}

Evaluator::FoundHandler Evaluator::findCommandHandler(Value const& start, EventCode event) const {
    Value current = start;
    for (int step = 0; step < LongestChain && current.is(ValueKind::Script); ++step) {
        ScriptObject& script = current.script();
        for (HandlerDefinition const* const handler : script.definition().commandHandlers)
            if (handler->command->code == event) return {.owner = &script, .handler = handler, .kept = current};
        Value const next = script.parent();
        current = next;
    }
    return {};
}

// Runs a handler in a frame of its own; `bind` gives its parameters their values.
Value Evaluator::enter(FoundHandler found, Value const& me, std::function<void()> const& bind) {
    requireStackRoom();
    checkpoint();
    Value const owner = found.owner->self();
    std::vector<Value> locals(found.handler->localCount);
    Frame frame;
    frame.lexical = found.owner;
    frame.root = &found.owner->outermost();
    frame.handler = found.handler;
    frame.me = frame.it = me;
    frame.locals = locals.data();
    Frame* const outer = std::exchange(m_frame, &frame);
    struct Leave {
        Frame*& current;
        Frame* outer;
        ~Leave() { current = outer; }
    } const leave{m_frame, outer};
    bind();
    executeBlock(found.handler->block);
    return std::move(frame.result);
}

Value Evaluator::callPositional(FoundHandler found, Value const& me, std::span<Value const> arguments) {
    std::vector<Node*> const& patterns = found.handler->positional;
    std::span<Node* const> const leftOut = std::span(patterns).subspan(std::min(arguments.size(), patterns.size()));
    bool const isEnough = std::ranges::all_of(leftOut, &isOptional);
    if (arguments.size() > patterns.size() || !isEnough) throw parametersDoNotMatch(arguments, *found.handler);
    return enter(found, me, [&] {
        for (std::size_t index = 0; index < patterns.size(); ++index)
            bindParameter(*patterns[index], index < arguments.size() ? &arguments[index] : nullptr);
    });
}

// `given` is null where the call says nothing of an optional parameter.
void Evaluator::bindParameter(Node const& pattern, Value const* given) {
    if (!given && !isOptional(&pattern)) return;
    Value const value = given ? *given : valueOf(*pattern.b);
    bool const isTyped = pattern.kind == NodeKind::Variable && !pattern.codes.empty();
    assign(pattern, isTyped ? requireOneOf(value, pattern.codes, context()) : value);
}

Value Evaluator::receiverOf(Node const& node) {
    Value const named = node.a ? unaskedValue(*node.a) : m_frame->it;
    Value const receiver = isToldTo(named) ? named : resolved(named, context());
    if (isToldTo(receiver)) refuseCall(receiver, node.name, context());
    return receiver;
}

Value Evaluator::evaluateCall(Node const& node) {
    Value const receiver = receiverOf(node);
    FoundHandler const found = findHandler(receiver, node.name);
    std::vector<Value> arguments;
    arguments.reserve(node.list.size());
    for (Node const* const argument : node.list)
        arguments.push_back(valueOf(*argument));
    if (!found.handler) throw notUnderstood(receiver, node.name->spelling);
    return callPositional(found, receiver, arguments);
}

Value Evaluator::evaluateLabeledCall(Node const& node) {
    Value const receiver = receiverOf(node);
    FoundHandler const found = findHandler(receiver, node.name);
    if (!found.handler) throw notUnderstood(receiver, node.name->spelling);
    return callLabeled(found, receiver, node);
}

Value Evaluator::callLabeled(FoundHandler found, Value const& me, Node const& node) {
    HandlerMessage message;
    if (node.b) message.direct = valueOf(*node.b);
    for (std::size_t index = 0; index < node.names.size(); ++index)
        message.labeled.emplace_back(node.names[index], valueOf(*node.list[index]));
    return callLabeled(found, me, message);
}

Value Evaluator::callCommandHandler(FoundHandler found, Value const& me, CommandArguments const& arguments) {
    HandlerDefinition const& handler = *found.handler;
    return enter(found, me, [&] {
        if (handler.direct) bindParameter(*handler.direct, arguments.direct.isNothing() ? nullptr : &arguments.direct);
        for (auto const& [label, pattern] : handler.labeled)
            bindParameter(*pattern, arguments.find(label->code));
    });
}

// An application gets the specifiers of its objects as they are written.
CommandArguments Evaluator::argumentsOf(Node const& node, bool isForApplication) {
    auto const valueOfArgument = [&](Node const& argument) {
        if (!isForApplication) return valueOf(argument);
        Value const value = unaskedValue(argument);
        // A reference of the script's own means nothing to others.
        return isToldTo(value) ? value : resolved(value, context());
    };
    CommandArguments arguments;
    if (node.a) arguments.direct = valueOfArgument(*node.a);
    for (std::size_t index = 0; index < node.codes.size(); ++index)
        arguments.named.emplace_back(node.codes[index], valueOfArgument(*node.list[index]));
    return arguments;
}

Value Evaluator::exists(Node const& node) {
    if (!node.a) throw missingParameter(u"direct", u"exists");
    Value meant;
    try {
        meant = unaskedValue(*node.a);
        if (meant.is(ValueKind::File) && isToldTo(m_frame->it)) meant = fileInApplication(meant, m_frame->it);
        if (!isInApplication(meant)) meant = resolved(meant, context());
    } catch (ScriptError const& error) {
        bool const isAbsent = error.number == errors::CannotGet && error.application.empty() && !isToldTo(error.from);
        if (!isAbsent) throw;
        return Value::boolean(false);
    }
    if (meant.is(ValueKind::Application)) return Value::boolean(applicationOf(meant.application()) != nullptr);
    return Value::boolean(!isInApplication(meant) || existsInApplication(meant, context()));
}

// One may have taken long.
Value Evaluator::evaluateCommand(Node const& node) {
    Value answer = carryOut(node);
    stopIfAsked();
    return answer;
}

Value Evaluator::carryOut(Node const& node) {
    if (node.command->code == eventOf("coredoex")) return exists(node);
    bool const isAddition = additionFor(node.command->code) != nullptr;
    CommandArguments const arguments = argumentsOf(node, !isAddition);
    Value const target = isAddition ? Value() : commandTarget(arguments);
    if (!target.isNothing())
        return performInApplication(
            *this, target,
            {.term = *node.command, .direct = arguments.direct, .named = arguments.named, .subject = m_frame->it});
    Value const receiver = m_frame->it.is(ValueKind::Script) ? m_frame->it : m_frame->me;
    // A command to a script goes to that script.
    Value const direct = isInApplication(arguments.direct) ? Value() : resolved(arguments.direct, context());
    FoundHandler found;
    bool const isToScript = direct.is(ValueKind::Script);
    if (isToScript) {
        found = findCommandHandler(direct, node.command->code);
        if (node.command->code == eventOf("aevtoapp") && (!found.handler || found.owner != &direct.script()))
            return runScript(direct.script(), {});
        if (found.handler) return callCommandHandler(found, direct, {.named = arguments.named});
    }
    found = findCommandHandler(receiver, node.command->code);
    if (found.handler) return callCommandHandler(found, receiver, arguments);
    return performCommand(*node.command, arguments, node);
}

// The application that what the command is about lies in, else the one that is told something. Nothing for none.
Value Evaluator::commandTarget(CommandArguments const& arguments) const {
    if (isToldTo(arguments.direct)) return arguments.direct;
    return isToldTo(m_frame->it) ? m_frame->it : Value();
}

Value Evaluator::performCommand(CommandTerm const& command, CommandArguments const& arguments, Node const& node) {
    if (Addition const addition = additionFor(command.code)) {
        if (command.direct == DirectParameter::Required && arguments.direct.isNothing())
            throw missingParameter(u"direct", command.name);
        if (m_options.computesOnly && hasEffects(command.code)) throw plainError(errors::AccessNotAllowed);
        return addition(*this, arguments);
    }
    Value const told = commandTarget(arguments);
    if (!told.isNothing())
        return performInApplication(
            *this, told,
            {.term = command, .direct = arguments.direct, .named = arguments.named, .subject = m_frame->it});
    Value const target = resolved(arguments.direct.isNothing() ? m_frame->it : arguments.direct, context());
    if (command.code == eventOf("aevtoapp") && target.is(ValueKind::Script) && node.a == nullptr)
        return runScript(target.script(), {});
    throw notUnderstood(target, command.name);
}

// Hands the message on to the parent; `me` stays who it was.
Value Evaluator::evaluateContinue(Node const& node) {
    Node const& call = *node.a;
    Value const parent = m_frame->lexical->parent();
    if (call.kind == NodeKind::Command) {
        FoundHandler const found = findCommandHandler(parent, call.command->code);
        CommandArguments const arguments = argumentsOf(call);
        if (found.handler) return callCommandHandler(found, m_frame->me, arguments);
        return performCommand(*call.command, arguments, call);
    }
    Symbol const name = call.name;
    FoundHandler const found = name ? findHandler(parent, name) : FoundHandler();
    if (!found.handler) {
        if (!name) return valueOf(call);
        throw notUnderstood(parent.isNothing() ? Value::currentApplication() : parent, name->spelling);
    }
    if (call.kind == NodeKind::LabeledCall) return callLabeled(found, m_frame->me, call);
    std::vector<Value> arguments;
    for (Node const* const argument : call.list)
        arguments.push_back(valueOf(*argument));
    return callPositional(found, m_frame->me, arguments);
}

Value Evaluator::callLabeled(FoundHandler found, Value const& me, HandlerMessage const& message) {
    HandlerDefinition const& handler = *found.handler;
    std::vector<std::pair<Node const*, Value const*>> bindings;
    auto const bind = [&](Node const* pattern, Value const* given, std::u16string_view label) {
        if (!given && !isOptional(pattern)) throw missingParameter(label, handler.name->spelling);
        bindings.emplace_back(pattern, given);
    };
    if (handler.direct) bind(handler.direct, message.direct.isNothing() ? nullptr : &message.direct, u"direct");
    for (auto const& labeled : handler.labeled) {
        auto const given = std::ranges::find_if(
            message.labeled, [&](auto const& parameter) { return isSameName(parameter.first, labeled.first); });
        bind(labeled.second, given == message.labeled.end() ? nullptr : &given->second, labeled.first->spelling);
    }
    return enter(found, me, [&] {
        for (auto const& [pattern, given] : bindings)
            bindParameter(*pattern, given);
    });
}

Value Evaluator::callHandler(ScriptObject& script, HandlerMessage const& message) {
    Value const me = script.self();
    FoundHandler const found = findHandler(me, identifierSymbol(message.name));
    if (!found.handler) throw notUnderstood(me, message.name);
    if (found.handler->command) return callCommandHandler(found, me, {.direct = message.direct});
    if (!found.handler->isPositional) return callLabeled(found, me, message);
    Value const given =
        message.direct.isNothing() ? Value::list() : requireType(message.direct, codeOf("list"), context());
    return callPositional(found, me, given.items());
}

Value Evaluator::handleEvent(ScriptObject& script, EventCode event, CommandArguments const& arguments) {
    Value const me = script.self();
    FoundHandler const found = findCommandHandler(me, event);
    if (found.handler) return callCommandHandler(found, me, arguments);
    CommandTerm const* const command = Terminology::base().commandOf(event);
    throw notUnderstood(me, command ? command->name : rawCommand(event).name);
}

Value Evaluator::runScript(ScriptObject& script, std::vector<Value> const& arguments) {
    FoundHandler const found{.owner = &script, .handler = script.definition().run};
    return enter(found, script.self(), [&] {
        if (!found.handler->direct) return;
        Node const& pattern = *found.handler->direct;
        // Given parameters, on run argv gets them all.
        assign(pattern, Value::list(arguments));
    });
}

} // namespace mac::applescript
