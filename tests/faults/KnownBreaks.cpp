#include "tests/faults/KnownBreaks.h"
#include <algorithm>

namespace mac::faults {

std::vector<KnownBreak> const& knownBreaks() {
    using enum Promise;
    using enum Action;
    constexpr std::optional<Volume> everywhere;
    static std::vector<KnownBreak> const rows{
        {{"undo: remove an added login item"},
         AnswerIsTrue,
         Fail,
         {"fstatat", "getdents64", "openat"},
         everywhere,
         "a folder of login items that cannot be read counts as an empty one, so that there is nothing to undo"},
        {{"undo: bring back a login item"},
         AnswerIsTrue,
         Fail,
         {"access", "fstatat", "realpath"},
         everywhere,
         "a program that cannot be looked at is kept in the list of preferences alone, which no desktop starts"},
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
               (!known.volume || known.volume == found.point.volume);
    });
    return row == knownBreaks().end() ? nullptr : &*row;
}

} // namespace mac::faults
