#include "platform/system/walker/PackageRule.h"

#include <algorithm>
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

} // namespace mac
