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

} // namespace mac::applescript
