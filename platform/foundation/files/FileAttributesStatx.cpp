#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/dates/UTCDateTime.h"
#include "platform/foundation/files/FileAttributes.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/Users.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/KeptCreationDate.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

namespace mac {

namespace {

NSNumber number(std::uint64_t value) { return NSNumber::numberWithUnsignedLongLong_(value); }

NSString string(std::optional<std::string> const& bytes) {
    return bytes ? NSString::stringWithFileSystemRepresentation_(*bytes) : NSString(nil);
}

NSString typeOf(unsigned mode) {
    switch (mode & S_IFMT) {
    case S_IFDIR:
        return NSFileTypeDirectory;
    case S_IFREG:
        return NSFileTypeRegular;
    case S_IFLNK:
        return NSFileTypeSymbolicLink;
    case S_IFSOCK:
        return NSFileTypeSocket;
    case S_IFCHR:
        return NSFileTypeCharacterSpecial;
    case S_IFBLK:
        return NSFileTypeBlockSpecial;
    default:
        return NSFileTypeUnknown;
    }
}

NSDate dateOf(statx_timestamp const& time) {
    return NSDate::dateWithTimeIntervalSince1970_(static_cast<double>(time.tv_sec) + time.tv_nsec / 1e9);
}

Result<struct statx> statusOf(FileDescriptor const& item) {
    struct statx status {};
    constexpr unsigned mask = STATX_BASIC_STATS | STATX_BTIME;
    if (::statx(item.number(), "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT, mask, &status) != 0)
        return lastSystemError("statx");
    return status;
}

// Whether the item is one that can carry attributes.
bool mayCarryAttributes(struct statx const& status) { return S_ISREG(status.stx_mode) || S_ISDIR(status.stx_mode); }

// The item in its folder, if it can carry attributes; its name may lead to another item meanwhile.
std::optional<OpenItem> attributedItem(FileDescriptor const& item, struct statx const& status) {
    if (!mayCarryAttributes(status)) return std::nullopt;
    Result<OpenItem> found = openItemInItsFolder(item);
    return found.hasValue() ? std::optional(found.takeValue()) : std::nullopt;
}

// The creation date that a program has set; nil if none has.
Result<NSDate> keptCreationDateOf(OpenItem const& item) {
    Result<KeptCreationDate> const kept = keptCreationDate(item);
    if (!kept.hasValue()) return kept.problem().is(ENODATA) ? Result<NSDate>(NSDate(nil)) : kept.problem();
    UTCDateTime const date = utcDateTimeOf(kept.value().units);
    CFAbsoluteTime time = 0;
    if (UCConvertUTCDateTimeToCFAbsoluteTime(&date, &time) != noErr) return NSDate(nil);
    return NSDate::dateWithTimeIntervalSinceReferenceDate_(time);
}

// The time of birth; nil if it is not known.
NSDate birthOf(struct statx const& status) {
    return (status.stx_mask & STATX_BTIME) != 0 ? dateOf(status.stx_btime) : NSDate(nil);
}

NSDate creationDateOf(std::optional<OpenItem> const& item, struct statx const& status) {
    NSDate const kept = item ? keptCreationDateOf(*item).valueOr(NSDate(nil)) : NSDate(nil);
    return kept == nil ? birthOf(status) : kept;
}

void setIfKnown(NSMutableDictionary const& attributes, id const& value, NSString const& key) {
    if (!(value == nil)) attributes.setObject_forKey_(value, key);
}

NSNumber flagOf(struct statx const& status, std::uint64_t flag) {
    return NSNumber::numberWithBool_(BOOL((status.stx_attributes & flag) != 0));
}

} // namespace

std::optional<bool> isAppendOnly(FileDescriptor const& item) {
    Result<struct statx> const status = statusOf(item);
    if (!status.hasValue()) return std::nullopt;
    return (status.value().stx_attributes & STATX_ATTR_APPEND) != 0;
}

NSDate creationDateOf(FileDescriptor const& item) {
    Result<struct statx> const status = statusOf(item);
    if (!status.hasValue()) return nil;
    return creationDateOf(attributedItem(item, status.value()), status.value());
}

Result<NSDate> certainCreationDateOf(FileDescriptor const& item) {
    Result<struct statx> const status = statusOf(item);
    if (!status.hasValue()) return status.problem();
    if (!mayCarryAttributes(status.value())) return birthOf(status.value());
    Result<OpenItem> const inItsFolder = openItemInItsFolder(item);
    if (!inItsFolder.hasValue()) return inItsFolder.problem();
    Result<NSDate> kept = keptCreationDateOf(inItsFolder.value());
    bool const isBirth = kept.hasValue() && kept.value() == nil;
    return isBirth ? Result<NSDate>(birthOf(status.value())) : kept;
}

NSDictionary fileAttributesOf(FileDescriptor const& item) {
    Result<struct statx> const found = statusOf(item);
    if (!found.hasValue()) return nil;
    struct statx const& status = found.value();
    std::optional<OpenItem> const attributed = attributedItem(item, status);
    bool const isLocked = attributed ? lockOf(*attributed) == ItemLock::Locked : isImmutable(item);
    NSMutableDictionary const attributes = NSMutableDictionary::dictionary();
    attributes.setObject_forKey_(typeOf(status.stx_mode), NSFileType);
    attributes.setObject_forKey_(number(status.stx_size), NSFileSize);
    attributes.setObject_forKey_(number(status.stx_nlink), NSFileReferenceCount);
    attributes.setObject_forKey_(number(status.stx_mode & PermissionBits), NSFilePosixPermissions);
    attributes.setObject_forKey_(number(status.stx_uid), NSFileOwnerAccountID);
    attributes.setObject_forKey_(number(status.stx_gid), NSFileGroupOwnerAccountID);
    attributes.setObject_forKey_(number(makedev(status.stx_dev_major, status.stx_dev_minor)), NSFileSystemNumber);
    attributes.setObject_forKey_(number(status.stx_ino), NSFileSystemFileNumber);
    attributes.setObject_forKey_(NSNumber::numberWithBool_(BOOL(isLocked)), NSFileImmutable);
    attributes.setObject_forKey_(flagOf(status, STATX_ATTR_APPEND), NSFileAppendOnly);
    attributes.setObject_forKey_(NSNumber::numberWithBool_(NO), NSFileExtensionHidden);
    attributes.setObject_forKey_(dateOf(status.stx_mtime), NSFileModificationDate);
    setIfKnown(attributes, string(nameOfUser(status.stx_uid)), NSFileOwnerAccountName);
    setIfKnown(attributes, string(nameOfGroup(status.stx_gid)), NSFileGroupOwnerAccountName);
    setIfKnown(attributes, creationDateOf(attributed, status), NSFileCreationDate);
    if (S_ISCHR(status.stx_mode) || S_ISBLK(status.stx_mode))
        attributes.setObject_forKey_(number(makedev(status.stx_rdev_major, status.stx_rdev_minor)),
                                     NSFileDeviceIdentifier);
    return attributes;
}

NSDictionary volumeAttributesOf(FileDescriptor const& item) {
    struct statvfs volume {};
    struct stat status {};
    if (::fstatvfs(item.number(), &volume) != 0 || ::fstat(item.number(), &status) != 0) return nil;
    return NSDictionary::dictionaryWithObjectsAndKeys_({
        number(std::uint64_t{volume.f_blocks} * volume.f_frsize),
        NSFileSystemSize,
        number(std::uint64_t{volume.f_bavail} * volume.f_frsize),
        NSFileSystemFreeSize,
        number(volume.f_files),
        NSFileSystemNodes,
        number(volume.f_favail),
        NSFileSystemFreeNodes,
        number(status.st_dev),
        NSFileSystemNumber,
    });
}

} // namespace mac
