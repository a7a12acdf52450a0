#include "platform/files/references/CatalogFields.h"
#include "platform/files/volumes/VolumeInformation.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/AttributesOnItem.h"
#include "platform/system/items/ItemAttributes.h"
#include "platform/system/items/ItemDates.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/KeptCreationDate.h"
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr double SecondsFrom1970To2001 = 978'307'200;
constexpr double NanosecondsASecond = 1e9;
constexpr unsigned PermissionBits = 07777;
constexpr std::uint64_t BlockSize = 512;

// All zero for a date that the record cannot hold.
UTCDateTime dateOf(statx_timestamp const& time) {
    UTCDateTime date{};
    UCConvertCFAbsoluteTimeToUTCDateTime(
        static_cast<double>(time.tv_sec) - SecondsFrom1970To2001 + time.tv_nsec / NanosecondsASecond, &date);
    return date;
}

timespec timeOf(UTCDateTime const& date) {
    CFAbsoluteTime time = 0;
    UCConvertUTCDateTimeToCFAbsoluteTime(&date, &time);
    double const whole = std::floor(time);
    return {static_cast<time_t>(whole + SecondsFrom1970To2001),
            static_cast<long>(std::round((time - whole) * NanosecondsASecond))};
}

UTCDateTime createDateOf(OpenItem const& item, struct statx const& status) {
    Result<KeptCreationDate> const kept = keptCreationDate(item);
    if (kept.hasValue()) return utcDateTimeOf(kept.value().units);
    return dateOf((status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : status.stx_mtime);
}

std::uint8_t accessTo(OpenItem const& item) {
    constexpr std::array kinds{R_OK, W_OK, X_OK};
    unsigned access = 0;
    for (int const kind : kinds) {
        if (::faccessat(AT_FDCWD, item.systemPath().c_str(), kind, AT_EACCESS) == 0)
            access |= static_cast<unsigned>(kind);
    }
    return static_cast<std::uint8_t>(access);
}

// In bytes; 0 if the item has no resource fork.
std::uint64_t resourceForkSize(OpenItem const& item) {
    return sizeOfAttribute(item, AttributeName(XATTR_RESOURCEFORK_NAME)).valueOr(0);
}

std::uint32_t parentNumber(OpenItem const& item) {
    struct stat status {};
    bool const isKnown = item.folder.isOpen() && ::fstat(item.folder.number(), &status) == 0;
    return isKnown ? static_cast<std::uint32_t>(status.st_ino) : 0;
}

void readDates(OpenItem const& item, struct statx const& status, FSCatalogInfoBitmap which,
               FSCatalogInfo& information) {
    if ((which & kFSCatInfoCreateDate) != 0) information.createDate = createDateOf(item, status);
    if ((which & kFSCatInfoContentMod) != 0) information.contentModDate = dateOf(status.stx_mtime);
    if ((which & kFSCatInfoAttrMod) != 0) information.attributeModDate = dateOf(status.stx_ctime);
    if ((which & kFSCatInfoAccessDate) != 0) information.accessDate = dateOf(status.stx_atime);
    if ((which & kFSCatInfoBackupDate) != 0) information.backupDate = {};
}

void readSizes(OpenItem const& item, struct statx const& status, FSCatalogInfoBitmap which,
               FSCatalogInfo& information) {
    bool const isFile = S_ISREG(status.stx_mode);
    if ((which & kFSCatInfoDataSizes) != 0) {
        information.dataLogicalSize = isFile ? status.stx_size : 0;
        information.dataPhysicalSize = isFile ? status.stx_blocks * BlockSize : 0;
    }
    if ((which & kFSCatInfoRsrcSizes) != 0) {
        information.rsrcLogicalSize = isFile ? resourceForkSize(item) : 0;
        information.rsrcPhysicalSize = information.rsrcLogicalSize;
    }
}

Result<void> readFinderFields(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo& information) {
    if ((which & (kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo)) == 0) return {};
    Result<FinderInformation> const found = readFinderInformation(item);
    if (!found.hasValue()) return found.problem();
    FSCatalogInfo whole;
    setFinderInformation(whole, found.value());
    if ((which & kFSCatInfoFinderInfo) != 0) information.finderInfo = whole.finderInfo;
    if ((which & kFSCatInfoFinderXInfo) != 0) information.extFinderInfo = whole.extFinderInfo;
    return {};
}

Result<void> readValence(OpenItem const& item, bool isFolder, FSCatalogInfoBitmap which, FSCatalogInfo& information) {
    if ((which & kFSCatInfoValence) == 0) return {};
    information.valence = 0;
    if (!isFolder) return {};
    // Permission to read is enough; opening "." would need permission to enter the folder, too.
    FileDescriptor const folder(::open(item.systemPath().c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
    if (!folder.isOpen()) return lastSystemError("open", item.name);
    Result<std::vector<FolderEntry>> const entries = entriesOf(folder);
    if (!entries.hasValue()) return entries.problem();
    information.valence = static_cast<std::uint32_t>(entries.value().size());
    return {};
}

Result<void> writeFinderFields(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo const& information) {
    if ((which & (kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo)) == 0) return {};
    Result<FinderInformation> const old = readFinderInformation(item);
    if (!old.hasValue()) return old.problem();
    FSCatalogInfo whole;
    setFinderInformation(whole, old.value());
    if ((which & kFSCatInfoFinderInfo) != 0) whole.finderInfo = information.finderInfo;
    if ((which & kFSCatInfoFinderXInfo) != 0) whole.extFinderInfo = information.extFinderInfo;
    FinderInformation const changed = finderInformationOf(whole);
    return changed == old.value() ? Result<void>() : writeFinderInformation(item, changed);
}

Result<void> writeCreateDate(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo const& information) {
    if ((which & kFSCatInfoCreateDate) == 0) return {};
    return keepCreationDate(item, {unitsOf(information.createDate)});
}

Result<void> writeTimes(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo const& information) {
    ItemDates dates;
    if ((which & kFSCatInfoAccessDate) != 0) dates.access = timeOf(information.accessDate);
    if ((which & kFSCatInfoContentMod) != 0) dates.modified = timeOf(information.contentModDate);
    return setDates(item.item, dates, item.name);
}

Result<void> writePermissions(OpenItem const& item, struct statx const& status, FSCatalogInfoBitmap which,
                              FSPermissionInfo const& permissions) {
    if ((which & kFSCatInfoPermissions) == 0) return {};
    bool const isSameOwner = permissions.userID == status.stx_uid && permissions.groupID == status.stx_gid;
    bool const isSameMode = (permissions.mode & PermissionBits) == (status.stx_mode & PermissionBits);
    if (!isSameOwner && ::fchownat(item.item.number(), "", permissions.userID, permissions.groupID, AT_EMPTY_PATH) != 0)
        return lastSystemError("chown", item.name);
    // A change of owner may take permissions away.
    if (isSameOwner && isSameMode) return {};
    // A symbolic link has no permissions of its own.
    if (S_ISLNK(status.stx_mode) || ::chmod(item.systemPath().c_str(), permissions.mode & PermissionBits) == 0)
        return {};
    return lastSystemError("chmod", item.name);
}

Result<struct statx> statusOf(OpenItem const& item) {
    struct statx status {};
    int const failed =
        ::statx(item.item.number(), "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME, &status);
    if (failed != 0) return lastSystemError("statx", item.name);
    return status;
}

// The fields that the status and the item's folder tell.
void readStatus(OpenItem const& item, struct statx const& status, FSCatalogInfoBitmap which,
                FSCatalogInfo& information) {
    bool const isFolder = S_ISDIR(status.stx_mode);
    if ((which & kFSCatInfoTextEncoding) != 0) information.textEncodingHint = 0;
    if ((which & kFSCatInfoNodeFlags) != 0)
        information.nodeFlags = static_cast<std::uint16_t>((isFolder ? kFSNodeIsDirectoryMask : 0) |
                                                           (lockOf(item) == ItemLock::Locked ? kFSNodeLockedMask : 0));
    if ((which & kFSCatInfoParentDirID) != 0) information.parentDirID = parentNumber(item);
    if ((which & kFSCatInfoNodeID) != 0) information.nodeID = static_cast<std::uint32_t>(status.stx_ino);
    readDates(item, status, which, information);
    if ((which & (kFSCatInfoPermissions | kFSCatInfoUserAccess)) != 0)
        information.permissions = {
            .userID = status.stx_uid, .groupID = status.stx_gid, .userAccess = accessTo(item), .mode = status.stx_mode};
    readSizes(item, status, which, information);
    if ((which & kFSCatInfoSharingFlags) != 0) information.sharingFlags = 0;
    if ((which & kFSCatInfoUserPrivs) != 0) information.userPrivileges = 0;
}

} // namespace

Result<void> readCatalogFields(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo& information) {
    Result<struct statx> const status = statusOf(item);
    if (!status.hasValue()) return status.problem();
    if ((which & kFSCatInfoVolume) != 0) {
        Result<FSVolumeRefNum> const volume = numberOfVolumeOf(item.item);
        if (!volume.hasValue()) return volume.problem();
        information.volume = volume.value();
    }
    readStatus(item, status.value(), which, information);
    Result<void> const finder = readFinderFields(item, which, information);
    if (!finder.isDone()) return finder;
    return readValence(item, S_ISDIR(status.value().stx_mode), which, information);
}

Result<void> writeCatalogFields(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo const& information) {
    Result<struct statx> const status = statusOf(item);
    if (!status.hasValue()) return status.problem();
    bool const setsLock = (which & kFSCatInfoNodeFlags) != 0;
    ItemLock const lock = (information.nodeFlags & kFSNodeLockedMask) != 0 ? ItemLock::Locked : ItemLock::Unlocked;
    auto const setLockTo = [&](ItemLock wanted) {
        return setsLock && lock == wanted && lockOf(item) != wanted ? setLock(item, wanted) : Result<void>();
    };
    // The lock forbids the other changes, so it is taken off first and put on last.
    std::array<std::function<Result<void>()>, 6> const steps{
        [&] { return setLockTo(ItemLock::Unlocked); },
        [&] { return changeAttributesAsOwner(item, [&] { return writeFinderFields(item, which, information); }); },
        [&] { return changeAttributesAsOwner(item, [&] { return writeCreateDate(item, which, information); }); },
        [&] { return writePermissions(item, status.value(), which, information.permissions); },
        [&] { return writeTimes(item, which, information); },
        [&] { return setLockTo(ItemLock::Locked); },
    };
    for (std::function<Result<void>()> const& step : steps) {
        Result<void> const done = step();
        if (!done.isDone()) return done;
    }
    return {};
}

} // namespace mac
