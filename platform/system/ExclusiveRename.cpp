#include "platform/system/ExclusiveRename.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

SystemError nameIsTaken(std::string const& name) { return {.code = EEXIST, .operation = "rename", .item = name}; }

std::optional<struct stat> statusOf(FileDescriptor const& folder, std::string const& name) {
    struct stat status {};
    int const failed = ::fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW);
    return failed ? std::nullopt : std::optional(status);
}

// The placeholder of a name: an empty file that no other process has opened.
Result<struct stat> makeEmptyFile(FileDescriptor const& folder, std::string const& name) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor const file(::openat(folder.number(), name.c_str(), flags, mode_t{S_IRUSR | S_IWUSR}));
    if (!file.isOpen()) return lastSystemError("open", name);
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) return lastSystemError("stat", name);
    return status;
}

bool isStillEmpty(FileDescriptor const& folder, std::string const& name, struct stat const& made) {
    std::optional<struct stat> const found = statusOf(folder, name);
    return found && S_ISREG(found->st_mode) && found->st_dev == made.st_dev && found->st_ino == made.st_ino &&
           found->st_size == 0;
}

// The file system cannot rename exclusively.
bool isUnknownToFileSystem(SystemError const& error) { return error.is(EINVAL) || error.is(ENOSYS); }

// The file system has no hard links, or not for this user and file.
bool cannotLink(SystemError const& error) {
    return isUnknownToFileSystem(error) || error.is(EPERM) || error.is(EMLINK) || error.is(EOPNOTSUPP);
}

Result<void> renameExclusively(FileDescriptor const& fromFolder, std::string const& from,
                               FileDescriptor const& toFolder, std::string const& to) {
    if (::renameat2(fromFolder.number(), from.c_str(), toFolder.number(), to.c_str(), RENAME_NOREPLACE) != 0)
        return lastSystemError("rename", from);
    return {};
}

} // namespace

Result<void> renameWithoutReplacing(FileDescriptor const& fromFolder, std::string const& from,
                                    FileDescriptor const& toFolder, std::string const& to) {
    Result<void> renamed = renameExclusively(fromFolder, from, toFolder, to);
    if (renamed.isDone() || !isUnknownToFileSystem(renamed.problem())) return renamed;
    return StepwiseRename().rename(fromFolder, from, toFolder, to);
}

Result<void> nameNewFile(FileDescriptor const& folder, std::string const& from, std::string const& to) {
    Result<void> renamed = renameExclusively(folder, from, folder, to);
    if (renamed.isDone() || !isUnknownToFileSystem(renamed.problem())) return renamed;
    if (::linkat(folder.number(), from.c_str(), folder.number(), to.c_str(), 0) != 0) {
        SystemError error = lastSystemError("link", from);
        return cannotLink(error) ? StepwiseRename().rename(folder, from, folder, to) : error;
    }
    ::unlinkat(folder.number(), from.c_str(), 0);
    return {};
}

Result<void> StepwiseRename::rename(FileDescriptor const& fromFolder, std::string const& from,
                                    FileDescriptor const& toFolder, std::string const& to) const {
    Place const first{fromFolder, from};
    Place const second{toFolder, to};
    struct stat item {};
    if (::fstatat(fromFolder.number(), from.c_str(), &item, AT_SYMLINK_NOFOLLOW) != 0)
        return lastSystemError("stat", from);
    return S_ISDIR(item.st_mode) ? renameFolder(first, second) : renameFile(first, second);
}

void StepwiseRename::tellFirstStep() const {
    if (m_afterFirstStep) m_afterFirstStep();
}

Result<void> StepwiseRename::renameFile(Place const& from, Place const& to) const {
    Result<struct stat> const made = makeEmptyFile(to.folder, to.name);
    if (!made.hasValue()) return made.problem();
    tellFirstStep();
    if (!isStillEmpty(to.folder, to.name, made.value())) return nameIsTaken(to.name);
    if (::renameat(from.folder.number(), from.name.c_str(), to.folder.number(), to.name.c_str()) == 0) return {};
    SystemError error = lastSystemError("rename", from.name);
    if (isStillEmpty(to.folder, to.name, made.value())) ::unlinkat(to.folder.number(), to.name.c_str(), 0);
    return error;
}

// The system itself replaces, or removes, only an empty folder.
Result<void> StepwiseRename::renameFolder(Place const& from, Place const& to) const {
    if (::mkdirat(to.folder.number(), to.name.c_str(), S_IRWXU) != 0) return lastSystemError("mkdir", to.name);
    tellFirstStep();
    if (::renameat(from.folder.number(), from.name.c_str(), to.folder.number(), to.name.c_str()) == 0) return {};
    SystemError error = lastSystemError("rename", from.name);
    ::unlinkat(to.folder.number(), to.name.c_str(), AT_REMOVEDIR);
    return error.is(ENOTEMPTY) ? nameIsTaken(to.name) : error;
}

} // namespace mac
