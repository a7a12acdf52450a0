#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace benchmarks {

// One run of a command: how long it took from start to end, and what it wrote.
struct Run {
    double seconds = 0;
    double foreignLoad = 0;               // what part of the machine's cores other programs used meanwhile
    int status = 0;                       // as exit status; -1 when it ended otherwise
    std::vector<std::string> outputLines; // sorted
    std::string errorText;
};

// nullopt if the command cannot be started.
std::optional<Run> run(std::vector<std::string> const& command);

// Waits until other programs use no more of the machine's cores than that. False when they still do after the time.
bool waitUntilQuiet(double foreignLoad, std::chrono::seconds time);

// Makes the next walk read the disk. False when this user may not.
bool dropCaches();

// The kernel's count of cached directory entries. Entries of other folders slow every walk down, so each figure is
// printed with this count.
long directoryEntriesInMemory();

// The memory of this process that is not shared with others' files, in KiB: now, and at its highest so far.
long memoryNow();
long memoryPeak();

} // namespace benchmarks
