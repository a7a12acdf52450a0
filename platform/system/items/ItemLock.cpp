#include "platform/system/items/ItemLock.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemAttributes.h"
#include "platform/system/items/ItemRename.h"
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac {

namespace {

bool isImmutableAt(int folder, char const* name, int flags) {
    struct statx status {};
    int const failed = ::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | flags, STATX_TYPE, &status);
    return failed == 0 && (status.stx_attributes & STATX_ATTR_IMMUTABLE) != 0;
}

bool hasLockedAttribute(OpenItem const& item) {
    return sizeOfAttribute(item, AttributeName(LockedAttribute)).valueOr(0) > 0;
}

// Without opening the item; its sidecar is read only if there is one.
bool hasLockedAttribute(FileDescriptor const& folder, std::string const& name) {
    AttributeName const attribute(LockedAttribute);
    std::string const path = descriptorPath(folder) + "/" + name;
    ssize_t const size = ::lgetxattr(path.c_str(), attribute.onSystem.c_str(), nullptr, 0);
    if (size >= 0) return size > 0;
    std::string const sidecar = AppleDoubleSidecar::nameFor(name);
    if (::faccessat(folder.number(), sidecar.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0) return false;
    constexpr int nameFlags = O_PATH | O_NOFOLLOW | O_CLOEXEC;
    OpenItem const item{.folder = FileDescriptor(::openat(folder.number(), ".", nameFlags)),
                        .item = FileDescriptor(::openat(folder.number(), name.c_str(), nameFlags)),
                        .name = name};
    return item.folder.isOpen() && item.item.isOpen() && hasLockedAttribute(item);
}

Result<void> setImmutable(FileDescriptor const& item, bool isSet) {
    struct stat status {};
    if (::fstat(item.number(), &status) != 0) return lastSystemError("stat");
    // Opening an item that is no file may block or have side effects.
    if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) return SystemError{.code = EPERM, .operation = "ioctl"};
    FileDescriptor const file(::open(descriptorPath(item).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) return lastSystemError("open");
    int flags = 0;
    if (::ioctl(file.number(), FS_IOC_GETFLAGS, &flags) != 0) return lastSystemError("ioctl");
    flags = isSet ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    if (::ioctl(file.number(), FS_IOC_SETFLAGS, &flags) != 0) return lastSystemError("ioctl");
    return {};
}

Result<void> addAttribute(OpenItem const& item) {
    static constexpr std::array<std::byte, 1> value{std::byte{1}};
    return changeAttributesAsOwner(item, [&] { return writeAttribute(item, AttributeName(LockedAttribute), value); });
}

Result<void> removeLockedAttribute(OpenItem const& item) {
    Result<void> removed = removeAttribute(item, AttributeName(LockedAttribute));
    return !removed.isDone() && removed.problem().is(ENODATA) ? Result<void>() : removed;
}

// Most items have neither the attribute nor a sidecar, which one call tells.
Result<void> takeAttributeOff(OpenItem const& item) {
    Result<void> const removed = removeOnItem(item, AttributeName(LockedAttribute));
    bool const hasNone = !removed.isDone() && (removed.problem().is(ENODATA) || removed.problem().is(EOPNOTSUPP));
    Result<std::optional<OpenSidecar>> const sidecar = sidecarBeside(item.folder, item.name);
    if (!sidecar.hasValue()) return sidecar.problem();
    if ((removed.isDone() || hasNone) && !sidecar.value()) return {};
    if (!hasLockedAttribute(item)) return {};
    return changeAttributesAsOwner(item, [&] { return removeLockedAttribute(item); });
}

} // namespace

bool isImmutable(FileDescriptor const& item) { return isImmutableAt(item.number(), "", AT_EMPTY_PATH); }

ItemLock lockOf(OpenItem const& item) {
    return isImmutable(item.item) || hasLockedAttribute(item) ? ItemLock::Locked : ItemLock::Unlocked;
}

bool isLockedIn(FileDescriptor const& folder, std::string const& name) {
    return isImmutableAt(folder.number(), name.c_str(), 0) || hasLockedAttribute(folder, name);
}

bool isLockedIn(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
    return place.isImmutable || hasLockedAttribute(folder, name);
}

Result<void> setLock(OpenItem const& item, ItemLock lock) {
    bool const wasImmutable = isImmutable(item.item);
    if (lock == ItemLock::Locked) {
        if (wasImmutable || setImmutable(item.item, true).isDone()) return {};
        return addAttribute(item);
    }
    if (wasImmutable) {
        if (Result<void> const cleared = setImmutable(item.item, false); !cleared.isDone()) return cleared;
    }
    return takeAttributeOff(item);
}

SystemError lockedItem(std::string name) {
    return {.code = ItemIsLocked, .operation = "change", .item = std::move(name)};
}

} // namespace mac
