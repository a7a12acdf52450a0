#pragma once

#include "command/CommandLine.h"
#include "command/Copies.h"
#include "command/Outcome.h"
#include "platform/system/items/ItemIdentity.h"
#include <optional>
#include <vector>

namespace framekeeper {

// Whether a verb takes paths one after the other and does something to each.
bool isAction(CommandLine const& line);

// What a verb is applied to, as it was when the command began.
struct Target {
    // Made absolute once, so that no exchanged folder on the way leads elsewhere later.
    NSString path{};
    // The item at the path, a symbolic link itself; nullopt if none could be found.
    std::optional<ItemIdentity> item{};
};

// The targets of the command's paths, in their order.
std::vector<Target> targetsOf(CommandLine const& line);

// Does what the verb says to each of the targets, by the controller's actions, and answers what became of each, in
// their order. Once a signal asks the program to end, the path under way is finished and the others are Interrupted.
//
// An action touches only copies of the companion, and deletes one only if it is the target's very item. What fails is
// logged by the controller.
std::vector<Outcome> act(CommandLine const& line, std::vector<Target> const& targets, Copies const& copies);

} // namespace framekeeper
