#pragma once

#include "platform/files/aliases/AliasRecord.h"
#include <chrono>
#include <functional>

namespace mac {

// Finding the item of an alias again. Any thread.

struct AliasSearchLimits {
    // How long the volume is searched at most.
    std::chrono::milliseconds most{10'000};
    // The time by which that is measured.
    std::function<std::chrono::steady_clock::time_point()> now{&std::chrono::steady_clock::now};
};

struct FoundAlias {
    std::string path{};
    // The record of the item as it is now, if that differs from the one that was searched by.
    std::optional<AliasRecord> renewed{};
};

// An item of the same kind at the recorded path is the answer, whichever it is; else one at the same place below the
// home folder or on the volume, wherever these are now; else the very item, by its inode number and birth time, in its
// folder or anywhere on the volume. ENOENT if it is not found; ETIMEDOUT if the volume was not searched to its end.
Result<FoundAlias> findAlias(AliasRecord const& record, AliasSearchLimits const& limits = {});

} // namespace mac
