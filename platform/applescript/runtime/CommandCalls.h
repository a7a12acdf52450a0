#pragma once

#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// Commands: of the standard additions, of the script's own handlers, and of applications.

Value evaluateCommand(Evaluator& evaluator, CommandCall const& call);
// The values of the direct parameter and of the others.
CommandArguments commandArguments(Evaluator& evaluator, CommandCall const& call);
// Carries out a command that no handler of a script takes. Throws -1708 where nobody else takes it either.
Value performCommand(Evaluator& evaluator, CommandTerm const& command, CommandArguments const& arguments);

} // namespace mac::applescript
