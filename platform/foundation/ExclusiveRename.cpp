#include "platform/foundation/ExclusiveRename.h"
#include "platform/foundation/FileDescriptor.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

struct Place {
    int folder;
    std::string const& name;
};

std::optional<struct stat> statusOf(Place const& place) {
    struct stat status {};
    int const failed = ::fstatat(place.folder, place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW);
    return failed ? std::nullopt : std::optional(status);
}

bool isThere(Place const& place, struct stat const& item) {
    std::optional<struct stat> const found = statusOf(place);
    return found && found->st_dev == item.st_dev && found->st_ino == item.st_ino;
}

bool fail(int errorNumber) {
    errno = errorNumber;
    return false;
}

// What has taken a name meanwhile keeps it.
void removeIfThere(Place const& place, struct stat const& item) {
    int const reason = errno;
    if (isThere(place, item)) ::unlinkat(place.folder, place.name.c_str(), S_ISDIR(item.st_mode) ? AT_REMOVEDIR : 0);
    errno = reason;
}

// The file system has no second names, or not for this user and file.
bool isWithoutSecondNames(int errorNumber) {
    return errorNumber == EPERM || errorNumber == EMLINK || errorNumber == EOPNOTSUPP || errorNumber == ENOSYS ||
           errorNumber == EINVAL;
}

// Of a file that has both names.
bool removeFirstName(Place const& from, Place const& to, struct stat const& file) {
    bool const isFirst = isThere(from, file);
    if (isFirst && ::unlinkat(from.folder, from.name.c_str(), 0) == 0) return true;
    if (!isFirst) errno = ESTALE;
    removeIfThere(to, file);
    return false;
}

bool makeEmpty(Place const& place, bool isFolder) {
    if (isFolder) return ::mkdirat(place.folder, place.name.c_str(), S_IRWXU) == 0;
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    return FileDescriptor(::openat(place.folder, place.name.c_str(), flags, mode_t{S_IRUSR | S_IWUSR})).isOpen();
}

bool renameOverEmpty(Place const& from, Place const& to, bool isFolder, std::function<void()> const& afterFirstStep) {
    if (!makeEmpty(to, isFolder)) return false;
    std::optional<struct stat> const made = statusOf(to);
    if (!made) return false;
    if (afterFirstStep) afterFirstStep();
    // The system itself sees to it that a folder is empty.
    std::optional<struct stat> const found = isFolder ? made : statusOf(to);
    bool const isEmpty = found && found->st_ino == made->st_ino && found->st_size <= made->st_size;
    if (!isEmpty) return fail(EEXIST);
    if (::renameat(from.folder, from.name.c_str(), to.folder, to.name.c_str()) == 0) return true;
    if (errno == ENOTEMPTY) return fail(EEXIST);
    removeIfThere(to, *made);
    return false;
}

} // namespace

bool renameWithoutReplacing(int fromFolder, std::string const& from, int toFolder, std::string const& to) {
    if (::renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    return renameInSteps(fromFolder, from, toFolder, to);
}

bool renameInSteps(int fromFolder, std::string const& from, int toFolder, std::string const& to,
                   std::function<void()> const& afterFirstStep) {
    Place const first{fromFolder, from};
    Place const second{toFolder, to};
    std::optional<struct stat> const item = statusOf(first);
    if (!item) return false;
    bool const isFolder = S_ISDIR(item->st_mode);
    if (!isFolder && ::linkat(fromFolder, from.c_str(), toFolder, to.c_str(), 0) == 0) {
        if (afterFirstStep) afterFirstStep();
        return removeFirstName(first, second, *item);
    }
    if (!isFolder && !isWithoutSecondNames(errno)) return false;
    return renameOverEmpty(first, second, isFolder, afterFirstStep);
}

} // namespace mac
