#pragma once

#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// What follows a statement: the next one, the end of the innermost loop, or the end of the handler.
enum class Flow : std::uint8_t { Next, Exit, Return };

// Carries out the statements in the frame that runs; null: none. Errors have the range of the innermost statement or
// expression that they arose in.
Flow executeBlock(Evaluator& evaluator, Statement const* block);

// Sets what the expression means: a variable, property or element, or each of a list or record of them. Throws -10006
// for what cannot be set.
void assign(Evaluator& evaluator, Expression const& target, Value const& value);
// Gives the parameter of a handler its argument; null where the call leaves it out, which only optional ones take.
void bindParameter(Evaluator& evaluator, Parameter const& parameter, Value const* argument);

// Carries out a `set` that adds to the text or list of the same variable, as in `set l to l & {i}`. A text or list
// without other holders grows in place, so that the cost is proportional to what is added. False for other statements,
// of which nothing has been done.
bool executeGrowth(Evaluator& evaluator, SetStatement const& statement);

// Loops. Bounds, counts and lists are evaluated once; Flow::Exit ends with the loop.
Flow executeRepeat(Evaluator& evaluator, RepeatForever const& loop);
Flow executeRepeat(Evaluator& evaluator, RepeatTimes const& loop);
Flow executeRepeat(Evaluator& evaluator, RepeatCondition const& loop);
// Throws -50 for a step of 0, -1700 for a bound that is no whole number.
Flow executeRepeat(Evaluator& evaluator, RepeatFrom const& loop);
// The variable refers to one item of the list after the other.
Flow executeRepeat(Evaluator& evaluator, RepeatIn const& loop);

} // namespace mac::applescript
