#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/Result.h"
#include <cerrno>
#include <cstdint>
#include <vector>

namespace mac {

// An item's owner, group, permissions and access list, and how another item takes them over. Any thread.

// The name under which the system keeps an item's access list as an attribute.
inline constexpr char AccessListAttribute[] = "system.posix_acl_access";

// Whether the error says that the file system cannot do it at all, or that this user may not.
inline bool isUnsupported(SystemError const& error) { return error.is(EOPNOTSUPP) || error.is(ENOSYS); }
inline bool isForbidden(SystemError const& error) { return error.is(EPERM) || error.is(EACCES); }

struct ItemAccess {
    std::uint32_t owner{0};
    std::uint32_t group{0};
    // The permission bits. With an access list those of the group are the list's mask.
    std::uint32_t permissions{0};
    // The access list in the system's form; empty if there is none.
    std::vector<std::byte> list{};
};

// Reads the access of an open item of any kind; O_PATH suffices. A symbolic link has no list.
Result<ItemAccess> accessOf(FileDescriptor const& item);
// Reads the access of an item that is known to have no access list.
Result<ItemAccess> accessWithoutListOf(FileDescriptor const& item);

// Removes the lists that the folder's default has given a new item, so that permissions given later open none of them.
Result<void> removeInheritedLists(FileDescriptor const& item);

// Whether the item may have a list from its folder's default.
enum class InheritedList { MayBeThere, IsRemoved };

// Gives an item, which nobody but its owner may open yet, the owner, group, permissions and list, as far as this user
// may and the file system can; O_PATH suffices. No user gets more access than `access` gives: without the owner there
// is no set-user-ID; without the group, neither the group nor others get what the other of the two lacked; where the
// list cannot be kept, the group gets its own entry in it, cut by the mask, and nobody what an entry of the list
// denies.
Result<void> giveAccess(FileDescriptor const& item, ItemAccess const& access, InheritedList inherited);

// Changes the permissions of exactly this item, also if it is open with O_PATH.
Result<void> setPermissions(FileDescriptor const& item, std::uint32_t permissions);

} // namespace mac
