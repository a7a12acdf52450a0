#pragma once

#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// Carries out a `set` that adds to the text or list of the same variable, as in `set l to l & {i}`. The text or list
// grows where it lies if nobody else sees it, so that adding costs what is added. False for other statements, of which
// nothing has been done.
bool executeGrowth(Evaluator& evaluator, SetStatement const& statement);

} // namespace mac::applescript
