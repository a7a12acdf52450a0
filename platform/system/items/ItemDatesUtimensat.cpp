#include "platform/system/FileDescriptor.h"
#include "platform/system/items/ItemDates.h"
#include <array>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>

namespace mac {

namespace {

Result<void> setTimes(FileDescriptor const& item, timespec access, timespec modified, std::string_view name) {
    std::array<timespec, 2> const times{access, modified};
    if (::utimensat(item.number(), "", times.data(), AT_EMPTY_PATH) != 0) return lastSystemError("utimensat", name);
    return {};
}

bool isDate(timespec const& found, std::optional<timespec> const& wanted) {
    return !wanted || (found.tv_sec == wanted->tv_sec && found.tv_nsec == wanted->tv_nsec);
}

} // namespace

std::int64_t nanosecondsOfDate(std::int64_t seconds, std::int64_t nanoseconds) {
    std::int64_t result = 0;
    bool const isBeyond = __builtin_mul_overflow(seconds, std::int64_t{1'000'000'000}, &result) ||
                          __builtin_add_overflow(result, nanoseconds, &result);
    if (!isBeyond) return result;
    return seconds < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

// Some file systems of a server, on FUSE for one, lose a date that comes without the other and answer that it is set.
// Only where a date turns out to be lost is the other one given, too: it may change between the two calls.
Result<void> setDates(FileDescriptor const& item, ItemDates const& dates, std::string_view name) {
    if (!dates.access && !dates.modified) return {};
    constexpr timespec unchanged{.tv_sec = 0, .tv_nsec = UTIME_OMIT};
    Result<void> const set = setTimes(item, dates.access.value_or(unchanged), dates.modified.value_or(unchanged), name);
    if (!set.isDone() || (dates.access && dates.modified)) return set;
    struct stat status {};
    if (::fstat(item.number(), &status) != 0) return lastSystemError("stat", name);
    if (isDate(status.st_atim, dates.access) && isDate(status.st_mtim, dates.modified)) return {};
    return setTimes(item, dates.access.value_or(status.st_atim), dates.modified.value_or(status.st_mtim), name);
}

Result<void> setDatesToNow(FileDescriptor const& item) {
    constexpr timespec now{.tv_sec = 0, .tv_nsec = UTIME_NOW};
    return setTimes(item, now, now, {});
}

} // namespace mac
