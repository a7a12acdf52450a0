#include "platform/system/BytePath.h"

namespace mac {

std::string BytePath::joined(std::string_view component) const {
    std::string path;
    path.reserve(m_bytes.size() + 1 + component.size());
    path += m_bytes;
    appendComponent(path, component);
    return path;
}

std::string_view BytePath::belowFolder(BytePath folder) const {
    std::string_view const above = folder.m_bytes;
    if (above.empty() || m_bytes.size() <= above.size() || !m_bytes.starts_with(above)) return {};
    if (above == "/") return m_bytes.substr(1);
    return m_bytes[above.size()] == '/' ? m_bytes.substr(above.size() + 1) : std::string_view();
}

void appendComponent(std::string& path, std::string_view component) {
    if (!path.empty() && !path.ends_with('/')) path += '/';
    path += component;
}

} // namespace mac
