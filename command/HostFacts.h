#pragma once

#include "platform/system/Result.h"
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The facts that many hosts told of their copies: one file a host, with the output of `framekeeper-cli list --json`.
// docs/man/framekeeper-cli.1 describes the keys that the program that gathers the files may add.

namespace framekeeper {

// Whether a host has told its copies. Late: not within the time it was given; Never: it could not be reached, or its
// file is missing, empty or cannot be read; Rubbish: what it told cannot be understood; Failed: the command failed
// there, or could read only a part.
enum class HostAnswer { Complete, Failed, Late, Never, Rubbish };

// "complete", "failed" and so on, as in facts and reports.
char const* nameOf(HostAnswer answer);

// One copy on a host, as the record in that host's list tells it.
struct CopyFacts {
    // The file system's bytes; absolute.
    std::string path{};
    // UTF-8; empty if the copy tells none.
    std::string version{};
    std::string versionString{};
    // The process's ID; nullopt if the copy does not run.
    std::optional<std::int64_t> process{};
    bool exists{false};
    bool isRunning{false};
    bool isAutolaunched{false};
    bool isInToolbar{false};
};

struct HostFacts {
    // UTF-8 for people, without control characters; a byte of a file's name that is no text is written as its code.
    std::string name{};
    HostAnswer answer{HostAnswer::Complete};
    // Why the answer is not complete, for people; empty if it is.
    std::string reason{};
    // When the host was asked, as it was written down; empty if it was not.
    std::string gathered{};
    // In the order of the host's list. Empty for rubbish: a list that can be read only in part is not believed.
    std::vector<CopyFacts> copies{};
};

// A larger file of facts is rubbish; in bytes. Small JSON objects take some thirty times their text in memory.
inline constexpr std::size_t LargestFacts = std::size_t{8} << 20;

// Reads a host's facts. The name is the host's unless the facts tell another one.
HostFacts hostFactsFrom(std::string_view name, std::string_view document);

// Reads files of facts, and all files NAME.json in folders, not those below. The paths are bytes. The hosts are sorted
// by name; of several files that tell of one host the first counts, and the others are rubbish. A path below a folder
// that may not be entered is a host that never answered. The problem is a folder that cannot be listed.
mac::Result<std::vector<HostFacts>> readHosts(std::vector<std::string> const& paths);

} // namespace framekeeper
