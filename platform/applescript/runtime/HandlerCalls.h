#pragma once

#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// Calls of handlers, by name and by the event of a command.

// f(1, 2); f of x given y:1
Value evaluateCall(Evaluator& evaluator, PositionalCall const& call);
Value evaluateCall(Evaluator& evaluator, LabeledCall const& call);
// Hands the call on to the parent; `me` stays who it was.
Value evaluateContinue(Evaluator& evaluator, ContinueExpression const& passedOn);

// From outside of a script. Throw -1708 where neither it nor its parents have the handler.
Value sendMessage(Evaluator& evaluator, Value const& script, HandlerMessage const& message);
Value sendEvent(Evaluator& evaluator, Value const& script, EventCode event, CommandArguments const& arguments);
// The statements outside of handlers, or `on run`, whose parameter takes all arguments as a list.
Value callRunHandler(Evaluator& evaluator, ScriptObject& script, std::vector<Value> const& arguments);

struct FoundHandler {
    // Keeps the script that the handler stands in, which the arguments may replace while they are evaluated. Nothing
    // where there is none.
    Value owner{};
    // Null where there is none.
    HandlerDefinition const* handler{nullptr};
};
// The handler for the event in the script, or in its parents.
FoundHandler findCommandHandler(Value const& script, EventCode event);
Value callCommandHandler(Evaluator& evaluator, FoundHandler const& found, Value const& me,
                         CommandArguments const& arguments);

} // namespace mac::applescript
