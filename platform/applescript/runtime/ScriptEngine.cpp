#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScriptObject.h"
#include <new>

namespace mac::applescript {

namespace {

ScriptError outOfMemory() { return plainError(errors::OutOfMemory); }

} // namespace

TerminologySource terminologySource() { return &terminologyOfApplication; }

EngineState& engineState() {
    static EngineState state;
    return state;
}

std::shared_ptr<SyntaxTree> parsedWithinScript(std::u16string_view source) {
    try {
        return ScriptParser(source, terminologySource()).parse();
    } catch (SyntaxError const& mistake) {
        throw ScriptError{.number = mistake.number, .message = mistake.message};
    }
}

CompiledScript::~CompiledScript() {
    if (m_script.isNothing()) return;
    m_script = Value();
    ContainerObject::collectCircles();
}

std::optional<CompiledScript> CompiledScript::compile(std::u16string_view source, ScriptError& error) {
    try {
        return CompiledScript(ScriptParser(source, terminologySource()).parse());
    } catch (SyntaxError const& mistake) {
        error = errorOf(mistake);
    } catch (std::bad_alloc const&) {
        error = outOfMemory();
    }
    error.isSyntax = true;
    if (!error.range) error.range = SourceRange{.start = 0, .end = static_cast<std::uint32_t>(source.size())};
    return {};
}

ScriptOutcome CompiledScript::run(RunOptions const& options, std::vector<Value> const& arguments) {
    return perform(options,
                   [&](Evaluator& evaluator, ScriptObject& script) { return evaluator.runScript(script, arguments); });
}

ScriptOutcome CompiledScript::call(RunOptions const& options, HandlerMessage const& message) {
    return perform(options,
                   [&](Evaluator& evaluator, ScriptObject& script) { return evaluator.callHandler(script, message); });
}

ScriptOutcome CompiledScript::handle(RunOptions const& options, EventCode event, CommandArguments const& arguments) {
    return perform(options, [&](Evaluator& evaluator, ScriptObject& script) {
        return evaluator.handleEvent(script, event, arguments);
    });
}

ScriptOutcome CompiledScript::perform(RunOptions const& options, Action const& action) {
    ScriptOutcome outcome;
    EngineState& state = engineState();
    unsigned const considered = state.text.considered;
    state.text.asksApplications = !options.computesOnly;
    try {
        RunLimits const limits(options.cancelled, options.seconds);
        Evaluator evaluator(state, options);
        if (m_script.isNothing()) m_script = evaluator.load(m_tree);
        outcome.value = action(evaluator, m_script.script());
    } catch (ScriptError const& error) {
        outcome.error = error;
    } catch (ScriptStopped const& stopped) {
        outcome.error = stopped.error;
    } catch (std::bad_alloc const&) {
        outcome.error = outOfMemory();
    }
    state.text.considered = considered;
    if (!outcome.error) return outcome;
    if (outcome.error->message.empty()) outcome.error->message = messageOfNumber(outcome.error->number);
    if (!outcome.error->range) outcome.error->range = SourceRange{};
    return outcome;
}

} // namespace mac::applescript
