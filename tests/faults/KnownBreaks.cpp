#include "tests/faults/KnownBreaks.h"
#include <algorithm>

namespace mac::faults {

std::vector<KnownBreak> const& knownBreaks() {
    static std::vector<KnownBreak> const rows{};
    return rows;
}

std::string joined(std::vector<std::string_view> const& names) {
    std::string text;
    for (std::string_view const name : names)
        text.append(text.empty() ? "" : ", ").append(name);
    return text;
}

KnownBreak const* rowOf(Break const& found) {
    auto const row = std::ranges::find_if(knownBreaks(), [&](KnownBreak const& known) {
        bool const isOperation = std::ranges::any_of(
            known.operations, [&](std::string_view part) { return found.operation.find(part) != std::string::npos; });
        return isOperation && known.promise == found.finding.promise && known.action == found.point.action &&
               std::ranges::find(known.calls, found.call) != known.calls.end() &&
               (!known.volume || known.volume == found.point.volume) && (!known.isOnFUSE || found.isOnFUSE);
    });
    return row == knownBreaks().end() ? nullptr : &*row;
}

} // namespace mac::faults
