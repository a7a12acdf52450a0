#pragma once

#include "tests/faults/Campaign.h"
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac::faults {

// A promise that an operation does not keep yet. docs/reliability.md says what the rows mean for people. A row that the
// whole campaign, on all file systems, does not need any more fails it.
struct KnownBreak {
    // The name of an operation has one of these parts.
    std::vector<std::string_view> operations;
    Promise promise;
    Action action;
    // The names of the calls that go wrong.
    std::vector<std::string_view> calls;
    // Where it is broken: everywhere if nullopt.
    std::optional<Volume> volume;
    // Broken on FUSE alone; on another file system the same break is a new one.
    bool isOnFUSE;
    std::string_view reason;
};

std::vector<KnownBreak> const& knownBreaks();
// The names with commas between them, for people.
std::string joined(std::vector<std::string_view> const& names);
// The first row that the finding belongs to; null if there is none.
KnownBreak const* rowOf(Break const& found);

} // namespace mac::faults
