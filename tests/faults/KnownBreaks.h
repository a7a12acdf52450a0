#pragma once

#include "tests/faults/Campaign.h"
#include <string_view>
#include <vector>

namespace mac::faults {

// A promise that an operation does not keep yet. Each row is a defect of the product that awaits its mend; docs/
// reliability.md says what that means for people.
struct KnownBreak {
    // Part of the names of the operations.
    std::string_view operation;
    Promise promise;
    Action action;
};

std::vector<KnownBreak> knownBreaks();
bool isAmong(std::vector<KnownBreak> const& known, Break const& found);

} // namespace mac::faults
