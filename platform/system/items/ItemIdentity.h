#pragma once

#include "platform/system/FolderContents.h"
#include "platform/system/Result.h"
#include <cstdint>
#include <string>

struct statx;

namespace mac {

class FileDescriptor;

// Tells an item from all others, also from one that gets its inode number once it is removed. A value; any thread.
struct ItemIdentity {
    std::uint64_t device{0};
    std::uint64_t inode{0};
    // Nanoseconds since 1970; 0 if the file system does not record the birth time.
    std::int64_t birth{0};

    // False if the inode number may be given to another item once this one is no longer held open.
    bool isLasting() const { return birth != 0; }

    bool operator==(ItemIdentity const&) const = default;
};

// The device, inode and birth time in a status that was asked for with STATX_INO and STATX_BTIME.
ItemIdentity identityOf(struct statx const& status);

struct ItemIdentityHash {
    std::size_t operator()(ItemIdentity const& identity) const;
};

struct IdentifiedItem {
    ItemIdentity identity{};
    bool isFolder{false};
    // Whether no name leads to the item any more.
    bool isRemoved{false};
    // Whether it is a file that has more than one name.
    bool hasOtherNames{false};
    // The mount it is reached through; 0 if the system does not tell.
    std::uint64_t mount{0};
};

Result<IdentifiedItem> identify(FileDescriptor const& item);
// Identifies the item of a name in an open folder; a symbolic link is not followed.
Result<IdentifiedItem> identify(FileDescriptor const& folder, std::string const& name);

// Whether no name leads to the open item any more, as far as this machine knows: no server is asked.
bool isKnownToBeRemoved(FileDescriptor const& item);
// Identifies the item at a path of bytes, of any length.
Result<IdentifiedItem> identifyAtPath(std::string const& path, LinkAtEnd linkAtEnd);

// Done if the name in the open folder leads to that very item; ESTALE if it leads to another one.
Result<void> confirmItemInFolder(FileDescriptor const& folder, std::string const& name, ItemIdentity const& item);
Result<void> confirmItemInFolder(FileDescriptor const& folder, std::string const& name, FileDescriptor const& item);

} // namespace mac
