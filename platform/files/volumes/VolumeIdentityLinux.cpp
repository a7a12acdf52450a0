#include "platform/files/volumes/VolumeIdentity.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include <array>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>

namespace mac {

namespace {

constexpr char DisksByIdentifier[] = "/dev/disk/by-uuid";

// As the system's FS_IOC_GETFSUUID answers it, which it knows since Linux 6.9.
struct FileSystemIdentifier {
    std::uint8_t length{0};
    std::array<std::uint8_t, 16> bytes{};
};
constexpr unsigned long AskForIdentifier = _IOR(0x15, 0, FileSystemIdentifier);

std::string hexadecimal(void const* bytes, std::size_t count) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (std::size_t index = 0; index < count; ++index) {
        auto const byte = static_cast<unsigned char const*>(bytes)[index];
        text.push_back(digits[byte >> 4]);
        text.push_back(digits[byte & 0xF]);
    }
    return text;
}

// The identifier that the file system bears; empty if it has none.
std::string identifierBorne(FileDescriptor const& top) {
    FileSystemIdentifier identifier;
    bool const isKnown = ::ioctl(top.number(), AskForIdentifier, &identifier) == 0;
    return isKnown && identifier.length <= identifier.bytes.size()
               ? hexadecimal(identifier.bytes.data(), identifier.length)
               : std::string();
}

// The name of the device in the folder of disks by identifiers; empty if it is not there.
std::string identifierOfDisk(std::string const& device) {
    std::vector<std::string> const names = namesInFolder(DisksByIdentifier, LinkAtEnd::IsFollowed).valueOr({});
    for (std::string const& name : names) {
        struct stat status {};
        if (::stat(BytePath(DisksByIdentifier).joined(name).c_str(), &status) != 0) continue;
        if (std::to_string(major(status.st_rdev)) + ":" + std::to_string(minor(status.st_rdev)) == device) return name;
    }
    return {};
}

} // namespace

std::string identityOfVolume(MountedVolume const& volume) {
    Result<FileDescriptor> const top = openPath(volume.mountPoint, O_RDONLY | O_DIRECTORY | O_NONBLOCK);
    if (top.hasValue()) {
        std::string const borne = identifierBorne(top.value());
        if (!borne.empty()) return volume.fileSystem + " " + borne;
    }
    std::string const disk = volume.device.starts_with("0:") ? std::string() : identifierOfDisk(volume.device);
    if (!disk.empty()) return volume.fileSystem + " disk " + disk;
    struct statfs status {};
    if (::statfs(volume.mountPoint.c_str(), &status) != 0) return {};
    static constexpr fsid_t unknown{};
    if (std::memcmp(&status.f_fsid, &unknown, sizeof unknown) == 0) return volume.fileSystem + " " + volume.source;
    return volume.fileSystem + " number " + hexadecimal(&status.f_fsid, sizeof status.f_fsid);
}

std::string pathOnVolume(MountedVolume const& volume, std::string_view path) {
    if (!BytePath(path).isAtOrBelow(volume.mountPoint)) return {};
    std::string_view const below = BytePath(path).belowFolder(volume.mountPoint);
    return below.empty() ? volume.subtree : BytePath(volume.subtree).joined(below);
}

std::optional<std::string> pathFromVolume(MountedVolume const& volume, std::string_view pathOnVolume) {
    if (!BytePath(pathOnVolume).isAtOrBelow(volume.subtree)) return std::nullopt;
    std::string_view const below = BytePath(pathOnVolume).belowFolder(volume.subtree);
    return below.empty() ? volume.mountPoint : BytePath(volume.mountPoint).joined(below);
}

} // namespace mac
