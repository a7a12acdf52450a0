#pragma once

#include "tests/faults/Fixture.h"
#include <array>
#include <cstddef>
#include <cstdint>

// What a power loss would leave of an operation. The model: names and their removal reach the disk in the order in
// which they were made, as on a file system with a journal; data reaches it when the file or the volume is flushed, and
// is lost before. So after each call that changes something, every name of an item must lead to data that is flushed,
// and an item may go from one volume only once its copy, and the copy's name, are flushed on the other.

namespace mac::faults {

struct PowerLossRecord {
    // Calls after which the power may have failed.
    std::uint64_t prefixes{0};
    // The first of them that leaves neither the old nor the new; empty if there is none.
    std::array<char, 256> finding{};
};

// Begins to record in this process; all must outlive it.
void recordPowerLoss(Fixture const& fixture, Snapshot const& before, PowerLossRecord& record);
// Records one call; for Plan::passed.
void tellPowerLoss(char const* name, std::array<long, 6> const& arguments);

} // namespace mac::faults
