#pragma once

#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// Objects that a script names, and questions about them.

// date "…", of a day where the text says only a time. Throws -30720 for text that is no date.
Value evaluateDate(Evaluator& evaluator, DateExpression const& date);
// Throws -43 for an alias of an item that is not there.
Value evaluateFile(Evaluator& evaluator, FileReference const& file);
Value evaluateApplication(Evaluator& evaluator, ApplicationReference const& application);
// `x is running`, `x is not running`. An application that nobody knows does not run.
Value evaluateRunning(Evaluator& evaluator, RunningTest const& test);
// The number of elements. Throws -1708 for what has none.
Value evaluateCount(Evaluator& evaluator, CountExpression const& count);

} // namespace mac::applescript
