#pragma once

#include "platform/processes/Processes.h"
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The processes by ID and start, for implementations. Any thread.

namespace mac {

// What no two processes have in common while the system runs.
struct ProcessIdentity {
    // In clock ticks since the system's start, as the system counts.
    std::uint64_t startTime{0};
    std::int32_t pid{0};

    bool operator==(ProcessIdentity const&) const = default;
};

struct RunningProcess {
    ProcessIdentity identity;
    // The program's file in the file system's bytes, without the mark of one that was deleted.
    std::string executable;
};

// The IDs of all processes, in their order; who may not be looked at is among them.
std::vector<std::int32_t> processIDs();

// Nothing for an ID that no process has, for one that has ended and is only waited for, and for one whose program this
// user may not see.
std::optional<RunningProcess> runningProcess(std::int32_t pid);
// The same of this very process.
std::optional<RunningProcess> runningProcess(ProcessIdentity const& identity);

// All those, in the order of their start. One that ends meanwhile may be missing.
std::vector<RunningProcess> runningProcesses();

// The file in a bundle that the process runs: its program, or, where that is an interpreter, the script. Links are
// resolved. Nothing for a process that runs from no bundle, or has ended.
std::optional<std::string> programInBundle(RunningProcess const& process);

// Whether the program runs scripts, so that it does not tell what runs.
bool isInterpreter(std::string_view executable);

// The innermost bundle in whose Contents the path lies; empty for none.
std::string_view bundleHolding(std::string_view path);

// Nothing for numbers that name none, {0, kNoProcess} among them. Whether the process runs is not asked.
std::optional<ProcessIdentity> identityOf(ProcessSerialNumber const& psn);
ProcessSerialNumber serialNumberOf(ProcessIdentity const& identity);

// Asks the very process to end (SIGTERM), as a user who logs out does. False when it has ended already, or it may not
// be asked.
bool askToEnd(ProcessIdentity const& identity);

} // namespace mac
