#include "platform/files/SpecialFolders.h"
#include "platform/files/references/FileStatuses.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/files/trash/Trash.h"
#include "platform/files/volumes/VolumeInformation.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileWriting.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/Users.h"
#include "platform/system/XDGFolders.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

enum class MissingFolder { IsMade, IsMissing };

constexpr char UserTemporaryName[] = "TemporaryItems";
constexpr std::string_view VolumeTemporaryStart = ".TemporaryItems-";

OSErr statusOfTrash(TrashProblem const& problem) {
    switch (problem.kind) {
    case TrashProblem::NoTrash:
    case TrashProblem::NotThere:
        return fnfErr;
    default:
        return statusOf(problem.error, FileOperation::Changing);
    }
}

// Opens the folder, and creates it if asked for. EPERM if other users may enter it: it could be a trap.
Result<FileDescriptor> openPrivateFolder(FileDescriptor const& folder, std::string const& name, MissingFolder missing) {
    Result<void> const made = missing == MissingFolder::IsMade ? makeOwnFolder(folder, name) : Result<void>();
    if (!made.isDone() && !made.problem().is(EEXIST)) return made.problem();
    FileDescriptor opened(::openat(folder.number(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!opened.isOpen()) return lastSystemError("open", name);
    struct stat status {};
    if (::fstat(opened.number(), &status) != 0) return lastSystemError("stat", name);
    bool const isPrivate = status.st_uid == ::geteuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    if (!isPrivate) return SystemError{.code = EPERM, .operation = "use", .item = name};
    return opened;
}

// The folder at the path, with those above it.
Result<FileDescriptor> openOrMakeCacheFolder(BytePath path, MissingFolder missing) {
    Result<FileDescriptor> folder = openPath(path.bytes(), O_PATH | O_DIRECTORY);
    bool const isMade = missing == MissingFolder::IsMade && path.bytes() != path.parent() && !path.parent().empty();
    if (folder.hasValue() || !folder.problem().is(ENOENT) || !isMade) return folder;
    Result<FileDescriptor> const above = openOrMakeCacheFolder(path.parent(), missing);
    if (!above.hasValue()) return above.problem();
    std::string const name(path.leaf());
    Result<void> const made = makeOwnFolder(above.value(), name);
    if (!made.isDone() && !made.problem().is(EEXIST)) return made.problem();
    return openPath(path.bytes(), O_PATH | O_DIRECTORY);
}

// The path of the folder of temporary items in the folder at the path.
Result<std::string> temporaryFolderIn(std::string const& path, std::string const& name, MissingFolder missing) {
    Result<FileDescriptor> const folder = openOrMakeCacheFolder(path, missing);
    if (!folder.hasValue()) return folder.problem();
    Result<FileDescriptor> const found = openPrivateFolder(folder.value(), name, missing);
    if (!found.hasValue()) return found.problem();
    return BytePath(path).joined(name);
}

// The user may have moved the folder and left a symbolic link in its place.
Result<std::string> logsFolder(MissingFolder missing) {
    std::string path = BytePath(stateHome()).joined("framekeeper/Logs");
    if (missing == MissingFolder::IsMade) {
        Result<void> const made = makeFolderAtPath(path);
        if (!made.isDone()) return made.problem();
    }
    Result<FileDescriptor> const folder = openPath(path, O_PATH | O_DIRECTORY);
    return folder.hasValue() ? Result<std::string>(resolvedPath(path)) : folder.problem();
}

OSErr takePath(Result<std::string> const& path, FSRef& foundRef) {
    if (!path.hasValue()) return statusOf(path.problem(), FileOperation::Changing);
    Result<FSRef> const made = referenceToPath(path.value(), LinkAtEnd::IsNotFollowed);
    if (!made.hasValue()) return statusOf(made.problem(), FileOperation::Finding);
    foundRef = made.value();
    return noErr;
}

// The path of the volume's root.
Result<std::string> rootOfVolume(FSVolumeRefNum vRefNum) {
    FSRef root{};
    if (FSGetVolumeInfo(vRefNum, 0, nullptr, kFSVolInfoNone, nullptr, nullptr, &root) != noErr)
        return SystemError{.code = ENODEV, .operation = "find"};
    Result<ReferencedItem> item = itemOfReference(root);
    if (!item.hasValue()) return item.problem();
    return item.value().path;
}

} // namespace

OSErr FSFindFolder(FSVolumeRefNum vRefNum, OSType folderType, BOOL createFolder, FSRef* foundRef) {
    if (!foundRef) return paramErr;
    *foundRef = {};
    bool const isUsers = vRefNum == kUserDomain;
    Result<std::string> const top = isUsers ? Result<std::string>(ownHomeFolder()) : rootOfVolume(vRefNum);
    if (!top.hasValue()) return statusOf(top.problem(), FileOperation::Finding);
    if (folderType == kTrashFolderType) {
        Result<std::string, TrashProblem> const trash =
            trashFolderForPath(top.value(), createFolder ? MissingTrash::IsMade : MissingTrash::IsMissing);
        return trash.hasValue() ? takePath(trash.value(), *foundRef) : statusOfTrash(trash.problem());
    }
    MissingFolder const missing = createFolder ? MissingFolder::IsMade : MissingFolder::IsMissing;
    if (folderType == kLogsFolderType && isUsers) return takePath(logsFolder(missing), *foundRef);
    if (!(folderType == kTemporaryFolderType)) return fnfErr;
    std::string const volumesName = std::string(VolumeTemporaryStart) + std::to_string(::geteuid());
    return takePath(isUsers ? temporaryFolderIn(cacheHome(), UserTemporaryName, missing)
                            : temporaryFolderIn(top.value(), volumesName, missing),
                    *foundRef);
}

} // namespace mac
