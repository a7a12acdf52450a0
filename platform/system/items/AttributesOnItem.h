#pragma once

#include "platform/system/FolderContents.h"
#include "platform/system/Result.h"
#include "platform/system/items/AttributeNames.h"
#include "platform/system/items/OpenItem.h"
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// An attribute's name, as programs give it and as the file system knows it.
struct AttributeName {
    // For names that are known to be valid. REQUIRES: 1 to 250 bytes.
    explicit AttributeName(std::string_view name);
    // EINVAL for an empty name or one with a NUL, ENAMETOOLONG for one that no sidecar can hold.
    static Result<AttributeName> make(std::string_view name);

    std::string shown;
    // Empty for a name that is too long for the file system and fits in a sidecar alone.
    std::string onSystem;

    bool isFinderInformation() const;
    bool isResourceFork() const;
    // False for Finder information of a size other than 32 bytes.
    bool accepts(std::size_t size) const;
    // Finder information of zeros, or an empty resource fork: counts as absent, as on Mac OS X.
    bool isNothing(std::span<std::byte const> value) const;
};

// The attributes that the file system itself holds for an item. Any thread.

// Whether the file system holds a value that counts as absent.
bool holdsNothing(OpenItem const& item, AttributeName const& name);

// ENODATA for a value that counts as absent, too; EOPNOTSUPP if the file system holds no attributes.
Result<std::vector<std::byte>> valueOnItem(OpenItem const& item, AttributeName const& name);
Result<std::size_t> sizeOnItem(OpenItem const& item, AttributeName const& name);
// The flags are the system call's.
Result<void> writeOnItem(OpenItem const& item, AttributeName const& name, std::span<std::byte const> value, int flags);
Result<void> removeOnItem(OpenItem const& item, AttributeName const& name);
// The names in a list of the system's, each ended by a NUL, as programs give them; those of other namespaces are left
// out.
std::vector<std::string> userNamesIn(std::string_view list);
// Empty if the file system holds no attributes.
Result<std::vector<std::string>> namesOnItem(OpenItem const& item);

// Short ways to the attributes of the item at a path, in as few system calls as there can be: for what the file system
// alone tells of usual items. nullopt means that the item has to be opened to answer, and is no failure. Any thread.

// The value's length in bytes, and the value in the bytes unless they are empty. Finder information and resource forks
// are not answered.
std::optional<std::size_t> valueAtPath(char const* path, AttributeName const& name, std::span<std::byte> bytes,
                                       LinkAtEnd linkAtEnd);

// The names of a file's or folder's attributes, if nothing has the name of its AppleDouble sidecar. Not answered for a
// symbolic link, nor if a name needs its value to be looked at.
std::optional<std::vector<std::string>> namesAtPath(char const* path);

} // namespace mac
