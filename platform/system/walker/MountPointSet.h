#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

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

} // namespace mac
