#include "platform/processes/SerialNumbers.h"
#include <unistd.h>

namespace mac {

namespace {

constexpr int ProcessIDBits = 22;
constexpr std::uint64_t ProcessIDMask = (std::uint64_t{1} << ProcessIDBits) - 1;

} // namespace

// The ID in the lower bits and the start above them. The start counts from 1, which keeps clear of the numbers with a
// meaning of their own.
std::optional<ProcessIdentity> identityOf(ProcessSerialNumber const& psn) {
    std::uint64_t const number = std::uint64_t{psn.highLongOfPSN} << 32 | psn.lowLongOfPSN;
    if (psn == ProcessSerialNumber{0, kCurrentProcess}) {
        std::optional<RunningProcess> const self = runningProcess(::getpid());
        return self ? std::optional(self->identity) : std::nullopt;
    }
    if (number >> ProcessIDBits == 0) return std::nullopt;
    return ProcessIdentity{(number >> ProcessIDBits) - 1, static_cast<std::int32_t>(number & ProcessIDMask)};
}

ProcessSerialNumber serialNumberOf(ProcessIdentity const& identity) {
    std::uint64_t const number =
        (identity.startTime + 1) << ProcessIDBits | (static_cast<std::uint64_t>(identity.pid) & ProcessIDMask);
    return {static_cast<std::uint32_t>(number >> 32), static_cast<std::uint32_t>(number)};
}

} // namespace mac
