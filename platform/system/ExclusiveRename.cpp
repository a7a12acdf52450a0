#include "platform/system/ExclusiveRename.h"
#include "platform/system/FileDescriptor.h"
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

bool fail(int errorNumber) {
    errno = errorNumber;
    return false;
}

// What holds the place: an empty file that nobody else has.
std::optional<struct stat> makeEmptyFile(Place const& place) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor const file(::openat(place.folder, place.name.c_str(), flags, mode_t{S_IRUSR | S_IWUSR}));
    struct stat status {};
    bool const isMade = file.isOpen() && ::fstat(file.number(), &status) == 0;
    return isMade ? std::optional(status) : std::nullopt;
}

bool isStillEmpty(Place const& place, struct stat const& made) {
    std::optional<struct stat> const found = statusOf(place);
    return found && S_ISREG(found->st_mode) && found->st_dev == made.st_dev && found->st_ino == made.st_ino &&
           found->st_size == 0;
}

bool renameFile(Place const& from, Place const& to, std::function<void()> const& afterFirstStep) {
    std::optional<struct stat> const made = makeEmptyFile(to);
    if (!made) return false;
    if (afterFirstStep) afterFirstStep();
    if (!isStillEmpty(to, *made)) return fail(EEXIST);
    if (::renameat(from.folder, from.name.c_str(), to.folder, to.name.c_str()) == 0) return true;
    int const reason = errno;
    if (isStillEmpty(to, *made)) ::unlinkat(to.folder, to.name.c_str(), 0);
    return fail(reason);
}

// The system itself sees to it that the folder it takes the place of, or removes, is empty.
bool renameFolder(Place const& from, Place const& to, std::function<void()> const& afterFirstStep) {
    if (::mkdirat(to.folder, to.name.c_str(), S_IRWXU) != 0) return false;
    if (afterFirstStep) afterFirstStep();
    if (::renameat(from.folder, from.name.c_str(), to.folder, to.name.c_str()) == 0) return true;
    int const reason = errno;
    ::unlinkat(to.folder, to.name.c_str(), AT_REMOVEDIR);
    return fail(reason == ENOTEMPTY ? EEXIST : reason);
}

// The file system does not know how not to replace.
bool isUnknownToIt(int errorNumber) { return errorNumber == EINVAL || errorNumber == ENOSYS; }

// It has no second names, or not for this user and file.
bool isWithoutSecondNames(int errorNumber) {
    return isUnknownToIt(errorNumber) || errorNumber == EPERM || errorNumber == EMLINK || errorNumber == EOPNOTSUPP;
}

} // namespace

bool renameWithoutReplacing(int fromFolder, std::string const& from, int toFolder, std::string const& to) {
    if (::renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    return isUnknownToIt(errno) && renameInSteps(fromFolder, from, toFolder, to);
}

bool renameInSteps(int fromFolder, std::string const& from, int toFolder, std::string const& to,
                   std::function<void()> const& afterFirstStep) {
    Place const first{fromFolder, from};
    Place const second{toFolder, to};
    std::optional<struct stat> const item = statusOf(first);
    if (!item) return false;
    return S_ISDIR(item->st_mode) ? renameFolder(first, second, afterFirstStep)
                                  : renameFile(first, second, afterFirstStep);
}

bool nameNewFile(int folder, std::string const& from, std::string const& to) {
    if (::renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (!isUnknownToIt(errno)) return false;
    if (::linkat(folder, from.c_str(), folder, to.c_str(), 0) != 0)
        return isWithoutSecondNames(errno) && renameInSteps(folder, from, folder, to);
    ::unlinkat(folder, from.c_str(), 0);
    return true;
}

} // namespace mac
