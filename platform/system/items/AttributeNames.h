#pragma once

namespace mac {

// Names of the attributes in which an item keeps its Finder information and its resource fork.
inline constexpr char XATTR_FINDERINFO_NAME[] = "com.apple.FinderInfo";
inline constexpr char XATTR_RESOURCEFORK_NAME[] = "com.apple.ResourceFork";

} // namespace mac
