#pragma once

#include "platform/system/items/FolderPlace.h"
#include <ctime>

namespace mac {

// An item's status as the system tells it. A value; any thread.
struct ItemStatus {
    ItemPlace place{};
    std::uint32_t group{0};
    std::uint64_t links{0};
    // In bytes; what the item takes on the disk.
    std::uint64_t size{0};
    std::uint64_t allocated{0};
    // The device number of a device file.
    std::uint64_t deviceNumber{0};
    timespec accessTime{};
    timespec modificationTime{};
    // The time of the last change of contents or attributes, in nanoseconds since 1970.
    std::int64_t changeTime{0};

    std::uint32_t permissions() const { return place.mode & 07777U; }
    bool isFile() const;
    bool isSymbolicLink() const;
};

Result<ItemStatus> statusOf(FileDescriptor const& item);
// The status of the item of a name in an open folder; a symbolic link is not followed.
Result<ItemStatus> statusOf(FileDescriptor const& folder, std::string const& name);

// The status of an item, which has a change time that any later change will differ from. Where the item has changed so
// lately that the file system could give a later change the same time, waits until that is over: for some milliseconds,
// on file systems that count seconds up to two of them. If the item keeps changing, the change time is -1.
Result<ItemStatus> settledStatusOf(FileDescriptor const& item);

// Clocks in nanoseconds since 1970: the exact one, the one that the system takes file times from, and the tick by which
// that one advances.
struct FileClocks {
    std::int64_t exact;
    std::int64_t ofFiles;
    std::int64_t tick;
};
// How long, in nanoseconds, a later change may still get this change time; 0 if it cannot.
std::int64_t timeUntilSettled(std::int64_t changeTime, FileClocks const& clocks);

// A number that tells an item's identity, size and modification time: equal for an item in the same state, most likely
// different for any other one. It does not change when the item is renamed.
std::uint64_t markOf(ItemStatus const& status);

} // namespace mac
