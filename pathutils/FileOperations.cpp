#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "pathutils/PXFileManagerHandler.h"
#include "platform/files/FileOperations.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/running/Log.h"
#include "platform/system/items/OpenItem.h"
#include "scripting/AppleScriptExecution.h"
#include "scripting/FileReferences.h"
#include <cerrno>

// Removing, moving, copying and renaming.

namespace mac {

namespace {

// Nil if the operation was done and the handler has no message.
NSString messageOf(PXFileManagerHandler const& handler, bool isDone, NSString const& otherwise) {
    NSString const message = as<NSString>(handler.errorInfo().objectForKey_("Error"));
    return isDone || !(message == nil) ? message : otherwise;
}

bool moveFile(NSString const& path, NSString const& newPath) {
    return NSFileManager::defaultManager().movePath_toPath_handler_(path, newPath, nil);
}

// Whether there is no item at the path. Linux: false if that cannot be found out, as in a folder that the user may not
// enter, so that nobody takes the item for removed.
bool isMissing(NSString const& path) {
    Result<OpenItem> const item =
        openItemAtPath(path.fileSystemRepresentation().value_or(""), LinkAtEnd::IsNotFollowed);
    return !item.hasValue() && (item.problem().is(ENOENT) || item.problem().is(ENOTDIR));
}

bool areEqualButForCase(NSString const& one, NSString const& other) {
    return one.caseInsensitiveCompare_(other) == NSOrderedSame;
}

} // namespace

NSString pxRemoveFile2(NSString receiver) {
    if (receiver == nil) return nil;
    PXFileManagerHandler const handler = PXFileManagerHandler::alloc();
    bool const isDone = NSFileManager::defaultManager().removeFileAtPath_handler_(receiver, handler);
    return messageOf(handler, isDone, "Could not delete file item.");
}

bool pxRemoveFile(NSString receiver) {
    return NSFileManager::defaultManager().removeFileAtPath_handler_(receiver, nil);
}

bool pxRemoveFileIfExists(NSString receiver) {
    if (receiver == nil) return false;
    // No item exists at a relative path, whatever the current folder holds.
    if (!receiver.codeUnits().starts_with(u'/')) return true;
    return pxRemoveFile(receiver) || isMissing(receiver);
}

bool pxRemoveFiles(NSEnumerator receiver) {
    if (receiver == nil) return false;
    bool isDone = true;
    for (id object = receiver.nextObject(); !(object == nil); object = receiver.nextObject()) {
        if (object.isKindOfClass_(classOf<NSNull>())) continue;
        isDone = pxRemoveFileIfExists(as<NSString>(object).stringByStandardizingPath()) && isDone;
    }
    return isDone;
}

NSString pxMoveToTrash(NSString receiver) {
    NSString const path = receiver.stringByStandardizingPath();
    if (!KRCPathExists(path)) return nil;
    NSString const source = NSString::stringWithFormat_("set x to POSIX file \"%@\"\n"
                                                        "tell application \"Finder\" to set y to delete x\n"
                                                        "tell application \"Finder\" to set r to y as text\n"
                                                        "POSIX path of r\n",
                                                        pxStringByEscapingDoubleQuotes(path));
    return pxExecuteAsAppleScript(source);
}

NSString pxMoveToFolder_(NSString receiver, NSString folder) {
    NSString const path = receiver.stringByStandardizingPath();
    NSString const target = folder.stringByStandardizingPath();
    if (!KRCPathExists(path) || !KRCPathExists(target)) return nil;
    NSString const source =
        NSString::stringWithFormat_("set x to POSIX file \"%@\"\n"
                                    "set y to POSIX file \"%@\"\n"
                                    "tell application \"Finder\" to set z to move x to y\n"
                                    "tell application \"Finder\" to set r to z as text\n"
                                    "POSIX path of r\n",
                                    pxStringByEscapingDoubleQuotes(path), pxStringByEscapingDoubleQuotes(target));
    return pxExecuteAsAppleScript(source);
}

bool pxMoveToFolder2_(NSString receiver, NSString folder) {
    NSString const path = receiver.stringByStandardizingPath();
    NSString const targetFolder = folder.stringByStandardizingPath();
    if (!KRCPathExists(path) || !KRCPathExists(targetFolder)) return false;
    NSString const target = targetFolder.stringByAppendingPathComponent_(path.lastPathComponent());
    return !KRCPathExists(target) && moveFile(path, target);
}

NSString pxCopyToPath_(NSString receiver, NSString newPath) {
    if (receiver == nil) return nil;
    PXFileManagerHandler const handler = PXFileManagerHandler::alloc();
    bool const isDone = NSFileManager::defaultManager().copyPath_toPath_handler_(receiver, newPath, handler);
    if (!(handler.errorInfo() == nil))
        NSLog("%s errorInfo: %@", "-[NSString(PXUtils) pxCopyToPath:]", handler.errorInfo());
    return messageOf(handler, isDone, "Could not copy file item.");
}

NSString pxCopyToFolder_(NSString receiver, NSString folder) {
    if (receiver == nil) return nil;
    std::optional<std::string> const source = receiver.fileSystemRepresentation();
    std::optional<std::string> const target = folder.fileSystemRepresentation();
    OSStatus status = paramErr;
    if (source && target)
        status = FSPathCopyObjectSync(source->c_str(), target->c_str(), nil, {}, kFSFileOperationOverwrite);
    return status == noErr ? NSString(nil) : NSString::stringWithFormat_("Copy: Error-code = %d", status);
}

bool pxRenameToNameOf_(NSString receiver, NSString path) {
    FSRef other{};
    FSRef own{};
    if (!KRPathGetFSRef_traverseLink_(path, &other, NO) || !KRPathGetFSRef_traverseLink_(receiver, &own, NO))
        return false;
    FSCatalogInfo information;
    HFSUniStr255 name{};
    if (FSGetCatalogInfo(&other, kFSCatInfoTextEncoding, &information, &name, {}, {}) != noErr) return false;
    return FSRenameUnicode(&own, name.length, name.unicode.data(), information.textEncodingHint, {}) == noErr;
}

NSString pxRenameTo_keepExtension_(NSString receiver, NSString name, BOOL keepsExtension) {
    if (receiver == nil || name == nil) return nil;
    NSString const path = receiver.stringByStandardizingPath();
    NSString const parent = path.stringByDeletingLastPathComponent();
    NSString newPath = parent.stringByAppendingPathComponent_(name);
    if (keepsExtension) newPath = newPath.stringByAppendingPathExtension_(receiver.pathExtension());
    NSString const leaf = path.lastPathComponent();
    NSString const newLeaf = newPath.lastPathComponent();
    bool const changesCaseAlone = areEqualButForCase(parent, newPath.stringByDeletingLastPathComponent()) &&
                                  areEqualButForCase(leaf, newLeaf) && !leaf.isEqualToString_(newLeaf);
    NSString from = path;
    if (changesCaseAlone) {
        from = pxUniquePathOfPath(newPath);
        if (!moveFile(path, from)) return nil;
    }
    // Linux: where the volume tells case apart the new path was free itself, and the item has arrived.
    bool const hasArrived = changesCaseAlone && from.isEqualToString_(newPath);
    if (!hasArrived && !moveFile(from, newPath)) return nil;
    return newPath.stringByAbbreviatingWithTildeInPath();
}

} // namespace mac
