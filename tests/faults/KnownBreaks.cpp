#include "tests/faults/KnownBreaks.h"
#include <algorithm>

namespace mac::faults {

std::vector<KnownBreak> const& knownBreaks() {
    using enum Promise;
    using enum Action;
    constexpr std::optional<Volume> everywhere;
    constexpr std::optional<Volume> inSteps = Volume::WithoutExclusiveRename;
    constexpr std::string_view owners =
        "an owner or list that the system refuses is not kept, and fewer users may read";
    constexpr std::string_view beside =
        "a value that the volume refuses goes to the sidecar, where the library finds it";
    constexpr std::string_view record =
        "the record of an item that has left the trash may stay; the next emptying takes it";
    constexpr std::string_view aside =
        "what could not be removed of the replaced item keeps the temporary name that the error tells";
    constexpr std::string_view placeholder = "a link to the item has the new name until the item has it";
    constexpr std::string_view both = "a file whose first name cannot go keeps both where renaming takes steps";
    static std::vector<KnownBreak> const rows{
        {"", AnswerIsTrue, Fail, "fchown", everywhere, owners},
        {"", ItemIsWhole, Fail, "fchown", everywhere, owners},
        {"", AnswerIsTrue, Fail, "setxattr", everywhere, beside},
        {"", ItemIsWhole, Fail, "setxattr", everywhere, owners},
        {"put back", AnswerIsTrue, Fail, "unlinkat", everywhere, record},
        {"empty the trash", AnswerIsTrue, Fail, "unlinkat", everywhere, record},
        {"into a folder and replace", NoLeftovers, Fail, "any", everywhere, aside},
        {"into a folder and replace", NoLeftovers, Kill, "any", everywhere, aside},
        {"into a folder and replace", ItemIsWhole, Kill, "any", everywhere, aside},
        {"into a folder and replace", ItemIsWhole, Fail, "any", everywhere, aside},
        {"and replace", ItemIsWhole, Fail, "unlinkat", everywhere, both},
        {"", ItemIsWhole, Kill, "any", inSteps, placeholder},
    };
    return rows;
}

KnownBreak const* rowOf(Break const& found) {
    auto const row = std::ranges::find_if(knownBreaks(), [&](KnownBreak const& known) {
        return found.operation.find(known.operation) != std::string::npos && known.promise == found.finding.promise &&
               known.action == found.point.action && (known.call == "any" || known.call == found.call) &&
               (!known.volume || known.volume == found.point.volume);
    });
    return row == knownBreaks().end() ? nullptr : &*row;
}

} // namespace mac::faults
