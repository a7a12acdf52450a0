#include "platform/system/items/ItemAccess.h"
#include "platform/system/OpenItems.h"
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr char DefaultList[] = "system.posix_acl_default";
constexpr mode_t PermissionsOfAMode = 07777;
constexpr mode_t SetIdentityBits = S_ISUID | S_ISGID;
constexpr unsigned GroupShift = 3;
constexpr unsigned Everything = 7;
// Stands for an entry that is absent: more permissions than any entry has.
constexpr unsigned NoEntry = 0xF;
constexpr std::uint32_t NoChange = 0xFFFF'FFFF;

bool isAbsent(SystemError const& error) { return error.is(ENODATA) || isUnsupported(error); }

// What an access list gives apart from the owner's permissions, after the mask: the form of the system begins with its
// version in 4 bytes; each entry has a tag and permissions in 2 bytes each and an ID in 4, in the processor's order.
struct ListSummary {
    unsigned group{Everything};
    // What all of the named users, and all of the named groups, may.
    unsigned namedUsers{NoEntry};
    unsigned namedGroups{NoEntry};
};

ListSummary summaryOf(std::span<std::byte const> list) {
    constexpr std::size_t headSize = 4;
    constexpr std::size_t entrySize = 8;
    enum : unsigned { User = 2, OwningGroup = 4, Group = 8, Mask = 16 };
    ListSummary summary;
    unsigned mask = Everything;
    for (std::size_t place = headSize; place + entrySize <= list.size(); place += entrySize) {
        auto const kind = static_cast<unsigned>(list[place]);
        auto const permissions = static_cast<unsigned>(list[place + 2]);
        if (kind == User) summary.namedUsers &= permissions;
        if (kind == Group) summary.namedGroups &= permissions;
        if (kind == OwningGroup) summary.group = permissions;
        if (kind == Mask) mask = permissions;
    }
    summary.group &= mask;
    summary.namedUsers = summary.namedUsers == NoEntry ? Everything : summary.namedUsers & mask;
    summary.namedGroups = summary.namedGroups == NoEntry ? Everything : summary.namedGroups & mask;
    return summary;
}

// Permissions for an item that has the group but not the list.
mode_t withoutList(mode_t mode, std::span<std::byte const> list) {
    if (list.empty()) return mode;
    ListSummary const summary = summaryOf(list);
    mode_t const others = mode & summary.namedUsers & summary.namedGroups & Everything;
    mode_t const group = summary.group & summary.namedUsers;
    return (mode & ~(S_IRWXG | S_IRWXO)) | group << GroupShift | others;
}

// Permissions for an item that has another group: the members of either may be among the others of the other item.
mode_t withoutGroup(mode_t mode) {
    mode_t const both = mode >> GroupShift & mode & Everything;
    return (mode & ~(S_IRWXG | S_IRWXO | S_ISGID)) | both << GroupShift | both;
}

Result<std::vector<std::byte>> listOf(FileDescriptor const& item) {
    constexpr std::size_t usualSize = 512;
    std::string const path = descriptorPath(item);
    std::vector<std::byte> list(usualSize);
    for (;;) {
        ssize_t size = ::getxattr(path.c_str(), AccessListAttribute, list.data(), list.size());
        if (size < 0) {
            SystemError error = lastSystemError("getxattr", AccessListAttribute);
            if (isAbsent(error)) return std::vector<std::byte>();
            if (!error.is(ERANGE)) return error;
            size = ::getxattr(path.c_str(), AccessListAttribute, nullptr, 0);
            if (size < 0) return lastSystemError("getxattr", AccessListAttribute);
            list.resize(static_cast<std::size_t>(size));
            continue;
        }
        list.resize(static_cast<std::size_t>(size));
        return list;
    }
}

Result<void> removeList(std::string const& path, char const* name) {
    if (::removexattr(path.c_str(), name) == 0) return {};
    SystemError error = lastSystemError("removexattr", name);
    bool const isThere = !isAbsent(error) && ::getxattr(path.c_str(), name, nullptr, 0) >= 0;
    return isThere ? error : Result<void>();
}

Result<bool> keepsList(FileDescriptor const& item, std::span<std::byte const> list) {
    if (list.empty()) return false;
    if (::setxattr(descriptorPath(item).c_str(), AccessListAttribute, list.data(), list.size(), 0) == 0) return true;
    SystemError error = lastSystemError("setxattr", AccessListAttribute);
    // EINVAL: users whom the namespace of this volume does not know.
    if (isForbidden(error) || isUnsupported(error) || error.is(EINVAL)) return false;
    return error;
}

Result<void> changeOwner(FileDescriptor const& item, std::uint32_t owner, std::uint32_t group) {
    for (;;) {
        if (::fchown(item.number(), owner, group) == 0) return {};
        SystemError error = lastSystemError("chown");
        if (error.is(EINTR)) continue;
        if (!error.is(EBADF)) return error;
        // It is open with O_PATH.
        if (::fchownat(item.number(), "", owner, group, AT_EMPTY_PATH) != 0) return lastSystemError("chown");
        return {};
    }
}

// This user may not give the item away, or the file system has no owners, or not these. All else is a failure.
bool isRefusal(SystemError const& error) { return isForbidden(error) || isUnsupported(error) || error.is(EINVAL); }

// 0 or the system's code. The system has no call that takes a descriptor of every kind before fchmodat2.
int changeMode(FileDescriptor const& item, mode_t mode) {
    if (::chmod(descriptorPath(item).c_str(), mode) == 0) return 0;
    int const refusal = errno;
    if (refusal != ENOENT && refusal != ENOTDIR) return refusal;
    // Without /proc. The call has this number on all processors that the C library may not know it of yet.
    constexpr long fchmodat2 = 452;
    return ::syscall(fchmodat2, item.number(), "", mode, AT_EMPTY_PATH) == 0 ? 0 : refusal;
}

} // namespace

Result<ItemAccess> accessWithoutListOf(FileDescriptor const& item) {
    struct stat status {};
    if (::fstat(item.number(), &status) != 0) return lastSystemError("stat");
    return ItemAccess{
        .owner = status.st_uid, .group = status.st_gid, .permissions = status.st_mode & PermissionsOfAMode};
}

Result<ItemAccess> accessOf(FileDescriptor const& item) {
    Result<ItemAccess> access = accessWithoutListOf(item);
    if (!access.hasValue()) return access;
    Result<std::vector<std::byte>> list = listOf(item);
    if (!list.hasValue()) return list.problem();
    access.value().list = list.takeValue();
    return access;
}

Result<void> removeInheritedLists(FileDescriptor const& item) {
    std::string const path = descriptorPath(item);
    // Only folders have a default.
    Result<void> const removed = removeList(path, DefaultList);
    return removed.isDone() ? removeList(path, AccessListAttribute) : removed;
}

Result<void> giveAccess(FileDescriptor const& item, ItemAccess const& access, InheritedList inherited) {
    if (inherited == InheritedList::MayBeThere) {
        Result<void> const removed = removeInheritedLists(item);
        if (!removed.isDone()) return removed;
    }
    mode_t mode = access.permissions;
    if (Result<void> const owned = changeOwner(item, access.owner, access.group); !owned.isDone()) {
        if (!isRefusal(owned.problem())) return owned;
        // A file system without owners may refuse also what the item has.
        bool const isUnknown = !isForbidden(owned.problem());
        Result<ItemAccess> const given = accessWithoutListOf(item);
        if (!given.hasValue()) return given.problem();
        bool const hasOwner = isUnknown && given.value().owner == access.owner;
        bool const hasGroup =
            (isUnknown && given.value().group == access.group) || changeOwner(item, NoChange, access.group).isDone();
        if (!hasOwner) mode &= ~SetIdentityBits;
        if (!hasGroup) return setPermissions(item, withoutGroup(withoutList(mode, access.list)));
    }
    Result<bool> const isKept = keepsList(item, access.list);
    if (!isKept.hasValue()) return isKept.problem();
    return setPermissions(item, isKept.value() ? mode : withoutList(mode, access.list));
}

Result<void> setPermissions(FileDescriptor const& item, std::uint32_t permissions) {
    // Quicker where the item is open for reading or writing.
    if (::fchmod(item.number(), permissions) == 0) return {};
    SystemError error = lastSystemError("chmod");
    if (!error.is(EBADF)) return error;
    if (int const code = changeMode(item, permissions); code != 0)
        return SystemError{.code = code, .operation = "chmod"};
    return {};
}

} // namespace mac
