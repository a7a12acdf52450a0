#include "platform/foundation/ExclusiveRename.h"
#include "platform/foundation/FileDescriptor.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

bool makePlaceholder(int folder, std::string const& name, bool isFolder) {
    if (isFolder) return ::mkdirat(folder, name.c_str(), S_IRWXU) == 0;
    constexpr mode_t mode = S_IRUSR | S_IWUSR;
    return FileDescriptor(::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode))
        .isOpen();
}

void removePlaceholder(int folder, std::string const& name, struct stat const& made, bool isFolder) {
    struct stat found {};
    if (::fstatat(folder, name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) return;
    if (found.st_dev != made.st_dev || found.st_ino != made.st_ino) return;
    ::unlinkat(folder, name.c_str(), isFolder ? AT_REMOVEDIR : 0);
}

} // namespace

bool renameWithoutReplacing(int fromFolder, std::string const& from, int toFolder, std::string const& to) {
    if (::renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    return renameOverPlaceholder(fromFolder, from, toFolder, to);
}

bool renameOverPlaceholder(int fromFolder, std::string const& from, int toFolder, std::string const& to) {
    struct stat status {};
    if (::fstatat(fromFolder, from.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    // Only an empty folder can be replaced by a folder.
    bool const isFolder = S_ISDIR(status.st_mode);
    struct stat made {};
    if (!makePlaceholder(toFolder, to, isFolder)) return false;
    if (::fstatat(toFolder, to.c_str(), &made, AT_SYMLINK_NOFOLLOW) != 0) return false;
    if (::renameat(fromFolder, from.c_str(), toFolder, to.c_str()) == 0) return true;
    int const reason = errno;
    removePlaceholder(toFolder, to, made, isFolder);
    errno = reason;
    return false;
}

} // namespace mac
