#pragma once

#include "platform/applescript/runtime/StatementExecution.h"

namespace mac::applescript {

// Loops. Bounds, counts and lists are evaluated once; Flow::Exit ends with the loop.
Flow executeRepeat(Evaluator& evaluator, RepeatForever const& loop);
Flow executeRepeat(Evaluator& evaluator, RepeatTimes const& loop);
Flow executeRepeat(Evaluator& evaluator, RepeatCondition const& loop);
// Throws -50 for a step of 0, -1700 for a bound that is no whole number.
Flow executeRepeat(Evaluator& evaluator, RepeatFrom const& loop);
// The variable refers to one item of the list after the other.
Flow executeRepeat(Evaluator& evaluator, RepeatIn const& loop);

} // namespace mac::applescript
