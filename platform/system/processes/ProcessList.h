#pragma once

#include <compare>
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

    // The order of their start. Of two that started in one tick of the clock the lower ID comes first.
    // NOLINTNEXTLINE(modernize-use-nullptr): it takes the comparison's own 0 for a pointer
    auto operator<=>(ProcessIdentity const&) const = default;
};

struct RunningProcess {
    ProcessIdentity identity;
    // The program's file in the file system's bytes, without the mark of one that was deleted.
    std::string executable;
};

// Nothing for an ID that no process has, for one that has ended and is only waited for, and for one whose program this
// user may not see.
std::optional<RunningProcess> runningProcess(std::int32_t pid);
// The same of this very process.
std::optional<RunningProcess> runningProcess(ProcessIdentity const& identity);

// All those, in the order of their start. One that ends meanwhile may be missing.
std::vector<RunningProcess> runningProcesses();

// Whether some process has the ID, also one that has ended and is only waited for. Next to no work.
bool isIDInUse(std::int32_t pid);

// The words that the process was called with, and its environment ("NAME=value") as that was when it began: at most
// 8 MiB of them. Nothing where they may not be read.
std::optional<std::vector<std::string>> argumentsOf(std::int32_t pid);
std::optional<std::vector<std::string>> environmentOf(std::int32_t pid);

// The file that tells what the process runs: its executable or, where that is an interpreter outside of any bundle, the
// script, links resolved, as far as its arguments tell.
std::string programOf(RunningProcess const& process);

// Whether the program runs scripts, so that it does not tell what runs.
bool isInterpreter(std::string_view executable);

// The script among the words of a command line, the interpreter's file being the first; the word as it stands. Nothing
// where the program is no interpreter, or no script can be told.
std::optional<std::string> scriptInCommand(std::string_view executable, std::vector<std::string> const& words);

// The innermost bundle in whose Contents the path lies; empty for none.
std::string_view bundleHolding(std::string_view path);

// Asks the very process to end (SIGTERM), as a user who logs out does. False when it has ended already, or it may not
// be asked.
bool askToEnd(ProcessIdentity const& identity);

} // namespace mac
