#pragma once

#include "platform/system/items/AppleDouble.h"
#include "platform/system/items/OpenItem.h"

namespace mac {

// The attributes that the file system itself keeps for an item, under the names that programs give them. For
// implementations; they answer as the system's calls do. Any thread.

struct AttributeName {
    std::string shown;
    std::string onSystem; // empty for one that is too long for the file system and fits beside the item alone

    bool isFinderInformation() const;
    bool isResourceFork() const;
};

// Nothing, with errno set, for a name that no attribute can have.
std::optional<AttributeName> attributeName(char const* name);

// As on Mac OS X, where Finder information of zeros alone and an empty fork are none.
bool isNothing(AttributeName const& name, std::span<std::byte const> value);
// Whether the file system has the attribute, and it is such a nothing.
bool holdsNothing(OpenItem const& item, AttributeName const& name);

// Its length; ENODATA for a nothing. A buffer that is null takes nothing.
std::ptrdiff_t valueOnItem(OpenItem const& item, AttributeName const& name, void* value, std::size_t size);
int writeOnItem(OpenItem const& item, AttributeName const& name, std::span<std::byte const> value, int systemOptions);
int removeOnItem(OpenItem const& item, AttributeName const& name);
// Nothing, with errno set, when they cannot be read; none where the file system keeps no attributes.
std::optional<std::vector<std::string>> namesOnItem(OpenItem const& item);

} // namespace mac
