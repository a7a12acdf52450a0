#include "platform/system/walker/Packages.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/walker/FolderFacts.h"
#include "platform/system/walker/FolderReader.h"
#include "platform/system/walker/VolumeList.h"
#include "platform/system/walker/VolumeVisit.h"
#include "platform/system/walker/VolumeWalker.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/openat2.h>
#include <optional>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace mac {

PackageRule::PackageRule(std::string suffix, std::vector<std::string> names)
    : m_suffix(std::move(suffix)), m_names(std::move(names)) {}

bool PackageRule::isWanted(std::string_view package) const {
    return m_names.empty() || std::find(m_names.begin(), m_names.end(), package) != m_names.end();
}

bool PackageRule::crossesPackage(std::string_view relativePath) const {
    while (!relativePath.empty()) {
        std::size_t const slash = relativePath.find('/');
        if (isPackage(relativePath.substr(0, slash))) return true;
        relativePath.remove_prefix(slash == std::string_view::npos ? relativePath.size() : slash + 1);
    }
    return false;
}

namespace {

// The way to a longer path takes too long to be gone before the walk.
constexpr std::size_t MostPathBytes = 4096;

// Whether the path consists of names that a walk hands out: none is empty, "." or "..".
bool hasOnlyNames(std::string_view relativePath) {
    if (relativePath.find('\0') != std::string_view::npos) return false;
    while (true) {
        std::string_view const name = relativePath.substr(0, relativePath.find('/'));
        if (name.empty() || name == "." || name == "..") return false;
        if (name.size() == relativePath.size()) return true;
        relativePath.remove_prefix(name.size() + 1);
    }
}

// Opens a folder below another for reading, if no symbolic link leads there. The system does it in one call where it is
// new enough and lets programs ask.
FileDescriptor openWithoutLinks(FileDescriptor const& top, std::string_view relativePath) {
    std::string const path(relativePath.empty() ? "." : relativePath);
    open_how how{.flags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC,
                 .mode = 0,
                 .resolve = RESOLVE_NO_SYMLINKS | RESOLVE_NO_XDEV};
    FileDescriptor folder(static_cast<int>(::syscall(SYS_openat2, top.number(), path.c_str(), &how, sizeof how)));
    if (folder.isOpen()) return folder;
    SystemError const error = lastSystemError("openat2");
    if (!error.is(ENOSYS) && !error.is(EPERM)) return {};
    Result<FileDescriptor> const item = openBelow(top, relativePath);
    return item.hasValue() ? readableFolder(item.value()).valueOr(FileDescriptor()) : FileDescriptor();
}

class PackageCheck {
public:
    PackageCheck(VolumeList const& volumes, PackageRule const& packages, std::atomic<bool> const& wasLeft)
        : m_volumes(volumes), m_packages(packages), m_wasLeft(wasLeft) {}

    bool holds(std::string const& path);

private:
    Volume const* volumeOf(BytePath path) const;
    bool isBehindMountPoint(Volume const& volume, BytePath path) const;
    FileDescriptor openFolder(Volume const& volume, BytePath folder) const;

    VolumeList const& m_volumes;
    PackageRule const& m_packages;
    std::atomic<bool> const& m_wasLeft;
    Volume const* m_volume = nullptr; // that of the last path
    std::optional<VolumeVisit> m_visit;
    // The folder of the last path: packages often lie side by side.
    std::string m_folderPath;
    FileDescriptor m_folder;
};

// The innermost volume that holds the path; null if there is none.
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

// Opens the folder for reading; the descriptor is not open if a walk would not come to the folder.
FileDescriptor PackageCheck::openFolder(Volume const& volume, BytePath folder) const {
    std::string_view const below = folder.belowFolder(volume.path);
    if (m_packages.crossesPackage(below)) return {};
    Result<FileDescriptor> const top = openPath(volume.path, O_RDONLY | O_DIRECTORY);
    if (!top.hasValue()) return {};
    FileDescriptor found = openWithoutLinks(top.value(), below);
    if (!found.isOpen()) return {};
    std::uint64_t const mount = factsOf(found).valueOr(FolderFacts()).mount;
    if (volume.mount != 0 && mount != volume.mount) return {};
    return found;
}

bool PackageCheck::holds(std::string const& path) {
    if (path.size() > MostPathBytes) return false;
    BytePath const package(path);
    std::string const name(package.leaf());
    Volume const* const volume = volumeOf(package);
    if (volume == nullptr || !m_packages.isPackage(name) || !m_packages.isWanted(name)) return false;
    if (!hasOnlyNames(package.belowFolder(volume->path)) || isBehindMountPoint(*volume, package)) return false;
    if (std::exchange(m_volume, volume) != volume) m_visit.emplace(*volume, m_wasLeft);
    if (std::string_view const folder = package.parent(); m_folderPath != folder) {
        m_folderPath = folder;
        m_folder = openFolder(*volume, BytePath(folder));
    }
    if (!m_folder.isOpen()) return false;
    return factsInside(m_folder, name.c_str()).valueOr(FolderFacts()).isFolder;
}

} // namespace

std::vector<std::string> packagesStillThere(std::vector<std::string> const& paths, VolumeList const& volumes,
                                            PackageRule const& packages, std::function<bool()> const& shouldStop,
                                            std::atomic<bool> const& wasLeft) {
    PackageCheck check(volumes, packages, wasLeft);
    std::vector<std::string> there;
    for (std::string const& path : paths) {
        if (shouldStop()) break;
        if (check.holds(path)) there.push_back(path);
    }
    return there;
}

namespace {

// A walk from a root names everything by that root.
bool isReached(std::string const& path, VolumeWalkRequest const& request) {
    if (request.roots.empty()) return true;
    return std::ranges::any_of(request.roots,
                               [&path](std::string_view root) { return BytePath(path).isAtOrBelow(root); });
}

bool hasMore(FolderReader& reader, FileDescriptor const& folder) {
    Result<FolderReader::Fill> const fill = reader.fill(folder);
    return fill.hasValue() && fill.value() == FolderReader::Fill::Some;
}

} // namespace

std::vector<std::string> packagesInFolder(std::string const& folder, VolumeWalkRequest const& request) {
    std::vector<std::string> paths;
    Result<FileDescriptor> const open = openPath(folder, O_RDONLY | O_DIRECTORY);
    if (!open.hasValue()) return paths;
    PackageRule const rule(request.packageSuffix, request.names);
    FolderReader reader;
    while (hasMore(reader, open.value())) {
        while (std::optional<std::string_view> const name = reader.nextSubfolder(open.value())) {
            if (!rule.isPackage(*name) || !rule.isWanted(*name)) continue;
            std::string path = BytePath(folder).joined(*name);
            if (isReached(path, request)) paths.push_back(std::move(path));
        }
    }
    return paths;
}

} // namespace mac
