#pragma once

#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// Sets what the expression means: a variable, property or element, or each of a list or record of them. Throws -10006
// for what cannot be set.
void assign(Evaluator& evaluator, Expression const& target, Value const& value);
// Gives the parameter of a handler its argument; null where the call leaves it out, which only optional ones take.
void bindParameter(Evaluator& evaluator, Parameter const& parameter, Value const* argument);

} // namespace mac::applescript
