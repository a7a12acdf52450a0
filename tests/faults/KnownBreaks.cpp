#include "tests/faults/KnownBreaks.h"
#include <algorithm>

namespace mac::faults {

std::vector<KnownBreak> knownBreaks() { return {}; }

bool isAmong(std::vector<KnownBreak> const& known, Break const& found) {
    return std::ranges::any_of(known, [&](KnownBreak const& row) {
        return found.operation.find(row.operation) != std::string::npos && row.promise == found.finding.promise &&
               row.action == found.point.action;
    });
}

} // namespace mac::faults
