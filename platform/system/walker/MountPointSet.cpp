#include "platform/system/walker/MountPointSet.h"

namespace mac {

void MountPointSet::add(std::string_view path) {
    std::size_t const slash = path.rfind('/');
    if (slash == std::string_view::npos) return;
    m_points.emplace(path);
    m_parents.emplace(slash == 0 ? std::string_view("/") : path.substr(0, slash));
}

} // namespace mac
