#pragma once

#include "platform/system/Result.h"
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

class FileDescriptor;
class MountTable;

// The name of the startup volume, the one mounted at "/", if it has no label. HFS paths that begin with it lead to the
// startup volume whatever its label is, unless another volume has the name.
inline constexpr std::u16string_view UnlabeledStartupVolumeName = u"Macintosh HD";

// The name of the startup volume, in the form of paths: its label, else UnlabeledStartupVolumeName. Asks the file
// system, then the links that the system keeps for labels.
std::u16string startupVolumeName();

// The label of the device by the links in the folder, each of which is named by the label that the device it leads to
// has; unusual characters are written "\x20". nullopt if no link leads to the device.
std::optional<std::string> labelOfDevice(std::uint64_t device, std::string const& linksFolder = "/dev/disk/by-label");

// A mounted file system that holds files of users, as it was when the mount table was read. A value.
struct MountedVolume {
    std::uint64_t mount{0}; // its number in the mount table
    std::string mountPoint{};
    std::u16string name{};    // in the form of paths; unique among the volumes, whatever the case of letters
    std::string device{};     // "8:1"
    std::string subtree{};    // the folder of the file system that is mounted, "/" for all of it
    std::string fileSystem{}; // "ext4"
    std::string source{};     // "/dev/sda1", "server:/export"
    bool isReadOnly{false};
    bool isLocal{false};     // false for a network file system
    bool isBrowsable{false}; // shown to people as a disk; false for parts of the system

    bool isStartup() const { return mountPoint == "/"; }
};

// Whether a file system of that kind holds no files of users, but what the kernel shows.
bool isPseudoFileSystem(std::string_view fileSystem);

// Whether the system keeps data of its own in the volume: memory below /dev or /sys. Its items have a volume like
// others, but it is none to be listed.
bool isSystemMemory(MountedVolume const& volume);

// The startup volume first, the others by the bytes of their mount points. Mounts hidden by others and pseudo file
// systems are left out; the startup volume is always listed. Not browsable are mounts where the system has its parts
// (/boot, /home, /run, /tmp, ...) and mounts that only show a part of another volume once more.
//
// Linux: the name of any but the startup volume is the last component of its mount point. If several would have the
// same name, the first browsable one keeps it, and the others get " 1", " 2" and so on appended.
std::vector<MountedVolume> mountedVolumes();
std::vector<MountedVolume> volumesOf(MountTable const& mounts,
                                     std::u16string_view startupName = UnlabeledStartupVolumeName);

// The volume that an absolute path without links and dots leads into, told by the text alone; nullptr if there is none.
MountedVolume const* volumeOfPath(std::vector<MountedVolume> const& volumes, std::string_view path);
// The volume that holds the open item. Its name is not set, and it is browsable even if another volume shows all its
// items: both need the list of all volumes. ENXIO for an item on no volume, such as a pipe.
Result<MountedVolume> volumeOfItem(FileDescriptor const& item);

// The drive that holds a volume.
struct VolumeDrive {
    bool isRemovable{false}; // the medium can be taken out of the drive
    bool isEjectable{false}; // medium, drive or connection can be taken away: also external disks, images, the network
};

// Both false for the startup volume, and if the system does not tell. `devicesFolder` is where the kernel shows its
// devices.
VolumeDrive driveOf(MountedVolume const& volume, std::string const& devicesFolder = "/sys");

} // namespace mac
