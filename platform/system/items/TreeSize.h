#pragma once

#include "platform/system/Result.h"
#include <cstdint>
#include <stop_token>
#include <string>

namespace mac {

// What an item and all below it take on the disk.
struct TreeSize {
    // Bytes that the file system has set aside for them. A file with several names counts once.
    std::uint64_t allocated{0};
    // Bytes of the files' contents.
    std::uint64_t contents{0};
    // With the item itself.
    std::uint64_t items{0};
    // Folders and items of which nothing could be learned; they count nothing.
    std::uint64_t unreadable{0};
};

// Adds up the tree at a path of bytes. Symbolic links count themselves; what is mounted below is not entered. Fails if
// the item itself cannot be looked at, and with ECANCELED if it was asked to stop. Any thread.
Result<TreeSize> sizeOfTree(std::string const& path, std::stop_token const& stop);

} // namespace mac
