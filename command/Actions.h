#pragma once

#include "command/CommandLine.h"
#include "command/Copies.h"
#include "command/Outcome.h"
#include <vector>

namespace framekeeper {

// Whether a verb takes paths one after the other and does something to each.
bool isAction(CommandLine const& line);

// Does what the verb says to each of the paths, by the controller's actions, and answers what became of each, in their
// order. Once a signal asks the program to end, the path under way is finished and the others are Interrupted.
//
// Nothing but a copy of the companion is touched. What fails is logged by the controller.
std::vector<Outcome> act(CommandLine const& line, Copies const& copies);

} // namespace framekeeper
