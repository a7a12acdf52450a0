#include "platform/system/walker/VolumeList.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/MountTable.h"
#include "platform/system/walker/FolderFacts.h"
#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
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

// The folder itself for an empty relative path.
std::string joined(BytePath folder, std::string_view relativePath) {
    return relativePath.empty() ? std::string(folder.bytes()) : folder.joined(relativePath);
}

Candidate candidateForRoot(WalkRoot const& root, Mount const* mount, PackageRule const& packages) {
    Candidate candidate{.volume = {root.path, root.mount},
                        .canonicalPath = root.canonicalPath,
                        .mount = mount,
                        .device = "",
                        .subtree = root.canonicalPath,
                        .isPackage = !root.isLink && packages.isPackage(BytePath(root.path).leaf())};
    if (mount == nullptr) return candidate;
    candidate.device = mount->device;
    candidate.subtree = joined(mount->subtree, BytePath(root.canonicalPath).belowFolder(mount->mountPoint));
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
    if (wide.device != narrow.device || !BytePath(narrow.subtree).isAtOrBelow(wide.subtree)) return false;
    std::string_view const below = BytePath(narrow.subtree).belowFolder(wide.subtree);
    if (wide.isPackage && !below.empty()) return false;
    if (packages.crossesPackage(narrow.isPackage ? BytePath(below).parent() : below)) return false;
    return mounts.reachedBy(joined(wide.canonicalPath, below)) == wide.mount;
}

// The candidates that no other one covers. The widest are looked at first, so that no candidate is left to one that is
// itself left out.
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

// The folders that the roots lead to, and the mounts below them.
class CandidateList {
public:
    CandidateList(PackageRule const& packages, MountTable const& mounts, MountsBelow mountsBelow)
        : m_packages(packages), m_mounts(mounts), m_mountsBelow(mountsBelow) {}

    void add(WalkRoot const& root, bool onlyLocal);
    std::vector<Candidate> take() { return withoutCovered(std::move(m_candidates), m_packages, m_mounts); }
    MountPointSet takeMountPoints() { return std::move(m_mountPoints); }

private:
    PackageRule const& m_packages;
    MountTable const& m_mounts;
    MountsBelow const m_mountsBelow;
    std::vector<Candidate> m_candidates;
    MountPointSet m_mountPoints;
};

void CandidateList::add(WalkRoot const& root, bool onlyLocal) {
    Mount const* rootMount = m_mounts.withId(root.mount);
    Candidate const candidate = candidateForRoot(root, rootMount, m_packages);
    if (!onlyLocal || rootMount == nullptr || isLocal(*rootMount)) m_candidates.push_back(candidate);
    if (candidate.isPackage) return;
    for (Mount const& mount : m_mounts.mounts()) {
        std::string_view const below = BytePath(mount.mountPoint).belowFolder(root.canonicalPath);
        if (below.empty()) continue;
        std::string path = joined(root.path, below);
        m_mountPoints.add(path);
        if (m_mountsBelow == MountsBelow::LeftOut) continue;
        if (!isLocal(mount) || m_packages.crossesPackage(below)) continue;
        if (m_mounts.reachedBy(mount.mountPoint) != &mount) continue;
        m_candidates.push_back(candidateForMount(mount, std::move(path)));
    }
}

} // namespace

VolumeList chooseVolumes(std::vector<WalkRoot> const& roots, bool onlyLocal, PackageRule const& packages,
                         MountTable const& mounts, MountsBelow mountsBelow, std::vector<WalkRoot> const& walked) {
    CandidateList chosen(packages, mounts, mountsBelow);
    for (WalkRoot const& root : roots)
        chosen.add(root, onlyLocal);
    CandidateList before(packages, mounts, mountsBelow);
    for (WalkRoot const& root : walked)
        before.add(root, onlyLocal);
    std::vector<Candidate> const candidatesBefore = before.take();
    VolumeList list;
    list.mountPoints = chosen.takeMountPoints();
    list.roots = roots;
    for (Candidate& candidate : chosen.take()) {
        bool const isWalked = std::ranges::any_of(
            candidatesBefore, [&](Candidate const& wide) { return covers(wide, candidate, packages, mounts); });
        if (isWalked) continue;
        for (Candidate const& narrow : candidatesBefore) {
            if (!covers(candidate, narrow, packages, mounts)) continue;
            std::string_view const below = BytePath(narrow.subtree).belowFolder(candidate.subtree);
            list.mountPoints.add(joined(candidate.volume.path, below));
        }
        if (!candidate.isPackage)
            list.volumes.push_back(std::move(candidate.volume));
        else if (packages.isWanted(BytePath(candidate.volume.path).leaf()))
            list.packages.push_back(std::move(candidate.volume.path));
    }
    return list;
}

VolumeList listVolumes(std::vector<WalkRoot> const& roots, bool onlyLocal, PackageRule const& packages,
                       MountsBelow mountsBelow, std::vector<WalkRoot> const& walked) {
    Result<MountTable> const current = MountTable::current();
    MountTable const mounts = current.hasValue() ? current.value() : MountTable();
    VolumeList list = chooseVolumes(roots, onlyLocal, packages, mounts, mountsBelow, walked);
    if (!current.hasValue()) list.failure = current.problem();
    return list;
}

Result<WalkRoot> locateRoot(std::string const& path) {
    std::string const root(BytePath(path).bytes());
    struct stat status;
    if (::lstat(root.c_str(), &status) != 0) return lastSystemError("stat", root);
    Result<FileDescriptor> const folder = openPath(root, O_RDONLY | O_DIRECTORY);
    if (!folder.hasValue()) return folder.problem();
    std::unique_ptr<char, decltype(&std::free)> const canonicalPath(::realpath(root.c_str(), nullptr), &std::free);
    if (canonicalPath == nullptr) return lastSystemError("realpath", root);
    FolderFacts const facts = factsOf(folder.value()).valueOr(FolderFacts());
    return WalkRoot{root, canonicalPath.get(), facts.mount, S_ISLNK(status.st_mode)};
}

void MountPointSet::add(std::string_view path) {
    std::string_view const parent = BytePath(path).parent();
    if (parent.empty()) return;
    m_points.emplace(path);
    m_parents.emplace(parent);
}

} // namespace mac
