#pragma once

#include "platform/system/Result.h"
#include <cstdint>
#include <string>

namespace mac {

class FileDescriptor;

// Tells an item on a file system without birth times from a later one that got its inode number, once the item is no
// longer held open. A value; any thread.
struct LastingMark {
    // The file system's own handle, which counts how often the inode number was given; empty if it has none.
    std::string handle{};
    // Nanoseconds since 1970: the last change of the item or its attributes.
    std::int64_t changed{0};
    // The file system never gives an inode number twice.
    bool hasUniqueNumbers{false};
};

Result<LastingMark> lastingMarkOf(FileDescriptor const& item);

// Whether two marks of items with the same inode number are surely of one item. False if the file system has no handles
// and the item has changed in between.
bool areOfOneItem(LastingMark const& earlier, LastingMark const& later);

} // namespace mac
