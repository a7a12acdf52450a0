#pragma once

#include "platform/processes/Processes.h"
#include <optional>
#include <string>
#include <vector>

// The processes by ID and start, for implementations. Any thread.

namespace mac {

// What no two processes have in common while the system runs.
struct ProcessIdentity {
    // In clock ticks since the system's start, as the system counts.
    std::uint64_t startTime{0};
    std::int32_t pid{0};

    bool operator==(ProcessIdentity const&) const = default;
    // In the order of the start; of two in one tick of the clock, by their IDs.
    bool isBefore(ProcessIdentity const& other) const {
        return startTime != other.startTime ? startTime < other.startTime : pid < other.pid;
    }
};

struct RunningProcess {
    ProcessIdentity identity;
    // The program's file in the file system's bytes, without the mark of one that was deleted.
    std::string executable;
};

// Every process whose program this user may see, in the order of their start. One that ends meanwhile may be missing.
std::vector<RunningProcess> runningProcesses();

// Nothing for an ID that no process has, and for one that has ended and is only waited for.
std::optional<RunningProcess> runningProcess(std::int32_t pid);
// The same of this very process.
std::optional<RunningProcess> runningProcess(ProcessIdentity const& identity);

// Nothing for numbers that name none, {0, kNoProcess} among them. Whether the process runs is not asked.
std::optional<ProcessIdentity> identityOf(ProcessSerialNumber const& psn);
ProcessSerialNumber serialNumberOf(ProcessIdentity const& identity);

// Asks the very process to end (SIGTERM), as a user who logs out does. False when it has ended already, or it may not
// be asked.
bool askToEnd(ProcessIdentity const& identity);

} // namespace mac
