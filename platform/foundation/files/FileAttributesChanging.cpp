#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/dates/UTCDateTime.h"
#include "platform/foundation/files/FileAttributes.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/OpenItems.h"
#include "platform/system/Users.h"
#include "platform/system/items/ItemAttributes.h"
#include "platform/system/items/ItemDates.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/KeptCreationDate.h"
#include <cmath>
#include <fcntl.h>
#include <linux/fs.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

bool changePermissions(FileDescriptor const& item, NSNumber const& permissions) {
    return permissions == nil ||
           ::chmod(descriptorPath(item).c_str(), permissions.unsignedIntValue() & PermissionBits) == 0;
}

bool changeModificationDate(FileDescriptor const& item, NSDate const& date) {
    if (date == nil) return true;
    double const seconds = date.timeIntervalSince1970();
    constexpr double farthest = 1e15;
    if (!(std::abs(seconds) < farthest)) return false;
    double const whole = std::floor(seconds);
    timespec const modified{.tv_sec = static_cast<time_t>(whole),
                            .tv_nsec = static_cast<long>((seconds - whole) * 1e9)};
    return setDates(item, {.modified = modified}).isDone();
}

// By number, else by name; "unchanged" where the dictionary says neither, nullopt for an unknown name.
std::optional<unsigned> account(NSNumber const& number, NSString const& name,
                                std::optional<unsigned> (*numberOf)(std::string const&)) {
    constexpr unsigned unchanged = ~0U;
    if (!(number == nil)) return number.unsignedIntValue();
    if (name == nil) return unchanged;
    std::optional<std::string> const bytes = name.fileSystemRepresentation();
    return bytes ? numberOf(*bytes) : std::nullopt;
}

bool changeOwners(FileDescriptor const& item, NSDictionary const& attributes) {
    std::optional<unsigned> const user = account(as<NSNumber>(attributes.objectForKey_(NSFileOwnerAccountID)),
                                                 attributes.fileOwnerAccountName(), &numberOfUser);
    std::optional<unsigned> const group = account(as<NSNumber>(attributes.objectForKey_(NSFileGroupOwnerAccountID)),
                                                  attributes.fileGroupOwnerAccountName(), &numberOfGroup);
    struct stat status {};
    if (!user || !group || ::fstat(item.number(), &status) != 0) return false;
    bool const isSameUser = *user == ~0U || *user == status.st_uid;
    bool const isSameGroup = *group == ~0U || *group == status.st_gid;
    return (isSameUser && isSameGroup) || ::chown(descriptorPath(item).c_str(), *user, *group) == 0;
}

Result<void> setFlag(FileDescriptor const& item, int flag, bool isSet) {
    FileDescriptor const file(::open(descriptorPath(item).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) return lastSystemError("open");
    int flags = 0;
    if (::ioctl(file.number(), FS_IOC_GETFLAGS, &flags) != 0) return lastSystemError("ioctl");
    flags = isSet ? flags | flag : flags & ~flag;
    if (::ioctl(file.number(), FS_IOC_SETFLAGS, &flags) != 0) return lastSystemError("ioctl");
    return {};
}

bool changeAppendOnly(FileDescriptor const& item, NSNumber const& wanted, bool isSet) {
    return wanted == nil || wanted.boolValue() == isSet || setFlag(item, FS_APPEND_FL, !isSet).isDone();
}

bool changeImmutable(FileDescriptor const& item, NSNumber const& wanted) {
    if (wanted == nil) return true;
    Result<OpenItem> const found = openItemInItsFolder(item);
    ItemLock const lock = wanted.boolValue() ? ItemLock::Locked : ItemLock::Unlocked;
    return found.hasValue() && setLock(found.value(), lock).isDone();
}

// False also where it cannot be told.
bool hasCreationDate(FileDescriptor const& item, NSDate const& wanted) {
    NSDate const date = certainCreationDateOf(item).valueOr(NSDate(nil));
    constexpr double precision = 1e-3;
    return !(date == nil) && std::abs(wanted.timeIntervalSinceDate_(date)) < precision;
}

bool changeCreationDate(FileDescriptor const& item, NSDate const& wanted) {
    if (wanted == nil || hasCreationDate(item, wanted)) return true;
    UTCDateTime date;
    if (UCConvertCFAbsoluteTimeToUTCDateTime(wanted.timeIntervalSinceReferenceDate(), &date) != noErr) return false;
    Result<OpenItem> const found = openItemInItsFolder(item);
    return found.hasValue() && changeAttributesAsOwner(found.value(), [&] {
                                   return keepCreationDate(found.value(), {unitsOf(date)});
                               }).isDone();
}

} // namespace

bool changeFileAttributes(FileDescriptor const& item, NSDictionary const& attributes) {
    std::optional<bool> const wasAppendOnly = isAppendOnly(item);
    if (!wasAppendOnly) return false;
    NSNumber const immutable = as<NSNumber>(attributes.objectForKey_(NSFileImmutable));
    NSNumber const appendOnly = as<NSNumber>(attributes.objectForKey_(NSFileAppendOnly));
    // What forbids changes is lifted first and put on last.
    bool done = immutable.boolValue() || changeImmutable(item, immutable);
    if (*wasAppendOnly) done = changeAppendOnly(item, appendOnly, true) && done;
    // Before the item gets another owner, after which it may not be ours to write to.
    done = changeCreationDate(item, attributes.fileCreationDate()) && done;
    done = changeOwners(item, attributes) && done;
    done = changePermissions(item, as<NSNumber>(attributes.objectForKey_(NSFilePosixPermissions))) && done;
    done = changeModificationDate(item, attributes.fileModificationDate()) && done;
    if (!*wasAppendOnly) done = changeAppendOnly(item, appendOnly, false) && done;
    if (immutable.boolValue()) done = changeImmutable(item, immutable) && done;
    return done;
}

bool changeCreationDateAndLocks(FileDescriptor const& item, NSDictionary const& attributes) {
    NSNumber const immutable = as<NSNumber>(attributes.objectForKey_(NSFileImmutable));
    NSNumber const appendOnly = as<NSNumber>(attributes.objectForKey_(NSFileAppendOnly));
    bool done = changeCreationDate(item, attributes.fileCreationDate());
    done = changeAppendOnly(item, appendOnly, isAppendOnly(item).value_or(false)) && done;
    return changeImmutable(item, immutable) && done;
}

} // namespace mac
