#include "platform/system/walker/RememberedPackages.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/walker/FolderFacts.h"
#include <fcntl.h>
#include <utility>

namespace mac {

namespace {

// The way to a longer path takes too long to be gone before the walk.
constexpr std::size_t MostPathBytes = 4096;

// Whether a walk could have named a folder so.
bool hasOnlyNames(std::string_view relativePath) {
    if (relativePath.find('\0') != std::string_view::npos) return false;
    while (true) {
        std::string_view const name = relativePath.substr(0, relativePath.find('/'));
        if (name.empty() || name == "." || name == "..") return false;
        if (name.size() == relativePath.size()) return true;
        relativePath.remove_prefix(name.size() + 1);
    }
}

class PackageCheck {
public:
    PackageCheck(VolumeList const& volumes, PackageRule const& packages) : m_volumes(volumes), m_packages(packages) {}

    bool holds(std::string const& path);

private:
    Volume const* volumeOf(BytePath path) const;
    bool isBehindMountPoint(Volume const& volume, BytePath path) const;
    FileDescriptor openFolder(Volume const& volume, BytePath folder) const;

    VolumeList const& m_volumes;
    PackageRule const& m_packages;
    // The folder of the last path: packages often lie side by side.
    std::string m_folderPath;
    FileDescriptor m_folder;
};

// The innermost one.
Volume const* PackageCheck::volumeOf(BytePath path) const {
    Volume const* found = nullptr;
    for (Volume const& volume : m_volumes.volumes) {
        bool const isInner = found == nullptr || volume.path.size() > found->path.size();
        if (isInner && path.isBelow(volume.path)) found = &volume;
    }
    return found;
}

// Whether the path, or a folder on the way to it from the volume's own, is a mount point.
bool PackageCheck::isBehindMountPoint(Volume const& volume, BytePath path) const {
    while (path.isBelow(volume.path)) {
        if (m_volumes.mountPoints.contains(path.bytes())) return true;
        path = BytePath(path.parent());
    }
    return false;
}

// Not open if a walk would not come to it.
FileDescriptor PackageCheck::openFolder(Volume const& volume, BytePath folder) const {
    std::string_view const below = folder.belowFolder(volume.path);
    if (m_packages.crossesPackage(below)) return {};
    Result<FileDescriptor> const top = openPath(volume.path, O_RDONLY | O_DIRECTORY);
    if (!top.hasValue()) return {};
    Result<FileDescriptor> const item = openBelow(top.value(), below);
    if (!item.hasValue()) return {};
    Result<FileDescriptor> readable = readableFolder(item.value());
    if (!readable.hasValue()) return {};
    std::uint64_t const mount = factsOf(readable.value()).valueOr(FolderFacts()).mount;
    if (volume.mount != 0 && mount != volume.mount) return {};
    return readable.takeValue();
}

bool PackageCheck::holds(std::string const& path) {
    if (path.size() > MostPathBytes) return false;
    BytePath const package(path);
    std::string const name(package.leaf());
    Volume const* const volume = volumeOf(package);
    if (volume == nullptr || !m_packages.isPackage(name) || !m_packages.isWanted(name)) return false;
    if (!hasOnlyNames(package.belowFolder(volume->path)) || isBehindMountPoint(*volume, package)) return false;
    if (std::string_view const folder = package.parent(); m_folderPath != folder) {
        m_folderPath = folder;
        m_folder = openFolder(*volume, BytePath(folder));
    }
    if (!m_folder.isOpen()) return false;
    return factsInside(m_folder, name.c_str()).valueOr(FolderFacts()).isFolder;
}

} // namespace

std::vector<std::string> packagesStillThere(std::vector<std::string> const& paths, VolumeList const& volumes,
                                            PackageRule const& packages, std::function<bool()> const& shouldStop) {
    PackageCheck check(volumes, packages);
    std::vector<std::string> there;
    for (std::string const& path : paths) {
        if (shouldStop()) break;
        if (check.holds(path)) there.push_back(path);
    }
    return there;
}

} // namespace mac
