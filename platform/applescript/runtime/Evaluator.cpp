#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/HandlerCalls.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScriptInstances.h"
#include <algorithm>

namespace mac::applescript {

namespace {

// How often a running script looks whether it is to stop, where it carries out no commands.
constexpr unsigned StepsBetweenLooks = 256;

} // namespace

Value const* CommandArguments::find(Code code) const {
    auto const found = std::ranges::find_if(named, [&](auto const& argument) { return argument.first == code; });
    return found == named.end() ? nullptr : &found->second;
}

Evaluator::Evaluator(EngineState& state, RunOptions const& options)
    : m_state(state), m_options(options), m_lowestStackAddress(lowestStackAddress()) {}

void Evaluator::checkpoint() {
    if (++m_steps % StepsBetweenLooks == 0) stopIfAsked();
}

void Evaluator::stopIfAsked() { stopRunIfAsked(); }

Value Evaluator::load(std::shared_ptr<SyntaxTree> const& tree) {
    return instantiate(*this, *tree->top, loadedTree(tree), nullptr);
}

Value Evaluator::runScript(ScriptObject& script, std::vector<Value> const& arguments) {
    return callRunHandler(*this, script, arguments);
}

Value Evaluator::callHandler(ScriptObject& script, HandlerMessage const& message) {
    return sendMessage(*this, script.self(), message);
}

Value Evaluator::handleEvent(ScriptObject& script, EventCode event, CommandArguments const& arguments) {
    return sendEvent(*this, script.self(), event, arguments);
}

} // namespace mac::applescript
