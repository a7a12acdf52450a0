#pragma once

#include "platform/system/Result.h"
#include "platform/system/walker/Packages.h"
#include "platform/system/walker/VolumeWalker.h"
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace mac {

// The folders on which something was mounted when the walk began, by the paths under which the walk comes to them. They
// are known beforehand because merely to look at one can wait forever for a server that is gone.
class MountPointSet {
public:
    void add(std::string_view path);
    bool contains(std::string_view path) const { return m_points.contains(path); }
    bool isParentOfOne(std::string_view path) const { return m_parents.contains(path); }

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view path) const { return std::hash<std::string_view>{}(path); }
    };
    using Paths = std::unordered_set<std::string, Hash, std::equal_to<>>;
    Paths m_points;
    Paths m_parents;
};

class MountTable;

// Where a folder lies that a walk is to start from.
struct WalkRoot {
    std::string path;          // as it was asked for, and as what is found in it is named
    std::string canonicalPath; // absolute, without links
    std::uint64_t mount = 0;   // 0: not known
    bool isLink = false;
};

// A folder to be walked without crossing into another mount.
struct Volume {
    std::string path;
    std::uint64_t mount = 0; // 0: not known
};

// What a walk is to visit, such that nothing is visited twice.
struct VolumeList {
    std::vector<Volume> volumes;
    std::vector<std::string> packages;  // roots that are packages themselves
    MountPointSet mountPoints;          // below the roots
    std::optional<SystemError> failure; // of reading the mount table
    std::vector<WalkRoot> roots;
};

// Whether the local volumes that are mounted below a root are visited, too.
enum class MountsBelow { Searched, LeftOut };

// What is to be visited for these roots, each on whatever file system it lies, and with all local volumes mounted below
// it, unless they are left out; `onlyLocal` drops the roots that are not local themselves. A folder that can be reached
// through several of them, by a bind mount or a second mount of its device or from a root within another, is left to
// the one that reaches most, else to the first. To the roots that are walked already it is left in any case: where
// another one reaches a folder of theirs, that counts as a mount point.
VolumeList chooseVolumes(std::vector<WalkRoot> const& roots, bool onlyLocal, PackageRule const& packages,
                         MountTable const& mounts, MountsBelow mountsBelow = MountsBelow::Searched,
                         std::vector<WalkRoot> const& walked = {});

// chooseVolumes with the current mount table; the failure is set if that cannot be read.
VolumeList listVolumes(std::vector<WalkRoot> const& roots, bool onlyLocal, PackageRule const& packages,
                       MountsBelow mountsBelow = MountsBelow::Searched, std::vector<WalkRoot> const& walked = {});

// Where the folder at the path lies; fails if it leads to none. May block where a disk does not answer.
Result<WalkRoot> locateRoot(std::string const& path);

} // namespace mac
