#include "platform/files/FileOperations.h"
#include "platform/files/references/CatalogFields.h"
#include "platform/files/references/FileStatuses.h"
#include "platform/files/references/HFSPaths.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/foundation/running/Log.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/ItemRemoval.h"
#include "platform/system/items/OverwritingCopy.h"
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::uint32_t LongestName = HFSUniStr255().unicode.size();

OSErr changeStatus(SystemError const& error) { return statusOf(error, FileOperation::Changing); }

OSErr changeStatus(Result<void, TransferProblem> const& done) {
    return done.isDone() ? noErr : changeStatus(done.problem().error);
}

// The name on the disk of one in the form of HFS; nullopt for a name that no item can have, and its status.
std::optional<std::string> nameOnDiskOf(UniCharCount length, unichar const* name, OSErr& status) {
    status = noErr;
    if (!name || length == 0) status = paramErr;
    if (length > LongestName) status = errFSNameTooLong;
    if (status != noErr) return std::nullopt;
    std::optional<std::string> bytes = fileNameOfHFSName({name, length});
    if (!bytes) status = bdNamErr;
    return bytes;
}

// Sets the fields; the lock comes last by itself. A folder that cannot be set up is removed again while it is empty.
Result<void> setUpFolder(OpenItem const& folder, FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo) {
    if (!catalogInfo || whichInfo == kFSCatInfoNone) return {};
    Result<void> const written = writeCatalogFields(folder, whichInfo, *catalogInfo);
    if (written.isDone()) return {};
    ::unlinkat(folder.folder.number(), folder.name.c_str(), AT_REMOVEDIR);
    return written;
}

Result<OpenItem> makeFolder(FSRef const& parentRef, std::string const& name) {
    Result<OpenItem> parent = openItemOfReference(parentRef);
    if (!parent.hasValue()) return parent;
    FileDescriptor& folder = parent.value().item;
    if (::mkdirat(folder.number(), name.c_str(), S_IRWXU | S_IRWXG | S_IRWXO) != 0)
        return lastSystemError("mkdir", name);
    FileDescriptor made(::openat(folder.number(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!made.isOpen()) return lastSystemError("open", name);
    return OpenItem{.folder = std::move(folder), .item = std::move(made), .name = name};
}

// Copies into an open folder.
OSStatus copyInto(OpenItem const& item, FileDescriptor const& folder, std::string name, OptionBits options) {
    ItemTransfer const transfer{.item = item, .folder = folder, .name = std::move(name)};
    bool const isOverwriting = (options & kFSFileOperationOverwrite) != 0;
    Result<void, TransferProblem> const copied = isOverwriting ? copyItemOver(transfer) : copyItem(transfer);
    // The status cannot tell where it is.
    if (!copied.isDone() && copied.problem().strandedName)
        NSLog("The item that was to be replaced by %@ is now at the name %@ beside it",
              NSString::stringWithFileSystemRepresentation_(transfer.name),
              NSString::stringWithFileSystemRepresentation_(*copied.problem().strandedName));
    return changeStatus(copied);
}

} // namespace

OSErr FSRenameUnicode(FSRef const* ref, UniCharCount nameLength, unichar const* name, TextEncoding /*textEncodingHint*/,
                      FSRef* newRef) {
    if (!ref) return paramErr;
    OSErr status = noErr;
    std::optional<std::string> const wanted = nameOnDiskOf(nameLength, name, status);
    if (!wanted) return status;
    Result<OpenItem> const item = openItemOfReference(*ref);
    if (!item.hasValue()) return errFSBadFSRef;
    if (item.value().name.empty()) return fBsyErr;
    if (*wanted != item.value().name)
        status = changeStatus(moveItem({.item = item.value(), .folder = item.value().folder, .name = *wanted}));
    // Under the new name, or the old one again.
    followMovedItem(item.value().folder, status == noErr ? *wanted : item.value().name);
    if (status == noErr && newRef) *newRef = *ref;
    return status;
}

OSErr FSCreateDirectoryUnicode(FSRef const* parentRef, UniCharCount nameLength, unichar const* name,
                               FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo, FSRef* newRef,
                               FSSpec* newSpec, std::uint32_t* newDirID) {
    if (!parentRef || newSpec || (whichInfo != kFSCatInfoNone && !catalogInfo)) return paramErr;
    if ((whichInfo & ~kFSCatInfoSettableInfo) != 0) return errFSBadInfoBitmap;
    OSErr status = noErr;
    std::optional<std::string> const wanted = nameOnDiskOf(nameLength, name, status);
    if (!wanted) return status;
    Result<OpenItem> const folder = makeFolder(*parentRef, *wanted);
    if (!folder.hasValue()) return changeStatus(folder.problem());
    Result<void> const setUp = setUpFolder(folder.value(), whichInfo, catalogInfo);
    if (!setUp.isDone()) return changeStatus(setUp.problem());
    if (newRef) *newRef = referenceInFolder(*parentRef, *wanted).valueOr(FSRef{});
    Result<IdentifiedItem> const identified = identify(folder.value().item);
    if (newDirID && identified.hasValue()) *newDirID = static_cast<std::uint32_t>(identified.value().identity.inode);
    return noErr;
}

OSErr FSDeleteObject(FSRef const* ref) {
    if (!ref) return paramErr;
    Result<OpenItem> const item = openItemOfReference(*ref);
    if (!item.hasValue()) return errFSBadFSRef;
    Result<void> const removed = removeEmptyItem(item.value());
    return removed.isDone() ? OSErr(noErr) : changeStatus(removed.problem());
}

OSStatus FSPathCopyObjectSync(char const* sourcePath, char const* destPath, CFStringRef copyName, char** targetPath,
                              OptionBits options) {
    if (!sourcePath || !destPath || targetPath || (options & ~kFSFileOperationOverwrite) != 0) return paramErr;
    std::string_view const source = BytePath(sourcePath).bytes();
    std::string name(BytePath(source).leaf());
    if (name.empty() || name == "." || name == "..") return bdNamErr;
    if (!(copyName == nil)) {
        std::u16string_view const units = copyName.codeUnits();
        OSErr status = noErr;
        std::optional<std::string> const wanted =
            nameOnDiskOf(static_cast<UniCharCount>(units.size()), units.data(), status);
        if (!wanted) return status;
        name = *wanted;
    }
    Result<OpenItem> const item = openItemAtPath(source, LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return changeStatus(item.problem());
    Result<FileDescriptor> const folder = openPath(destPath, O_PATH | O_DIRECTORY);
    if (!folder.hasValue()) return changeStatus(folder.problem());
    return copyInto(item.value(), folder.value(), std::move(name), options);
}

} // namespace mac
