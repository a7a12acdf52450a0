#pragma once

#include "platform/files/FinderInformation.h"
#include "platform/system/items/OpenItem.h"
#include <string>

namespace mac::test {

// The Finder information of the item at a path; a symbolic link is not followed. nullopt if it cannot be read.
inline std::optional<FinderInformation> readFinderInformation(std::string const& path) {
    Result<OpenItem> const item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return std::nullopt;
    Result<FinderInformation> const read = mac::readFinderInformation(item.value());
    return read.hasValue() ? std::optional(read.value()) : std::nullopt;
}

inline bool writeFinderInformation(std::string const& path, FinderInformation const& information) {
    Result<OpenItem> const item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    return item.hasValue() && mac::writeFinderInformation(item.value(), information).isDone();
}

} // namespace mac::test
