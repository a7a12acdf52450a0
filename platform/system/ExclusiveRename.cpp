#include "platform/system/ExclusiveRename.h"
#include "platform/system/BytePath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/ItemIdentity.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

SystemError nameIsTaken(std::string const& name) { return {.code = EEXIST, .operation = "rename", .item = name}; }

std::optional<struct stat> foundAt(FileDescriptor const& folder, std::string const& name) {
    struct stat status {};
    int const failed = ::fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW);
    return failed ? std::nullopt : std::optional(status);
}

// The file system cannot rename exclusively.
bool isUnknownToFileSystem(SystemError const& error) { return error.is(EINVAL) || error.is(ENOSYS); }

// The file system has no such links, or not for this user and file.
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
    if (S_ISDIR(item.st_mode)) return renameToFreeName(first, second);
    Result<void> renamed = renameByLink(first, second);
    return !renamed.isDone() && cannotLink(renamed.problem()) ? renameToFreeName(first, second) : renamed;
}

void StepwiseRename::tellFirstStep() const {
    if (m_afterFirstStep) m_afterFirstStep();
}

Result<void> StepwiseRename::renameByLink(Place const& from, Place const& to) const {
    Result<std::string> const text = textOfLink(from, to);
    if (!text.hasValue()) return text.problem();
    if (::symlinkat(text.value().c_str(), to.folder.number(), to.name.c_str()) != 0)
        return lastSystemError("symlink", to.name);
    FileDescriptor const link(::openat(to.folder.number(), to.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    SystemError problem = link.isOpen() ? SystemError() : lastSystemError("open", to.name);
    tellFirstStep();
    if (link.isOpen()) {
        Result<void> const isThere = confirmItemInFolder(to.folder, to.name, link);
        bool const isRenamed = isThere.isDone() && ::renameat(from.folder.number(), from.name.c_str(),
                                                              to.folder.number(), to.name.c_str()) == 0;
        if (isRenamed) return {};
        problem = isThere.isDone() ? lastSystemError("rename", from.name) : isThere.problem();
    }
    // Another process has replaced the link, or still finds it.
    if (problem.is(ESTALE)) return nameIsTaken(to.name);
    if (linkTextIn(to.folder, to.name).valueOr("") == text.value()) ::unlinkat(to.folder.number(), to.name.c_str(), 0);
    return problem;
}

// Leads from the new name to the item.
Result<std::string> StepwiseRename::textOfLink(Place const& from, Place const& to) {
    Result<IdentifiedItem> const folder = identify(from.folder);
    if (!folder.hasValue()) return folder.problem();
    Result<IdentifiedItem> const newFolder = identify(to.folder);
    if (!newFolder.hasValue()) return newFolder.problem();
    if (folder.value().identity == newFolder.value().identity) return from.name;
    Result<std::string> const path = systemsPath(from.folder);
    // Too long for a link; the name alone tells as much.
    return path.hasValue() ? BytePath(path.value()).joined(from.name) : from.name;
}

// The system itself replaces no folder that is not empty, and no file by a folder.
Result<void> StepwiseRename::renameToFreeName(Place const& from, Place const& to) const {
    if (foundAt(to.folder, to.name)) return nameIsTaken(to.name);
    tellFirstStep();
    if (foundAt(to.folder, to.name)) return nameIsTaken(to.name);
    if (::renameat(from.folder.number(), from.name.c_str(), to.folder.number(), to.name.c_str()) == 0) return {};
    SystemError error = lastSystemError("rename", from.name);
    return error.is(ENOTEMPTY) ? nameIsTaken(to.name) : error;
}

} // namespace mac
