#pragma once

#include "platform/system/items/AttributeNames.h"
#include <cstddef>
#include <cstdint>

namespace mac {

// Named bytes that a file or folder carries beside its contents, with the names, arguments and errors of Mac OS X: a
// failure answers -1 and sets errno. Paths and names are bytes. Any thread.
//
// Linux: an attribute "n" is the file system's "user.n"; attributes of other namespaces do not show. A value that the
// file system does not hold, because it is too large or because attributes are not supported, goes to the item's
// AppleDouble sidecar "._NAME", which is read, too; if both hold an attribute of the name, the file system's counts. A
// file of several names gets no sidecar (EMLINK), which the other names would not have. A missing attribute is ENODATA.
// Only files and folders carry attributes: to write one of any other item is EPERM. EBUSY: another process keeps the
// item's folder locked.

// Options; others are EINVAL. NOFOLLOW: a symbolic link at the end of the path is not followed. CREATE: EEXIST if the
// attribute exists. REPLACE: ENODATA if it does not.
inline constexpr int XATTR_NOFOLLOW = 0x0001;
inline constexpr int XATTR_CREATE = 0x0002;
inline constexpr int XATTR_REPLACE = 0x0004;

// The names, each ended by a NUL. Answers how many bytes they take; a null buffer takes none. ERANGE: the buffer is too
// small.
std::ptrdiff_t listxattr(char const* path, char* names, std::size_t size, int options);
// Answers the value's length; a null buffer takes no bytes. ERANGE: the buffer is too small. REQUIRES: position is 0
// (else EINVAL).
std::ptrdiff_t getxattr(char const* path, char const* name, void* value, std::size_t size, std::uint32_t position,
                        int options);
// Replaces the whole value. Finder information has 32 bytes (else ERANGE); zeros alone, and an empty resource fork,
// count as absent: to set them removes the attribute. REQUIRES: position is 0 (else EINVAL).
int setxattr(char const* path, char const* name, void const* value, std::size_t size, std::uint32_t position,
             int options);
// Removes the attribute; ENODATA if there is none.
int removexattr(char const* path, char const* name, int options);

} // namespace mac
