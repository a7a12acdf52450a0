#include "platform/system/FileDescriptor.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/ItemDates.h"
#include "platform/system/items/ItemStatus.h"
#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace mac {

namespace {

constexpr std::int64_t Nanoseconds = 1'000'000'000;

timespec timeOf(statx_timestamp const& time) { return {.tv_sec = time.tv_sec, .tv_nsec = time.tv_nsec}; }

Result<ItemStatus> statusAt(int folder, char const* name, int flags) {
    constexpr unsigned wanted = STATX_BASIC_STATS | STATX_BTIME | STATX_MNT_ID;
    constexpr std::uint64_t blockSize = 512;
    struct statx found {};
    if (::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | flags, wanted, &found) != 0)
        return lastSystemError("statx", name);
    ItemStatus status;
    status.place = placeIn(found);
    status.group = found.stx_gid;
    status.links = found.stx_nlink;
    status.size = found.stx_size;
    status.allocated = found.stx_blocks * blockSize;
    status.deviceNumber = makedev(found.stx_rdev_major, found.stx_rdev_minor);
    status.accessTime = timeOf(found.stx_atime);
    status.modificationTime = timeOf(found.stx_mtime);
    status.changeTime = nanosecondsOfDate(found.stx_ctime.tv_sec, found.stx_ctime.tv_nsec);
    return status;
}

std::int64_t nanosecondsOf(timespec const& time) { return time.tv_sec * Nanoseconds + time.tv_nsec; }

std::int64_t nowOn(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return nanosecondsOf(now);
}

FileClocks clocksNow() {
    timespec tick{};
    ::clock_getres(CLOCK_REALTIME_COARSE, &tick);
    return {.exact = nowOn(CLOCK_REALTIME), .ofFiles = nowOn(CLOCK_REALTIME_COARSE), .tick = nanosecondsOf(tick)};
}

// The longest time after a change in which the file system may give another change the same time. It does not tell how
// it counts, but a time that is a whole number of seconds, or of hundredths, shows it.
std::int64_t granuleOf(std::int64_t changeTime, std::int64_t tick) {
    constexpr std::int64_t hundredth = Nanoseconds / 100;
    if (changeTime % Nanoseconds == 0) return 2 * Nanoseconds;
    return changeTime % hundredth == 0 ? std::max(hundredth, tick) : tick;
}

} // namespace

std::int64_t timeUntilSettled(std::int64_t changeTime, FileClocks const& clocks) {
    // No later change gets a time that lies in the future now.
    if (changeTime > clocks.exact) return 0;
    // A change time may be as early as 64 bits hold: nothing is taken from it before it is known to be late.
    std::int64_t const settled = clocks.ofFiles - granuleOf(changeTime, clocks.tick);
    // The clock does not advance before its next tick.
    return changeTime > settled ? std::max(changeTime - settled, clocks.tick) : 0;
}

Result<ItemStatus> settledStatusOf(FileDescriptor const& item) {
    constexpr unsigned mostTries = 8;
    Result<ItemStatus> status = statusOf(item);
    for (unsigned tries = 0; status.hasValue(); ++tries) {
        std::int64_t const left = timeUntilSettled(status.value().changeTime, clocksNow());
        if (left == 0) return status;
        if (tries == mostTries) {
            status.value().changeTime = -1;
            return status;
        }
        timespec const pause{.tv_sec = left / Nanoseconds, .tv_nsec = left % Nanoseconds};
        ::nanosleep(&pause, nullptr);
        status = statusOf(item);
    }
    return status;
}

bool ItemStatus::isFile() const { return S_ISREG(place.mode); }

bool ItemStatus::isSymbolicLink() const { return S_ISLNK(place.mode); }

Result<ItemStatus> statusOf(FileDescriptor const& item) { return statusAt(item.number(), "", AT_EMPTY_PATH); }

Result<ItemStatus> statusOf(FileDescriptor const& folder, std::string const& name) {
    return statusAt(folder.number(), name.c_str(), 0);
}

std::uint64_t markOf(ItemStatus const& status) {
    timespec const& modified = status.modificationTime;
    std::array<std::uint64_t, 4> const parts{
        status.place.identity.inode, static_cast<std::uint64_t>(status.place.identity.birth), status.size,
        static_cast<std::uint64_t>(modified.tv_sec) * Nanoseconds + static_cast<std::uint64_t>(modified.tv_nsec)};
    // FNV-1a, by 64 bits.
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (std::uint64_t const part : parts) {
        hash = (hash ^ part) * 0x100000001B3U;
        hash ^= hash >> 32U;
    }
    return hash == MarkOfNoItem ? MarkOfNoItem + 1 : hash;
}

} // namespace mac
