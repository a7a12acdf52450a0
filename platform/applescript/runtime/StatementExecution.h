#pragma once

#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// What follows a statement: the next one, the end of the innermost loop, or the end of the handler.
enum class Flow : std::uint8_t { Next, Exit, Return };

// Carries out the statements in the frame that runs; null: none. Errors have the range of the innermost statement or
// expression that they arose in.
Flow executeBlock(Evaluator& evaluator, Statement const* block);

} // namespace mac::applescript
