#pragma once

#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// The value of the expression in the frame that runs; Nothing where a call within it answers nothing. Errors have the
// range of the innermost expression that they arose in.
Value evaluate(Evaluator& evaluator, Expression const& expression);
// A value there must be: throws -2763 for Nothing.
Value valueOf(Evaluator& evaluator, Expression const& expression);
// Throws what the function throws, with this range where the error has none yet.
template <class Function>
auto withRange(SourceRange range, Function const& function) {
    try {
        return function();
    } catch (ScriptError& error) {
        if (!error.range) error.range = range;
        throw;
    }
}

// Commands: of the standard additions, of the script's own handlers, and of applications.

Value evaluateCommand(Evaluator& evaluator, CommandCall const& call);
// The values of the direct parameter and of the others.
CommandArguments commandArguments(Evaluator& evaluator, CommandCall const& call);
// Carries out a command that no handler of a script takes. Throws -1708 if nothing handles it.
Value performCommand(Evaluator& evaluator, CommandTerm const& command, CommandArguments const& arguments);

// Objects that a script names, and questions about them.

// date "…", of a day where the text says only a time. Throws -30720 for text that is no date.
Value evaluateDate(Evaluator& evaluator, DateExpression const& date);
// Throws -43 for an alias of an item that is not there.
Value evaluateFile(Evaluator& evaluator, FileReference const& file);
Value evaluateApplication(Evaluator& evaluator, ApplicationReference const& application);
// `x is running`, `x is not running`. An unknown application does not run.
Value evaluateRunning(Evaluator& evaluator, RunningTest const& test);
// The number of elements. Throws -1708 for what has none.
Value evaluateCount(Evaluator& evaluator, CountExpression const& count);

// `item i of l` where l is a variable with a list and i is made of numbers and variables: what sorting and searching do
// all the time. Null for whatever else it may be, which goes the long way, with the same answer. The item is in its
// place until something else is evaluated.
Value* plainItem(Evaluator& evaluator, ElementReference const& element);

} // namespace mac::applescript
