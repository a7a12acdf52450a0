#pragma once

#include "platform/foundation/bundles/NSBundle.h"
#include "platform/system/LongPath.h"
#include "platform/system/Result.h"
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// Finds and reads the information files of bundles; what was read is kept elsewhere. Paths are the file system's bytes.
// Any thread.

// Which file it is and in what state, or the error that its status gave.
struct FileState {
    // By the order in which the places of an information file are looked at; the first is that in Contents.
    std::size_t place{0};
    // The system's error code; 0 if the status is known.
    int error{0};
    FileStatus status{};

    bool operator==(FileState const&) const = default;
};

// Why there is no dictionary, and whether that stays so while the file has the same status.
struct ReadingProblem {
    std::string reason;
    bool isLasting{true};
};

// What was read of a file: all of it, or its summary alone.
template <typename Value>
struct ReadFile {
    // In which the file was when it was read.
    FileState state{};
    // When reading began, in nanoseconds since 1970.
    std::int64_t start{0};
    Result<Value, ReadingProblem> value;
};
using ReadInformation = ReadFile<NSDictionary>;
using ReadSummary = ReadFile<BundleSummary>;

// As the log tells it: by the bundle's own path where it is looked at through a descriptor.
NSString toldPathOfPlace(std::string_view bundlePath, std::size_t place);

// The information file at that place of the bundle; nullopt if it does not exist.
std::optional<FileState> fileAtPlace(std::string_view bundlePath, std::size_t place);
// The first that is there counts, readable or not.
std::optional<FileState> findFile(std::string_view bundlePath, std::size_t firstPlace = 0);

ReadInformation readInformation(std::string_view bundlePath, FileState const& state);
ReadSummary summaryOf(ReadInformation const& information);
// Reads the file in Contents without a look at its status before; nullopt if no such file can be read.
std::optional<ReadSummary> readLikelySummary(std::string_view bundlePath);

} // namespace mac
