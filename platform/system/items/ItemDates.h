#pragma once

#include "platform/system/Result.h"
#include <ctime>
#include <optional>
#include <string_view>

namespace mac {

class FileDescriptor;

// The dates to give to an item; one that is missing stays as it is.
struct ItemDates {
    std::optional<timespec> access{};
    std::optional<timespec> modified{};
};

// Sets dates of an open item, be it a symbolic link or opened with O_PATH; errors tell the name. Nothing is asked of
// the system if both are missing. Any thread.
Result<void> setDates(FileDescriptor const& item, ItemDates const& dates, std::string_view name = {});

} // namespace mac
