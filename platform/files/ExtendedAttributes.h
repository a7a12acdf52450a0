#pragma once

#include "platform/system/items/AttributeNames.h"
#include <cstddef>
#include <cstdint>

namespace mac {

// Named bytes that a file or folder carries beside its contents, under the names and with the arguments of Mac OS X;
// they answer -1 and set errno when they fail. Paths and names are bytes. Any thread.
//
// Linux: an attribute "n" is the file system's "user.n"; those of other namespaces do not show. What the file system
// does not hold, because it is too large or because there is no place for attributes at all, goes to the AppleDouble
// file "._NAME" beside the item, which is read too; where both have an attribute of the name, the file system's counts.
// Nothing goes there for a file with several names (EMLINK): the others would not have it. A missing attribute is
// ENODATA. Only files and folders carry attributes: on anything else they are EPERM. EBUSY: somebody keeps the item's
// folder locked.

// Options. NOFOLLOW: a symbolic link at the end of the path is meant itself, else what it leads to. CREATE: fail with
// EEXIST where the attribute is; REPLACE: fail with ENODATA where it is not. Others are EINVAL.
inline constexpr int XATTR_NOFOLLOW = 0x0001;
inline constexpr int XATTR_CREATE = 0x0002;
inline constexpr int XATTR_REPLACE = 0x0004;

// The names, each with a NUL behind it; answers how many bytes they are, without writing any where the buffer is null.
// A buffer that is too small is ERANGE.
std::ptrdiff_t listxattr(char const* path, char* names, std::size_t size, int options);
// The value's length; its bytes only where the buffer is not null. A buffer that is too small is ERANGE. Position must
// be 0.
std::ptrdiff_t getxattr(char const* path, char const* name, void* value, std::size_t size, std::uint32_t position,
                        int options);
// The whole value, old or new whole. Finder information is 32 bytes, of another size ERANGE; zeros alone are none, and
// neither is an empty resource fork: to set these is to remove what is there. Position must be 0.
int setxattr(char const* path, char const* name, void const* value, std::size_t size, std::uint32_t position,
             int options);
int removexattr(char const* path, char const* name, int options);

} // namespace mac
