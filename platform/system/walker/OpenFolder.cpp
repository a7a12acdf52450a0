#include "platform/system/walker/OpenFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <string>

namespace mac {

namespace {

constexpr int openingFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

FolderFacts facts(int descriptor, char const* name, int flags) {
    struct statx status;
    if (::statx(descriptor, name, flags | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC,
                STATX_TYPE | STATX_NLINK | STATX_INO | STATX_MNT_ID, &status) != 0)
        return {.error = errno};
    return {.isFolder = S_ISDIR(status.stx_mode),
            .mount = (status.stx_mask & STATX_MNT_ID) != 0 ? status.stx_mnt_id : 0,
            .linkCount = status.stx_nlink,
            .identity = {.device = (std::uint64_t{status.stx_dev_major} << 32) | status.stx_dev_minor,
                         .inode = status.stx_ino}};
}

} // namespace

OpenFolder OpenFolder::inside(OpenFolder const& parent, char const* name) {
    return OpenFolder(::openat(parent.m_descriptor, name, openingFlags | O_NOFOLLOW));
}

OpenFolder OpenFolder::atPath(std::string_view path) {
    OpenFolder from;
    while (path.size() >= PATH_MAX) {
        std::size_t const slash = path.rfind('/', PATH_MAX - 1);
        if (slash == std::string_view::npos || slash == 0) {
            errno = ENAMETOOLONG;
            return {};
        }
        std::string const piece(path.substr(0, slash));
        from = OpenFolder(::openat(from.isOpen() ? from.m_descriptor : AT_FDCWD, piece.c_str(), openingFlags));
        if (!from.isOpen()) return {};
        path.remove_prefix(slash + 1);
    }
    std::string const rest(path);
    return OpenFolder(::openat(from.isOpen() ? from.m_descriptor : AT_FDCWD, rest.c_str(), openingFlags));
}

OpenFolder OpenFolder::duplicate() const { return OpenFolder(::fcntl(m_descriptor, F_DUPFD_CLOEXEC, 0)); }

void OpenFolder::close() {
    if (isOpen()) ::close(std::exchange(m_descriptor, none));
}

FolderFacts factsInside(OpenFolder const& parent, char const* name) {
    return facts(parent.descriptor(), name, AT_SYMLINK_NOFOLLOW);
}

FolderFacts factsOf(OpenFolder const& folder) { return facts(folder.descriptor(), "", AT_EMPTY_PATH); }

bool meansVanished(int error) { return error == ENOENT || error == ENOTDIR || error == ELOOP; }

} // namespace mac
