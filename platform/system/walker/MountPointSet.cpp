#include "platform/system/walker/MountPointSet.h"
#include "platform/system/BytePath.h"

namespace mac {

void MountPointSet::add(std::string_view path) {
    std::string_view const parent = BytePath(path).parent();
    if (parent.empty()) return;
    m_points.emplace(path);
    m_parents.emplace(parent);
}

} // namespace mac
