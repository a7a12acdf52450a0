#include "platform/files/volumes/VolumeInformation.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/system/LongPath.h"
#include <algorithm>
#include <fcntl.h>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <sys/statvfs.h>
#include <tuple>
#include <utility>

namespace mac {

namespace {

constexpr FSVolumeInfoBitmap KnownInformation = kFSVolInfoSizes | kFSVolInfoBlocks | kFSVolInfoFlags | kFSVolInfoFSInfo;

constexpr std::uint16_t HFSIdentifier = 0x0000;
constexpr std::uint16_t FATIdentifier = 0x4953;
constexpr std::uint16_t NetworkIdentifier = 0x6173;
constexpr std::uint16_t LocalIdentifier = 0xFFFE;
constexpr std::uint16_t OtherIdentifier = 0x4655;

// The file systems that are not Linux's own.
constexpr std::array<std::pair<std::string_view, std::uint16_t>, 12> ForeignKinds{{
    {"exfat", FATIdentifier},
    {"fuseblk", OtherIdentifier},
    {"hfs", HFSIdentifier},
    {"hfsplus", HFSIdentifier},
    {"iso9660", 0x4147},
    {"msdos", FATIdentifier},
    {"ntfs", 0x4E54},
    {"ntfs3", 0x4E54},
    {"udf", 0x4255},
    {"ufs", 0x4655},
    {"umsdos", FATIdentifier},
    {"vfat", FATIdentifier},
}};

// The number of the first volume on Mac OS X; the others count downwards.
constexpr FSVolumeRefNum FirstNumber = -100;

// The system may give the number of a mount to a later one, which is another volume.
using VolumeKey = std::tuple<std::uint64_t, std::string, std::string>;

struct NumberTable {
    std::mutex lock;
    std::map<VolumeKey, FSVolumeRefNum> numbers;
    FSVolumeRefNum next{FirstNumber};
};

// Never destroyed, since volumes may be asked for until the program's last instruction.
NumberTable& numberTable() {
    static NumberTable& shared = *std::make_unique<NumberTable>().release();
    return shared;
}

std::optional<MountedVolume> findVolume(FSVolumeRefNum number, ItemCount index) {
    std::vector<MountedVolume> volumes = mountedVolumes();
    if (index > 0) std::erase_if(volumes, &isSystemMemory);
    if (index > 0) return index <= volumes.size() ? std::optional(std::move(volumes[index - 1])) : std::nullopt;
    auto const found = std::ranges::find(volumes, number, &numberOfVolume);
    return found == volumes.end() ? std::nullopt : std::optional(std::move(*found));
}

Result<void> readSizes(MountedVolume const& volume, FSVolumeInfo& info) {
    Result<FileDescriptor> const root = openPath(volume.mountPoint, O_PATH | O_DIRECTORY);
    if (!root.hasValue()) return root.problem();
    struct statvfs status {};
    if (::fstatvfs(root.value().number(), &status) != 0) return lastSystemError("statvfs", volume.mountPoint);
    auto const counted = [](std::uint64_t count) {
        return static_cast<std::uint32_t>(std::min<std::uint64_t>(count, std::numeric_limits<std::uint32_t>::max()));
    };
    info.blockSize = counted(status.f_frsize);
    info.totalBlocks = counted(status.f_blocks);
    info.freeBlocks = counted(status.f_bavail);
    info.totalBytes = std::uint64_t{status.f_blocks} * status.f_frsize;
    info.freeBytes = std::uint64_t{status.f_bavail} * status.f_frsize;
    return {};
}

HFSUniStr255 nameOf(MountedVolume const& volume) {
    HFSUniStr255 name{};
    if (volume.name.size() > name.unicode.size()) return name;
    name.length = static_cast<std::uint16_t>(volume.name.size());
    std::ranges::transform(volume.name, name.unicode.begin(), [](unichar unit) { return unit == u':' ? u'/' : unit; });
    return name;
}

} // namespace

std::uint16_t fileSystemIdentifier(std::string_view fileSystem, bool isLocal) {
    auto const* const kind = std::ranges::find(ForeignKinds, fileSystem, [](auto const& row) { return row.first; });
    if (kind != ForeignKinds.end()) return kind->second;
    return isLocal ? LocalIdentifier : NetworkIdentifier;
}

FSVolumeRefNum numberOfVolume(MountedVolume const& volume) {
    std::scoped_lock const lock(numberTable().lock);
    auto const [place, isNew] =
        numberTable().numbers.try_emplace({volume.mount, volume.device, volume.mountPoint}, numberTable().next);
    // After 32,000 mounts the last number is given to all others.
    if (isNew && numberTable().next > std::numeric_limits<FSVolumeRefNum>::min()) --numberTable().next;
    return place->second;
}

Result<FSVolumeRefNum> numberOfVolumeOf(FileDescriptor const& item) {
    Result<MountedVolume> const volume = volumeOfItem(item);
    if (!volume.hasValue()) return volume.problem();
    return numberOfVolume(volume.value());
}

OSErr FSGetVolumeInfo(FSVolumeRefNum volume, ItemCount volumeIndex, FSVolumeRefNum* actualVolume,
                      FSVolumeInfoBitmap whichInfo, FSVolumeInfo* info, HFSUniStr255* volumeName,
                      FSRef* rootDirectory) {
    if (whichInfo != kFSVolInfoNone && !info) return paramErr;
    if (volumeIndex > 0 && volume != kFSInvalidVolumeRefNum) return paramErr;
    if ((whichInfo & ~KnownInformation) != 0) return errFSBadInfoBitmap;
    std::optional<MountedVolume> const found = findVolume(volume, volumeIndex);
    if (!found) return nsvErr;
    FSVolumeInfo read{};
    bool const wantsSizes = (whichInfo & (kFSVolInfoSizes | kFSVolInfoBlocks)) != 0;
    // A failure on a mounted volume is a failure of the disk.
    if (wantsSizes && !readSizes(*found, read).isDone()) return ioErr;
    read.flags = found->isReadOnly ? kFSVolFlagSoftwareLockedMask : 0;
    read.filesystemID = fileSystemIdentifier(found->fileSystem, found->isLocal);
    Result<FSRef> const root = rootDirectory ? referenceToPath(found->mountPoint, LinkAtEnd::IsFollowed) : FSRef{};
    // A walk by index goes on behind a volume whose root the user may not reach.
    if (!root.hasValue() && volumeIndex == 0) return ioErr;
    if (whichInfo != kFSVolInfoNone) *info = read;
    if (actualVolume) *actualVolume = numberOfVolume(*found);
    if (volumeName) *volumeName = nameOf(*found);
    if (rootDirectory) *rootDirectory = root.hasValue() ? root.value() : FSRef{};
    return noErr;
}

OSStatus FSCopyURLForVolume(FSVolumeRefNum vRefNum, CFURLRef* url) {
    if (!url) return paramErr;
    std::optional<MountedVolume> const volume = findVolume(vRefNum, 0);
    if (!volume) return nsvErr;
    *url = NSURL::fileURLWithPath_isDirectory_(NSString::stringWithFileSystemRepresentation_(volume->mountPoint), YES);
    return noErr;
}

} // namespace mac
