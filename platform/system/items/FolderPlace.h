#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/items/ItemIdentity.h"
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Where open folders and what they hold lie. For implementations; any thread. Errno says why something is not known.

namespace mac {

// Of an item on a volume.
struct ItemPlace {
    ItemIdentity identity{};
    // The mount it is reached by: an item can be renamed within one only.
    std::uint64_t mount{0};
    std::uint32_t owner{0};
    std::uint32_t mode{0};
    bool isFolder{false};
    bool isMountPoint{false};
};

std::optional<ItemPlace> placeOf(FileDescriptor const& item);
// In an open folder; a link is meant itself.
std::optional<ItemPlace> placeOf(FileDescriptor const& folder, std::string const& name);

// The folder, the one that holds it and so on up to the root.
std::optional<std::vector<ItemIdentity>> folderAndThoseAbove(FileDescriptor const& folder);
// The uppermost folder of the mount; none when one on the way cannot be passed.
FileDescriptor topOfMount(FileDescriptor const& folder);

// Absolute, of any length.
std::optional<std::string> pathOfFolder(FileDescriptor const& folder);

} // namespace mac
