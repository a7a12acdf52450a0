#include "tests/platform/system/LongFolder.h"
#include <climits>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

int require(int result) {
    if (result < 0) throw std::runtime_error("a long path cannot be made");
    return result;
}

} // namespace

LongFolder::LongFolder() : m_path(m_top.path()) {
    m_folders.push_back(require(::open(m_path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)));
    std::string const name(200, 'f');
    while (m_path.size() <= PATH_MAX + name.size()) {
        makeFolder(name);
        m_folders.push_back(
            require(::openat(m_folders.back(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)));
        m_path += "/" + name;
    }
}

LongFolder::~LongFolder() {
    for (; !m_made.empty(); m_made.pop_back())
        ::unlinkat(m_made.back().folder, m_made.back().name.c_str(), m_made.back().flags);
    for (int const folder : m_folders)
        ::close(folder);
}

void LongFolder::makeFolder(std::string const& relative) {
    require(::mkdirat(m_folders.back(), relative.c_str(), 0755));
    m_made.push_back({m_folders.back(), relative, AT_REMOVEDIR});
}

void LongFolder::makeFile(std::string const& relative, std::string const& contents) {
    int const file =
        require(::openat(m_folders.back(), relative.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    m_made.push_back({m_folders.back(), relative, 0});
    ssize_t const written = ::write(file, contents.data(), contents.size());
    ::close(file);
    require(written == static_cast<ssize_t>(contents.size()) ? 0 : -1);
}

} // namespace mac::test
