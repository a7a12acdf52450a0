#include "tests/faults/KnownBreaks.h"
#include <algorithm>

namespace mac::faults {

std::vector<KnownBreak> const& knownBreaks() {
    constexpr std::string_view unrecognised =
        "on FUSE the sidecar is not put back when what follows its writing fails: the new value is there although "
        "failure "
        "was said; perhaps a sidecar that was just written does not look as it was left";
    static std::vector<KnownBreak> const rows{
        {.operations = {"set a large attribute"},
         .promise = Promise::AnswerIsTrue,
         .action = Action::Fail,
         .calls = {"removexattr"},
         .volume = std::nullopt,
         .isOnFUSE = true,
         .reason = unrecognised},
        {.operations = {"add a large attribute to the sidecar"},
         .promise = Promise::AnswerIsTrue,
         .action = Action::Fail,
         .calls = {"fsync"},
         .volume = std::nullopt,
         .isOnFUSE = true,
         .reason = unrecognised},
        {.operations = {"add a large attribute to the sidecar"},
         .promise = Promise::ItemIsWhole,
         .action = Action::Fail,
         .calls = {"fsync"},
         .volume = std::nullopt,
         .isOnFUSE = true,
         .reason = unrecognised},
        {.operations = {"path: copy a file into a folder and replace"},
         .promise = Promise::NoLeftovers,
         .action = Action::Fail,
         .calls = {"openat", "unlinkat"},
         .volume = std::nullopt,
         .isOnFUSE = true,
         .reason =
             "on FUSE, once a call goes on failing, a temporary name stays that the next writing does not remove; "
             "not explained yet"},
    };
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
