#pragma once

#include "tests/faults/Campaign.h"
#include <optional>
#include <string_view>
#include <vector>

namespace mac::faults {

// A promise that an operation does not keep yet. docs/reliability.md says what the rows mean for people. A row that the
// whole campaign, on all file systems, does not need any more fails it.
struct KnownBreak {
    // Part of the names of the operations.
    std::string_view operation;
    Promise promise;
    Action action;
    // The name of the call that goes wrong; "any" for several.
    std::string_view call;
    // Where it is broken: everywhere if nullopt.
    std::optional<Volume> volume;
    std::string_view reason;
};

std::vector<KnownBreak> const& knownBreaks();
// The first row that the finding belongs to; null if there is none.
KnownBreak const* rowOf(Break const& found);

} // namespace mac::faults
