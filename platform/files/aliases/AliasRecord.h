#pragma once

#include "platform/system/Result.h"
#include "platform/system/items/OpenItem.h"
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace mac {

// What an alias keeps of its item, to find it again after it was moved, renamed or replaced, also in another run of the
// program and after the volume was mounted elsewhere. Paths and names are bytes. A value; any thread.
struct AliasRecord {
    enum class Kind : std::uint16_t { File = 1, Folder = 2, Link = 3, Other = 4 };

    // Where the item was, without links.
    std::string path{};
    // The path from the top of the item's file system, which is the same wherever that is mounted; empty if unknown.
    std::string pathOnVolume{};
    // The path below the user's home folder; nullopt if the item does not lie there.
    std::optional<std::string> pathBelowHome{};
    // As identityOfVolume() tells it; empty if unknown.
    std::string volume{};
    std::uint64_t inode{0};
    // Nanoseconds since 1970; 0 if the file system does not record the birth time.
    std::int64_t birth{0};
    Kind kind{Kind::Other};

    // Longer records are not read.
    static constexpr std::size_t MostBytes = std::size_t{1} << 20;
    // The record's bytes: versioned, and with a checksum, so that a record with any byte changed is not read.
    std::vector<std::byte> bytes() const;
    static std::optional<AliasRecord> read(std::span<std::byte const> bytes);
    // Sets the length and the checksum in a record's bytes to what they have to be. Too few bytes stay as they are.
    static void seal(std::vector<std::byte>& bytes);

    bool operator==(AliasRecord const&) const = default;
};

// The record of an open item. EFBIG for a path that no record can hold.
Result<AliasRecord> aliasRecordOf(OpenItem const& item);
Result<AliasRecord::Kind> aliasKindOf(FileDescriptor const& item);

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
