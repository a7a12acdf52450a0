#pragma once

#include "platform/applescript/runtime/Evaluator.h"
#include "platform/foundation/running/UserInterface.h"

namespace mac::applescript::additions {

// What commands that ask the person at the screen have in common. Main thread.

// Throws -1713 if this program has no screen.
UserInterface& requireInterface();

// The key of a record that a command answers.
Symbol keyOf(Code code);
// Parameters; empty and false if they are not given.
std::u16string textAt(CommandArguments const& arguments, Code code, TextContext const& context);
bool flagAt(CommandArguments const& arguments, Code code, TextContext const& context);
// The items of a list as text; a single value counts as a list of itself.
std::vector<std::u16string> textsIn(Value const& list, TextContext const& context);

} // namespace mac::applescript::additions
