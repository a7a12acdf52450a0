#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct statx;

namespace mac {

class FileDescriptor;

// What tells an item from all others, also from one that gets its number when it is gone. For implementations.
struct ItemIdentity {
    std::uint64_t device{0};
    std::uint64_t inode{0};
    // Nanoseconds since 1970; 0 where the file system does not tell.
    std::int64_t birth{0};

    // Without a birth time a number may come to mean another item, unless the item is held.
    bool isLasting() const { return birth != 0; }

    bool operator==(ItemIdentity const&) const = default;
};

// What was asked of the system with the item's device, number and birth.
ItemIdentity identityOf(struct statx const& status);

struct ItemIdentityHash {
    std::size_t operator()(ItemIdentity const& identity) const;
};

struct IdentifiedItem {
    ItemIdentity identity{};
    bool isFolder{false};
    bool isRemoved{false};
};

std::optional<IdentifiedItem> identify(FileDescriptor const& item);
// In an open folder; a link is meant itself.
std::optional<IdentifiedItem> identify(FileDescriptor const& folder, std::string const& name);

// Whether what has the name in the open folder is that very item, for a name can be given to another one: then errno is
// ESTALE.
bool isItemInFolder(FileDescriptor const& folder, std::string const& name, ItemIdentity const& item);
bool isItemInFolder(FileDescriptor const& folder, std::string const& name, FileDescriptor const& item);

} // namespace mac
