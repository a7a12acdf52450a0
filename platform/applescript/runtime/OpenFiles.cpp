#include "platform/applescript/runtime/OpenFiles.h"
#include <algorithm>
#include <unistd.h>

namespace mac::applescript {

OpenFiles::OpenFiles() = default;

OpenFiles::~OpenFiles() { closeAll(); }

std::int32_t OpenFiles::add(File file) {
    m_files.emplace(m_next, std::move(file));
    return m_next++;
}

OpenFiles::File* OpenFiles::withNumber(std::int32_t number) {
    auto const found = m_files.find(number);
    return found == m_files.end() ? nullptr : &found->second;
}

OpenFiles::File* OpenFiles::withPath(std::u16string const& path) {
    auto const found = std::ranges::find_if(m_files, [&](auto const& entry) { return entry.second.path == path; });
    return found == m_files.end() ? nullptr : &found->second;
}

bool OpenFiles::close(File const& file) {
    auto const found = std::ranges::find_if(m_files, [&](auto const& entry) { return &entry.second == &file; });
    if (found == m_files.end()) return false;
    ::close(found->second.descriptor);
    m_files.erase(found);
    return true;
}

void OpenFiles::closeAll() {
    for (auto const& [number, file] : m_files)
        ::close(file.descriptor);
    m_files.clear();
}

} // namespace mac::applescript
