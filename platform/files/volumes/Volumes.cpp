#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/TextFolding.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/items/MountTable.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace mac {

namespace {

// Whether mounts at the path belong to the system.
bool isSystemFolder(std::string_view path) {
    static constexpr std::array<std::string_view, 16> folders = {
        "/bin", "/boot", "/dev",  "/efi", "/etc",  "/lib", "/lib32", "/lib64",
        "/nix", "/proc", "/sbin", "/sys", "/snap", "/tmp", "/usr",   "/var",
    };
    static constexpr std::array<std::string_view, 4> alone = {"/home", "/opt", "/root", "/srv"};
    if (BytePath(path).isAtOrBelow("/run")) return !BytePath(path).isAtOrBelow("/run/media");
    // A home folder that is a file system of its own, encrypted for example.
    bool const isHome = path.starts_with("/home/") && path.find('/', std::string_view("/home/").size()) == path.npos;
    return isHome || std::ranges::find(alone, path) != alone.end() ||
           std::ranges::any_of(folders, [&](std::string_view folder) { return BytePath(path).isAtOrBelow(folder); });
}

MountedVolume volumeOf(Mount const& mount) {
    MountedVolume volume;
    volume.mount = mount.id;
    volume.mountPoint = mount.mountPoint;
    volume.device = mount.device;
    volume.subtree = mount.subtree;
    volume.fileSystem = mount.type;
    volume.source = mount.source;
    volume.isReadOnly = mount.isReadOnly;
    volume.isLocal = isLocal(mount);
    volume.isBrowsable = volume.isStartup() || !isSystemFolder(volume.mountPoint);
    return volume;
}

bool isWanted(Mount const& mount, MountTable const& mounts) {
    // The mount table appends "//deleted" to a mount point that was removed.
    if (mount.mountPoint.find("//") != std::string::npos) return false;
    if (mount.mountPoint != "/" && isPseudoFileSystem(mount.type)) return false;
    return mounts.reachedBy(mount.mountPoint) == &mount;
}

// Whether the whole shows every item that the part shows.
bool isPartOf(MountedVolume const& part, MountedVolume const& whole) {
    return part.device == whole.device && BytePath(part.subtree).isAtOrBelow(whole.subtree);
}

void hideParts(std::vector<MountedVolume>& volumes) {
    for (auto part = volumes.begin(); part != volumes.end(); ++part) {
        if (part->isStartup()) continue;
        for (auto whole = volumes.begin(); whole != volumes.end(); ++whole) {
            bool const isTheSame = whole->subtree == part->subtree;
            if (whole != part && isPartOf(*part, *whole) && (!isTheSame || whole < part)) part->isBrowsable = false;
        }
    }
}

using FoldedName = std::u32string;

FoldedName folded(std::u16string_view name) {
    FoldedName result;
    for (FoldedCharacter const& character : foldedText(name, {.isCaseInsensitive = true}))
        result.push_back(character.codePoint);
    return result;
}

std::u16string nameOfVolume(MountedVolume const& volume, std::u16string_view startupName) {
    if (volume.isStartup()) return std::u16string(startupName);
    return unitsFromFileSystemBytes(BytePath(volume.mountPoint).leaf());
}

// The name with the first number that makes it unique.
std::u16string numberedName(std::u16string const& name, std::set<FoldedName> const& taken) {
    for (unsigned number = 1;; ++number) {
        std::string const digits = std::to_string(number);
        std::u16string numbered = name + u" " + std::u16string(digits.begin(), digits.end());
        if (!taken.contains(folded(numbered))) return numbered;
    }
}

void nameAll(std::vector<MountedVolume>& volumes, std::u16string_view startupName) {
    std::vector<MountedVolume*> order;
    order.reserve(volumes.size());
    for (MountedVolume& volume : volumes)
        order.push_back(&volume);
    std::stable_partition(order.begin(), order.end(), [](MountedVolume const* volume) { return volume->isBrowsable; });
    std::set<FoldedName> taken;
    std::vector<MountedVolume*> nameless;
    for (MountedVolume* const volume : order) {
        volume->name = nameOfVolume(*volume, startupName);
        if (!taken.insert(folded(volume->name)).second) nameless.push_back(volume);
    }
    for (MountedVolume* const volume : nameless) {
        volume->name = numberedName(volume->name, taken);
        taken.insert(folded(volume->name));
    }
}

} // namespace

bool isPseudoFileSystem(std::string_view fileSystem) {
    static constexpr std::array<std::string_view, 28> kinds = {
        "autofs",     "binder",      "binfmt_misc", "bpf",       "cgroup",     "cgroup2",
        "configfs",   "debugfs",     "devpts",      "devtmpfs",  "efivarfs",   "fuse.gvfsd-fuse",
        "fuse.lxcfs", "fuse.portal", "fusectl",     "hugetlbfs", "mqueue",     "nfsd",
        "nsfs",       "proc",        "pstore",      "resctrl",   "rpc_pipefs", "securityfs",
        "selinuxfs",  "smackfs",     "sysfs",       "tracefs",
    };
    return std::ranges::find(kinds, fileSystem) != kinds.end();
}

bool isSystemMemory(MountedVolume const& volume) {
    bool const isMemory = volume.fileSystem == "tmpfs" || volume.fileSystem == "ramfs";
    BytePath const point(volume.mountPoint);
    return isMemory && (point.isAtOrBelow("/dev") || point.isAtOrBelow("/sys"));
}

std::vector<MountedVolume> mountedVolumes() {
    return volumesOf(MountTable::current().valueOr({}), startupVolumeName());
}

std::vector<MountedVolume> volumesOf(MountTable const& mounts, std::u16string_view startupName) {
    std::vector<MountedVolume> volumes;
    for (Mount const& mount : mounts.mounts()) {
        if (isWanted(mount, mounts)) volumes.push_back(volumeOf(mount));
    }
    // The root exists even if the mount table lacks it.
    if (std::ranges::none_of(volumes, &MountedVolume::isStartup)) {
        MountedVolume const startup{.mountPoint = "/", .subtree = "/", .isLocal = true, .isBrowsable = true};
        volumes.push_back(startup);
    }
    // The root sorts before every other mount point.
    std::ranges::sort(volumes, {}, &MountedVolume::mountPoint);
    hideParts(volumes);
    nameAll(volumes, startupName);
    return volumes;
}

MountedVolume const* volumeOfPath(std::vector<MountedVolume> const& volumes, std::string_view path) {
    MountedVolume const* deepest = nullptr;
    for (MountedVolume const& volume : volumes) {
        bool const isDeeper = deepest == nullptr || volume.mountPoint.size() > deepest->mountPoint.size();
        if (isDeeper && BytePath(path).isAtOrBelow(volume.mountPoint)) deepest = &volume;
    }
    return deepest;
}

Result<MountedVolume> volumeOfItem(FileDescriptor const& item) {
    struct statx status {};
    int const flags = AT_EMPTY_PATH | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
    if (::statx(item.number(), "", flags, STATX_MNT_ID, &status) != 0) return lastSystemError("statx");
    SystemError const none{.code = ENXIO, .operation = "find volume"};
    Result<MountTable> const mounts = MountTable::current();
    if (!mounts.hasValue()) return mounts.problem();
    if ((status.stx_mask & STATX_MNT_ID) != 0) {
        Mount const* const mount = mounts.value().withId(status.stx_mnt_id);
        return mount && isWanted(*mount, mounts.value()) ? Result(volumeOf(*mount)) : none;
    }
    // Before Linux 5.8 the system does not tell the mount; the first volume on the device is taken.
    std::string const device = std::to_string(status.stx_dev_major) + ":" + std::to_string(status.stx_dev_minor);
    std::vector<MountedVolume> const volumes = volumesOf(mounts.value());
    auto const found = std::ranges::find(volumes, device, &MountedVolume::device);
    return found == volumes.end() ? none : Result(*found);
}

} // namespace mac
