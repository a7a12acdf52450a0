#include "tests/faults/KnownBreaks.h"
#include <algorithm>

namespace mac::faults {

namespace {

using Names = std::vector<std::string_view>;

} // namespace

std::vector<KnownBreak> const& knownBreaks() {
    using enum Promise;
    using enum Action;
    constexpr std::optional<Volume> everywhere;
    constexpr std::string_view owners =
        "an owner or list that the system refuses is not kept, and fewer users may read";
    constexpr std::string_view beside =
        "a value that the volume refuses goes to the sidecar, where the library finds it";
    constexpr std::string_view record =
        "the record of an item that has left the trash may stay; the next emptying takes it";
    constexpr std::string_view stray = "a sidecar that cannot be removed stays: its item is gone";
    constexpr std::string_view aside =
        "what could not be removed of the replaced item keeps the temporary name that the error tells";
    constexpr std::string_view both = "a file whose first name cannot go keeps both where renaming takes steps";
    constexpr std::string_view unexplained = "not yet explained: an item is neither old nor new under its name";
    Names const copies{"copy a file", "copy a folder", "path: copy", "duplicate a file and replace"};
    Names const sidecars{"take over the information", "exchange two files", "set a comment"};
    Names const writing{"write a file that exists", "write a property list", "create a file that exists"};
    Names const beginning{"fstatat", "getrandom", "linkat", "openat", "statx", "unlinkat"};
    Names const removing{"close",  "fstatat",  "getdents64", "getrandom", "linkat",
                         "openat", "renameat", "renameat2",  "statx",     "unlinkat"};
    static std::vector<KnownBreak> const rows{
        {copies, AnswerIsTrue, Fail, {"fchown"}, everywhere, owners},
        {{"to a second volume"}, AnswerIsTrue, Fail, {"fchown"}, everywhere, owners},
        {{"to a second volume"}, ItemIsWhole, Fail, {"fchown"}, everywhere, owners},
        {sidecars, AnswerIsTrue, Fail, {"fchown"}, everywhere, owners},
        {{"change an icon"}, AnswerIsTrue, Fail, {"fchown"}, everywhere, owners},
        {writing, AnswerIsTrue, Fail, {"fchown", "setxattr"}, everywhere, owners},
        {writing, ItemIsWhole, Fail, {"fchown", "setxattr"}, everywhere, owners},
        {sidecars, AnswerIsTrue, Fail, {"setxattr"}, everywhere, beside},
        {{"take over the attributes", "make an alias file", "make folders like others"},
         AnswerIsTrue,
         Fail,
         {"setxattr"},
         everywhere,
         beside},
        {{"put back", "empty the trash"}, AnswerIsTrue, Fail, {"unlinkat"}, everywhere, record},
        {{"delete an object with its sidecar"},
         AnswerIsTrue,
         Fail,
         {"getrandom", "openat", "renameat", "statx", "unlinkat"},
         everywhere,
         stray},
        {{"into a folder and replace"}, NoLeftovers, Fail, removing, everywhere, aside},
        {{"into a folder and replace"}, NoLeftovers, Kill, removing, everywhere, aside},
        {{"into a folder and replace"}, ItemIsWhole, Kill, beginning, everywhere, aside},
        {{"into a folder and replace"}, ItemIsWhole, Fail, beginning, everywhere, aside},
        {{"into a folder and replace"}, ItemIsWhole, Fail, {"renameat"}, Volume::WithoutExclusiveRename, unexplained},
        {{"and replace"}, ItemIsWhole, Fail, {"unlinkat"}, everywhere, both},
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
