#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The processes by ID and start, for implementations. Any thread, but for KnownProcesses.

namespace mac {

// Identifies one process as long as the system runs. Another process that gets the same ID within the same clock tick
// would be identified alike; that is why an identity is only told once the tick of its start is over.
struct ProcessIdentity {
    // In clock ticks since the system's start, 100 a second.
    std::uint64_t startTime{0};
    std::int32_t pid{0};

    // The order of their start. Of two that started in one tick of the clock the lower ID comes first.
    // NOLINTNEXTLINE(modernize-use-nullptr): it takes the comparison's own 0 for a pointer
    auto operator<=>(ProcessIdentity const&) const = default;
};

struct RunningProcess {
    ProcessIdentity identity;
    // The path of the program in the file system's bytes, without the mark of a deleted file.
    std::string executable;
};

// The process with the ID. nullopt if there is none, if it is a zombie, and if this user may not see its program.
// Blocks for up to 10 ms if the process started within the current clock tick.
std::optional<RunningProcess> runningProcess(std::int32_t pid);
// The process with this identity, if it still runs; never blocks.
std::optional<RunningProcess> runningProcess(ProcessIdentity const& identity);
// All processes that runningProcess finds, in the order of their start; one that ends during the call may be missing.
// Blocks as runningProcess(pid) does.
std::vector<RunningProcess> runningProcesses();

// Lists processes again and again. Remembers those it has met by their folders in /proc, so that it reads no start a
// second time, for which the kernel adds up the work of all of a process's threads. One thread at a time.
class KnownProcesses {
public:
    // The processes that runningProcesses lists, and known ones that have become zombies.
    std::vector<ProcessIdentity> list();
    // The process with this identity, as runningProcess answers it.
    std::optional<RunningProcess> read(ProcessIdentity const& identity) const;
    // Whether the process still has its ID; true for a zombie.
    bool isThere(ProcessIdentity const& identity) const;

private:
    // The inode and change time of /proc/PID. Another process with the ID has another folder; the same process may get
    // a new one when the system is short of memory, and is read anew.
    struct Folder {
        std::uint64_t inode{0};
        std::int64_t seconds{0};
        std::int64_t nanoseconds{0};

        bool operator==(Folder const&) const = default;
    };
    struct Known {
        Folder folder;
        std::uint64_t start{0};
        // The number of the last call of list that found the process; processes that a call does not find are
        // forgotten.
        std::uint64_t round{0};
    };

    static std::optional<Folder> folderOf(std::int32_t pid);
    std::optional<RunningProcess> readUnlessKnown(std::int32_t pid);

    std::unordered_map<std::int32_t, Known> m_known;
    std::uint64_t m_round{0};
};

// The arguments of the process, or its initial environment ("NAME=value"). nullopt if they may not be read or are
// larger than 8 MiB.
std::optional<std::vector<std::string>> argumentsOf(std::int32_t pid);
std::optional<std::vector<std::string>> environmentOf(std::int32_t pid);

// The path of the program that the process runs: its executable or, if that is an interpreter outside of any bundle and
// its arguments tell, the script with symbolic links resolved.
std::string programOf(RunningProcess const& process);

// Whether the executable is an interpreter, which runs scripts.
bool isInterpreter(std::string_view executable);

// The argument of a command line that names the script, as it stands; the first of the words is the interpreter itself.
// nullopt if the executable is no interpreter, and if the script cannot be determined.
std::optional<std::string> scriptInCommand(std::string_view executable, std::vector<std::string> const& words);

// The innermost bundle in whose Contents the path lies; empty for none.
std::string_view bundleHolding(std::string_view path);

// Sends SIGTERM to exactly this process. False if it has ended already, and if this user may not signal it.
bool askToEnd(ProcessIdentity const& identity);

} // namespace mac
