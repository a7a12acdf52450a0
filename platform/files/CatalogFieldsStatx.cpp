#include "platform/files/CatalogFields.h"
#include "platform/files/CreationDates.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/files/VolumeNumbers.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/NSDate.h"
#include "platform/foundation/NSNumber.h"
#include "platform/system/OpenItems.h"
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr double SecondsFrom1970To2001 = 978'307'200;
constexpr double NanosecondsASecond = 1e9;
constexpr unsigned PermissionBits = 07777;
constexpr std::uint64_t BlockSize = 512;
constexpr std::uint32_t Start = 0;
// A date that the record cannot hold is none.
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
    std::optional<UTCDateTime> const kept = keptCreationDate(item);
    if (kept) return *kept;
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

// 0 where there is none.
std::uint64_t resourceForkSize(OpenItem const& item) {
    std::ptrdiff_t const size =
        getxattr(attributePath(item).c_str(), XATTR_RESOURCEFORK_NAME, nullptr, 0, Start, XATTR_NOFOLLOW);
    return static_cast<std::uint64_t>(std::max<std::ptrdiff_t>(size, 0));
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

bool readFinderFields(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo& information) {
    if ((which & (kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo)) == 0) return true;
    std::optional<FinderInformation> const found = readFinderInformation(attributePath(item));
    if (!found) return false;
    FSCatalogInfo whole;
    setFinderInformation(whole, *found);
    if ((which & kFSCatInfoFinderInfo) != 0) information.finderInfo = whole.finderInfo;
    if ((which & kFSCatInfoFinderXInfo) != 0) information.extFinderInfo = whole.extFinderInfo;
    return true;
}

bool readValence(OpenItem const& item, bool isFolder, FSCatalogInfoBitmap which, FSCatalogInfo& information) {
    if ((which & kFSCatInfoValence) == 0) return true;
    information.valence = 0;
    if (!isFolder) return true;
    // To be read is enough, it need not be entered, as it must for ".".
    FileDescriptor folder(::open(item.systemPath().c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
    std::optional<std::vector<FolderEntry>> const entries =
        folder.isOpen() ? entriesOf(std::move(folder)) : std::nullopt;
    if (!entries) return false;
    information.valence = static_cast<std::uint32_t>(entries->size());
    return true;
}

bool writeFinderFields(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo const& information) {
    if ((which & (kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo)) == 0) return true;
    std::optional<FinderInformation> const old = readFinderInformation(attributePath(item));
    if (!old) return false;
    FSCatalogInfo whole;
    setFinderInformation(whole, *old);
    if ((which & kFSCatInfoFinderInfo) != 0) whole.finderInfo = information.finderInfo;
    if ((which & kFSCatInfoFinderXInfo) != 0) whole.extFinderInfo = information.extFinderInfo;
    FinderInformation const changed = finderInformationOf(whole);
    return changed == *old || writeFinderInformation(attributePath(item), changed);
}

bool writeTimes(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo const& information) {
    std::array<timespec, 2> times{};
    bool const changesAccess = (which & kFSCatInfoAccessDate) != 0;
    bool const changesContents = (which & kFSCatInfoContentMod) != 0;
    if (!changesAccess && !changesContents) return true;
    times[0].tv_nsec = UTIME_OMIT;
    times[1].tv_nsec = UTIME_OMIT;
    if (changesAccess) times[0] = timeOf(information.accessDate);
    if (changesContents) times[1] = timeOf(information.contentModDate);
    return ::utimensat(item.item.number(), "", times.data(), AT_EMPTY_PATH) == 0;
}

bool writePermissions(OpenItem const& item, struct statx const& status, FSPermissionInfo const& permissions) {
    bool const isSameOwner = permissions.userID == status.stx_uid && permissions.groupID == status.stx_gid;
    bool const isSameMode = (permissions.mode & PermissionBits) == (status.stx_mode & PermissionBits);
    if (!isSameOwner && ::fchownat(item.item.number(), "", permissions.userID, permissions.groupID, AT_EMPTY_PATH) != 0)
        return false;
    // A change of owner may take permissions away.
    if (isSameOwner && isSameMode) return true;
    // A link has none of its own.
    return S_ISLNK(status.stx_mode) || ::chmod(item.systemPath().c_str(), permissions.mode & PermissionBits) == 0;
}

bool setLocked(OpenItem const& item, bool isLocked) {
    NSDictionary const attributes =
        NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithBool_(BOOL(isLocked)), NSFileImmutable);
    errno = 0;
    if (changeFileAttributes(item.item, attributes)) return true;
    if (errno == 0) errno = EPERM;
    return false;
}

std::optional<struct statx> statusOf(OpenItem const& item) {
    struct statx status {};
    int const failed =
        ::statx(item.item.number(), "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME, &status);
    return failed ? std::nullopt : std::optional(status);
}

bool isLocked(struct statx const& status) { return (status.stx_attributes & STATX_ATTR_IMMUTABLE) != 0; }

} // namespace

std::string attributePath(OpenItem const& item) {
    // The root lies in no folder.
    if (item.name.empty()) return item.folder.isOpen() ? item.systemPath() : "/";
    return descriptorPath(item.folder) + "/" + item.name;
}

bool readCatalogFields(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo& information) {
    std::optional<struct statx> const status = statusOf(item);
    if (!status) return false;
    bool const isFolder = S_ISDIR(status->stx_mode);
    if ((which & kFSCatInfoTextEncoding) != 0) information.textEncodingHint = 0;
    if ((which & kFSCatInfoNodeFlags) != 0)
        information.nodeFlags = static_cast<std::uint16_t>((isFolder ? kFSNodeIsDirectoryMask : 0) |
                                                           (isLocked(*status) ? kFSNodeLockedMask : 0));
    if ((which & kFSCatInfoVolume) != 0) {
        std::optional<FSVolumeRefNum> const volume = numberOfVolumeOf(item.item);
        if (!volume) return false;
        information.volume = *volume;
    }
    if ((which & kFSCatInfoParentDirID) != 0) information.parentDirID = parentNumber(item);
    if ((which & kFSCatInfoNodeID) != 0) information.nodeID = static_cast<std::uint32_t>(status->stx_ino);
    readDates(item, *status, which, information);
    if ((which & (kFSCatInfoPermissions | kFSCatInfoUserAccess)) != 0)
        information.permissions = {.userID = status->stx_uid,
                                   .groupID = status->stx_gid,
                                   .userAccess = accessTo(item),
                                   .mode = status->stx_mode};
    readSizes(item, *status, which, information);
    if ((which & kFSCatInfoSharingFlags) != 0) information.sharingFlags = 0;
    if ((which & kFSCatInfoUserPrivs) != 0) information.userPrivileges = 0;
    return readFinderFields(item, which, information) && readValence(item, isFolder, which, information);
}

bool writeCatalogFields(OpenItem const& item, FSCatalogInfoBitmap which, FSCatalogInfo const& information) {
    std::optional<struct statx> const status = statusOf(item);
    if (!status) return false;
    bool const changesLock =
        (which & kFSCatInfoNodeFlags) != 0 && ((information.nodeFlags & kFSNodeLockedMask) != 0) != isLocked(*status);
    // What forbids changes is lifted first and put on last.
    if (changesLock && isLocked(*status) && !setLocked(item, false)) return false;
    if (!writeFinderFields(item, which, information)) return false;
    if ((which & kFSCatInfoCreateDate) != 0 && !keepCreationDate(item, information.createDate)) return false;
    if ((which & kFSCatInfoPermissions) != 0 && !writePermissions(item, *status, information.permissions)) return false;
    if (!writeTimes(item, which, information)) return false;
    return !changesLock || isLocked(*status) || setLocked(item, true);
}

} // namespace mac
