#pragma once

#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// `item i of l` where l is a variable with a list and i is made of numbers and variables: what sorting and searching do
// all the time. Null for whatever else it may be, which goes the long way, with the same answer. The item is in its
// place until something else is evaluated.
Value* plainItem(Evaluator& evaluator, ElementReference const& element);

} // namespace mac::applescript
