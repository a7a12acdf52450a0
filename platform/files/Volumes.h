#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

class FileDescriptor;
class MountTable;

// How Mac OS X calls the volume that the system has started from.
inline constexpr std::u16string_view StartupVolumeName = u"Macintosh HD";

// A mounted file system that holds somebody's files, as it was when it was asked for. A value; for implementations.
struct MountedVolume {
    std::uint64_t mount{0}; // its number in the list of mounts
    std::string mountPoint{};
    std::u16string name{};    // as a path would show it; no other volume has it in any case of letters
    std::string device{};     // "8:1"
    std::string subtree{};    // the folder of the file system that is mounted, "/" for all of it
    std::string fileSystem{}; // "ext4"
    std::string source{};     // "/dev/sda1", "server:/export"
    bool isReadOnly{false};
    bool isLocal{false};     // else it is on the network
    bool isBrowsable{false}; // a disk to people, and not a part of the system

    bool isStartup() const { return mountPoint == "/"; }
};

// Whoever has a file system of the kind holds no files of anybody's in it: the kernel shows itself there.
bool isPseudoFileSystem(std::string_view fileSystem);

// The startup volume first, then by the bytes of the mount points. What others hide, and pseudo file systems, are left
// out; the startup volume is there whatever it is. Not to be browsed are those that lie where the system has its parts
// (/boot, /home, /run, /tmp, ...) and those that only show a part of another one once more.
//
// Linux: a volume's name is the last component of its mount point. Where several would have one name, those to be
// browsed come first, and the others get " 1", " 2" and so on behind it.
std::vector<MountedVolume> mountedVolumes();
std::vector<MountedVolume> volumesOf(MountTable const& mounts);

// That an absolute path without links and dots leads into, told by the text alone; nullptr for what is no such path.
MountedVolume const* volumeOfPath(std::vector<MountedVolume> const& volumes, std::string_view path);
// The one that holds the open item, without its name, and to be browsed also where another volume shows all that it
// does: to know that takes a look at all. Nothing for what is on no volume: a pipe, or a file of the kernel's own.
std::optional<MountedVolume> volumeOfItem(FileDescriptor const& item);

// What the system tells of the drive that holds a volume.
struct VolumeDrive {
    bool isRemovable{false}; // the medium can be taken out of the drive
    bool isEjectable{false}; // medium, drive or connection can be taken away: also external disks, images, the network
};

// Nothing of both for the startup volume and where the system does not tell. The folder is where the system shows its
// devices.
VolumeDrive driveOf(MountedVolume const& volume, std::string const& devicesFolder = "/sys");

} // namespace mac
