#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

struct VolumeList;
struct VolumeWalkRequest;

// Tells by its file name whether a folder is a package, and whether it is one that is looked for. Names are compared
// byte by byte. A name that is nothing but the suffix is a hidden folder, not a package.
class PackageRule {
public:
    PackageRule(std::string suffix, std::vector<std::string> names);

    bool isPackage(std::string_view name) const {
        return name.size() > m_suffix.size() && !m_suffix.empty() && name.ends_with(m_suffix);
    }
    bool isWanted(std::string_view package) const;
    // Whether a folder of a relative path ("a/B.app/c") is a package.
    bool crossesPackage(std::string_view relativePath) const;

private:
    std::string m_suffix;
    std::vector<std::string> m_names;
};

// Those of the absolute paths at which a walk of the volumes would find a wanted package now: it is a folder, and is
// reached without a symbolic link, through folders that may be listed, on a volume of the list. In the order of the
// paths; mount points are not looked at, as that may wait for a server, and paths of more than 4096 bytes are left out.
// Ends early once `shouldStop` says so; `wasLeft` is that of the walk, for its visits (VolumeVisit.h).
std::vector<std::string> packagesStillThere(std::vector<std::string> const& paths, VolumeList const& volumes,
                                            PackageRule const& packages, std::function<bool()> const& shouldStop,
                                            std::atomic<bool> const& wasLeft);

// The paths of the wanted packages that lie directly in the folder now, as far as the request's roots reach; none when
// it cannot be read.
std::vector<std::string> packagesInFolder(std::string const& folder, VolumeWalkRequest const& request);

} // namespace mac
