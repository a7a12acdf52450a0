#pragma once

#include "platform/system/Result.h"
#include <cstdint>
#include <ctime>
#include <optional>
#include <string_view>

namespace mac {

class FileDescriptor;

// A date of an item in nanoseconds since 1970, from its seconds and the nanoseconds after them. Some file systems keep
// dates beyond those that 64 bits of nanoseconds hold: the first or last one that they hold stands for these. Any
// thread.
std::int64_t nanosecondsOfDate(std::int64_t seconds, std::int64_t nanoseconds);

// The dates to give to an item; one that is missing stays as it is.
struct ItemDates {
    std::optional<timespec> access{};
    std::optional<timespec> modified{};
};

// Sets dates of an open item, be it a symbolic link or opened with O_PATH; errors tell the name. Nothing is asked of
// the system if both are missing. Any thread.
Result<void> setDates(FileDescriptor const& item, ItemDates const& dates, std::string_view name = {});

// Gives both dates the present time. Whoever may write to the item may do so, besides its owner. Any thread.
Result<void> setDatesToNow(FileDescriptor const& item);

} // namespace mac
