#include "platform/system/TreeDescent.h"
#include "platform/system/OpenItems.h"
#include <algorithm>

namespace mac {

TreeDescent::TreeDescent(FileDescriptor root) : m_root(std::move(root)) {}

FileDescriptor TreeDescent::item() {
    if (m_path.empty()) return openBelow(m_root, "");
    std::string_view const path = m_path;
    if (!m_folder.isOpen()) m_folder = openBelow(m_root, path.substr(0, m_folderLength));
    return openBelow(m_folder, path.substr(m_folderLength));
}

void TreeDescent::enter(FileDescriptor folder, std::vector<std::string> names) {
    std::ranges::reverse(names);
    m_levels.push_back({m_folderLength, std::move(names)});
    if (!m_path.empty()) m_path += '/';
    m_folderLength = m_path.size();
    m_folder = std::move(folder);
}

bool TreeDescent::next() {
    while (!m_levels.empty() && m_levels.back().names.empty())
        leave();
    m_path.resize(m_folderLength);
    if (m_levels.empty()) return false;
    m_path += m_levels.back().names.back();
    m_levels.back().names.pop_back();
    return true;
}

void TreeDescent::leave() {
    m_folderLength = m_levels.back().aboveLength;
    m_levels.pop_back();
    m_folder = FileDescriptor();
}

} // namespace mac
