#include "tests/platform/system/walker/FolderForMany.h"
#include <cstdlib>
#include <unistd.h>

namespace mac::test {

FolderForMany::FolderForMany() {
    char const* const before = std::getenv("TMPDIR");
    std::string const kept = before ? before : "";
    if (::access("/dev/shm", W_OK | X_OK) == 0) ::setenv("TMPDIR", "/dev/shm", 1);
    m_folder.emplace();
    ::setenv("TMPDIR", kept.c_str(), 1);
}

} // namespace mac::test
