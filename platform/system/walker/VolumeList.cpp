#include "platform/system/walker/VolumeList.h"

#include "platform/system/items/MountTable.h"
#include "platform/system/walker/FolderStack.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

namespace mac {

namespace {

struct Candidate {
    Volume volume;
    std::string canonicalPath;
    Mount const* mount = nullptr; // nullptr: not in the table
    std::string device;
    std::string subtree; // where it lies in the device's file system
    bool isPackage = false;
};

// What follows `folder` in `path`, which lies at or below it: "" or "a/b".
std::string_view pathBelow(std::string_view path, std::string_view folder) {
    path.remove_prefix(folder.size());
    if (path.starts_with('/')) path.remove_prefix(1);
    return path;
}

std::string joined(std::string folder, std::string_view relativePath) {
    if (!relativePath.empty()) appendComponent(folder, relativePath);
    return folder;
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

std::string_view lastComponent(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::string_view withoutLastComponent(std::string_view relativePath) {
    std::size_t const slash = relativePath.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : relativePath.substr(0, slash);
}

Candidate candidateForRoot(WalkRoot const& root, Mount const* mount, PackageRule const& packages) {
    Candidate candidate{.volume = {root.path, root.mount},
                        .canonicalPath = root.canonicalPath,
                        .mount = mount,
                        .device = "",
                        .subtree = root.canonicalPath,
                        .isPackage = !root.isLink && packages.isPackage(lastComponent(root.path))};
    if (mount == nullptr) return candidate;
    candidate.device = mount->device;
    candidate.subtree = joined(mount->subtree, pathBelow(root.canonicalPath, mount->mountPoint));
    return candidate;
}

Candidate candidateForMount(Mount const& mount, std::string&& path) {
    return {.volume = {std::move(path), mount.id},
            .canonicalPath = mount.mountPoint,
            .mount = &mount,
            .device = mount.device,
            .subtree = mount.subtree};
}

// Whether a walk of `wide` comes to `narrow` by itself.
bool covers(Candidate const& wide, Candidate const& narrow, PackageRule const& packages, MountTable const& mounts) {
    if (wide.device != narrow.device || !isAtOrBelow(narrow.subtree, wide.subtree)) return false;
    std::string_view const below = pathBelow(narrow.subtree, wide.subtree);
    if (wide.isPackage && !below.empty()) return false;
    if (packages.crossesPackage(narrow.isPackage ? withoutLastComponent(below) : below)) return false;
    return mounts.reachedBy(joined(wide.canonicalPath, below)) == wide.mount;
}

// Without those that others cover. The widest come first, so that none is left to one that is itself left out.
std::vector<Candidate> withoutCovered(std::vector<Candidate>&& candidates, PackageRule const& packages,
                                      MountTable const& mounts) {
    std::stable_sort(candidates.begin(), candidates.end(), [](Candidate const& left, Candidate const& right) {
        return left.subtree.size() < right.subtree.size();
    });
    std::vector<Candidate> kept;
    for (Candidate& candidate : candidates) {
        bool const isCovered = std::any_of(
            kept.begin(), kept.end(), [&](Candidate const& wide) { return covers(wide, candidate, packages, mounts); });
        if (!isCovered) kept.push_back(std::move(candidate));
    }
    return kept;
}

// Nothing, with errno set, when there is no such folder.
std::optional<WalkRoot> locate(std::string const& path) {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0) return std::nullopt;
    OpenFolder const folder = OpenFolder::atPath(path);
    if (!folder.isOpen()) return std::nullopt;
    std::unique_ptr<char, decltype(&std::free)> const canonicalPath(::realpath(path.c_str(), nullptr), &std::free);
    if (canonicalPath == nullptr) return std::nullopt;
    return WalkRoot{path, canonicalPath.get(), factsOf(folder).mount, S_ISLNK(status.st_mode)};
}

} // namespace

VolumeList chooseVolumes(std::vector<WalkRoot> const& roots, bool onlyLocal, PackageRule const& packages,
                         MountTable const& mounts) {
    VolumeList list;
    std::vector<Candidate> candidates;
    for (WalkRoot const& root : roots) {
        Mount const* rootMount = mounts.withId(root.mount);
        Candidate const candidate = candidateForRoot(root, rootMount, packages);
        if (!onlyLocal || rootMount == nullptr || isLocal(*rootMount)) candidates.push_back(candidate);
        if (candidate.isPackage) continue;
        for (Mount const& mount : mounts.mounts()) {
            if (mount.mountPoint == root.canonicalPath || !isAtOrBelow(mount.mountPoint, root.canonicalPath)) continue;
            std::string_view const below = pathBelow(mount.mountPoint, root.canonicalPath);
            std::string path = joined(root.path, below);
            list.mountPoints.add(path);
            if (!isLocal(mount) || packages.crossesPackage(below)) continue;
            if (mounts.reachedBy(mount.mountPoint) != &mount) continue;
            candidates.push_back(candidateForMount(mount, std::move(path)));
        }
    }
    for (Candidate& candidate : withoutCovered(std::move(candidates), packages, mounts)) {
        if (!candidate.isPackage)
            list.volumes.push_back(std::move(candidate.volume));
        else if (packages.isWanted(lastComponent(candidate.volume.path)))
            list.packages.push_back(std::move(candidate.volume.path));
    }
    return list;
}

VolumeList listVolumes(std::vector<std::string> const& paths, PackageRule const& packages) {
    std::vector<WalkRoot> roots;
    std::vector<UnreadableFolder> failures;
    MountTable const mounts = MountTable::current();
    if (mounts.mounts().empty()) failures.push_back({MountTable::source, errno});
    for (std::string const& path : paths.empty() ? std::vector<std::string>{"/"} : paths) {
        std::string const plainPath = withoutTrailingSlashes(path);
        if (std::optional<WalkRoot> root = locate(plainPath))
            roots.push_back(std::move(*root));
        else
            failures.push_back({plainPath, errno});
    }
    VolumeList list = chooseVolumes(roots, paths.empty(), packages, mounts);
    list.failures = std::move(failures);
    return list;
}

} // namespace mac
