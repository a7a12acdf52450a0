#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/Result.h"
#include <cstdint>
#include <optional>

namespace mac {

// How the walker opens folders and what it asks of them. Errors name no item and allocate nothing, since a walk meets
// many entries that have vanished: the caller knows the path.

// Opens a folder for reading; a symbolic link is not followed.
Result<FileDescriptor> openFolderIn(FileDescriptor const& parent, char const* name);
// A second descriptor of the same open folder.
Result<FileDescriptor> duplicateOf(FileDescriptor const& folder);

// Which folder it is, whatever its path is now.
struct FolderIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool operator==(FolderIdentity const&) const = default;
};

// What changes when an entry comes to a folder, leaves it or takes another name. Equal stamps mean an unchanged list of
// entries, where timesTellChanges() and the times are not too new (FolderLog.h). Times are nanoseconds since 1970; the
// second is set by the system alone, so setting the first back does not hide a change.
struct FolderStamp {
    std::uint64_t inode = 0;
    std::int64_t modified = 0;
    std::int64_t changed = 0;
    std::uint32_t linkCount = 0;
    bool operator==(FolderStamp const&) const = default;
};

struct FolderFacts {
    bool isFolder = false;
    // The names in it change without a change to the folder, once the user gives the key.
    bool isEncrypted = false;
    std::uint64_t mount = 0; // ID of the mount it is reached through; 0 if unknown
    std::uint64_t device = 0;
    FolderStamp stamp{};

    FolderIdentity identity() const { return {.device = device, .inode = stamp.inode}; }
};

// Looks without opening, without following a link, without mounting on demand and without asking a server.
Result<FolderFacts> factsInside(FileDescriptor const& parent, char const* name);
Result<FolderFacts> factsOf(FileDescriptor const& folder);

// Fails if this process may not search the folder at the relative path, or if there is none.
Result<void> maySearch(FileDescriptor const& parent, char const* path);

// Whether an item that was listed a moment ago is gone, or is no folder any more.
bool meansVanished(SystemError const& error);

// Whether the numbers that reading the folder lists are those that the items in it have by themselves. False for file
// systems that are made of others, or by programs.
bool listsItemNumbers(FileDescriptor const& folder);

// The file system that a folder lies on. Two are the same only if all numbers are.
struct VolumeIdentity {
    std::uint64_t device = 0;
    std::uint64_t type = 0;
    std::uint64_t fileSystem = 0; // as fstatfs tells it: from the file system's UUID where it has one
    bool operator==(VolumeIdentity const&) const = default;
};

Result<VolumeIdentity> volumeIdentityOf(FileDescriptor const& folder);

// Whether each change to a folder's entries changes the folder's own times there, in nanoseconds. True only for those
// file systems where this was tested: ext4, XFS, btrfs and tmpfs. False for file systems that are made of others, that
// others change too, or that keep coarse times.
bool timesTellChanges(VolumeIdentity const& volume);

// The leaf rule: where every subfolder's ".." counts as a link to its parent, a folder's link count tells how many
// folders lie in it. A folder with none need not be opened at all, and reading another can end with its last folder.
// More than half of all folders hold no folder, so no other single measure saves a walk as much.

// Whether the file system that holds the folder counts so. True only for those where this was measured; btrfs, overlay
// and most others do not.
bool linkCountTellsSubfolders(FileDescriptor const& folder);

// nullopt if the count does not tell, as in a folder that has more subfolders than the file system can count links.
std::optional<std::uint32_t> subfoldersByLinkCount(std::uint32_t linkCount);

} // namespace mac
