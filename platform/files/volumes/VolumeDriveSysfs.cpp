#include "platform/files/volumes/Volumes.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/MountTable.h"
#include <array>
#include <climits>
#include <cstdlib>
#include <memory>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace mac {

namespace {

// Enough for an encrypted volume on a mirror on a partition, and a bound against cycles.
constexpr unsigned MostLayers = 8;
constexpr std::size_t LongestAnswer = 4096;

std::string canonical(std::string const& path) {
    std::unique_ptr<char, decltype(&std::free)> const result(::realpath(path.c_str(), nullptr), &std::free);
    return result ? std::string(result.get()) : std::string();
}

std::string contentsOf(std::string const& path) {
    Result<FileContents> const contents = readFileAtPath(path, LongestAnswer);
    if (!contents.hasValue()) return {};
    std::vector<std::byte> const& bytes = contents.value().bytes;
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

// The number of the block device that holds the volume. File systems with a device number of their own name the block
// device as their source.
std::string blockDeviceOf(MountedVolume const& volume) {
    if (!volume.device.starts_with("0:")) return volume.device;
    struct stat status {};
    if (!volume.source.starts_with("/dev/") || ::stat(volume.source.c_str(), &status) != 0) return {};
    if (!S_ISBLK(status.st_mode)) return {};
    return std::to_string(major(status.st_rdev)) + ":" + std::to_string(minor(status.st_rdev));
}

std::string firstEntryOf(std::string const& path) {
    std::vector<std::string> const names = namesInFolder(path, LinkAtEnd::IsFollowed).valueOr({});
    return names.empty() ? std::string() : names.front();
}

// The folder of the whole drive: below devices that are made of others, and not the partition's.
std::string driveFolderOf(std::string folder) {
    for (unsigned layer = 0; layer < MostLayers; ++layer) {
        std::string const parts = folder + "/slaves";
        std::string const below = firstEntryOf(parts);
        if (below.empty()) break;
        folder = canonical(std::string(parts).append("/").append(below));
    }
    return pathExists(folder + "/partition") ? std::string(BytePath(folder).parent()) : folder;
}

} // namespace

VolumeDrive driveOf(MountedVolume const& volume, std::string const& devicesFolder) {
    VolumeDrive drive;
    if (volume.isStartup()) return drive;
    drive.isEjectable = !volume.isLocal;
    std::string const device = blockDeviceOf(volume);
    std::string const block = device.empty() ? std::string() : canonical(devicesFolder + "/dev/block/" + device);
    if (block.empty()) return drive;
    std::string const folder = driveFolderOf(block);
    bool const isImage = pathExists(folder + "/loop/backing_file");
    bool const isConnected = folder.find("/usb") != std::string::npos || folder.find("/mmc") != std::string::npos;
    bool const canEject = contentsOf(folder + "/events").find("eject_request") != std::string::npos;
    drive.isRemovable = contentsOf(folder + "/removable").starts_with('1');
    drive.isEjectable = drive.isEjectable || drive.isRemovable || isImage || isConnected || canEject;
    return drive;
}

} // namespace mac
