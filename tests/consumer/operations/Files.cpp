#include "pathutils/FileOperations.h"
#include "pathutils/PXFileManagerHandler.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "tests/consumer/operations/Trial.h"

// Files removed, moved, copied and renamed, and what is told of a failure.

namespace consumer {

using namespace mac;

namespace {

bool isThere(NSString const& path) { return NSFileManager::defaultManager().fileExistsAtPath_(path); }

std::uint32_t permissionsOf(NSString const& path) {
    NSDictionary const attributes = NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(path, NO);
    return static_cast<std::uint32_t>(attributes.filePosixPermissions());
}

void tryRemoving(Trial const& trial, Places const& places) {
    trial.expect("pxRemoveFile", pxRemoveFile(places.file("removed", "")) && !pxRemoveFile(places.path("removed")));
    trial.expect("pxRemoveFile2",
                 pxRemoveFile2(places.file("removed", "")) == nil && pxRemoveFile2(places.path("removed")) != nil);
    trial.expect("pxRemoveFileIfExists", pxRemoveFileIfExists(places.path("removed")));
    NSArray const several = NSArray::arrayWithObjects_({places.file("removed", ""), places.folder("removed folder")});
    trial.expect("pxRemoveFiles", pxRemoveFiles(several.objectEnumerator()) && !isThere(places.path("removed folder")));
    NSString const trashed = pxMoveToTrash(places.file("trashed İ", ""));
    trial.expect("pxMoveToTrash", isThere(trashed) && !isThere(places.path("trashed İ")));
}

void tryMovingFiles(Trial const& trial, Places const& places) {
    NSString const folder = places.folder("into");
    NSString const moved = pxMoveToFolder_(places.file("moved", ""), folder);
    trial.expect("pxMoveToFolder_", isText(moved, places.path("into/moved").UTF8String()) && isThere(moved));
    trial.expect("pxMoveToFolder2_",
                 pxMoveToFolder2_(places.file("moved 2", ""), folder) && isThere(places.path("into/moved 2")));
    trial.expect("pxCopyToPath_", pxCopyToPath_(moved, places.path("copy")) == nil && isThere(places.path("copy")));
    trial.expect("pxCopyToFolder_", pxCopyToFolder_(places.file("copied", ""), folder) == nil &&
                                        isThere(places.path("into/copied")) && isThere(places.path("copied")));
    trial.expect("pxRenameToNameOf_", pxRenameToNameOf_(places.file("old", ""), places.file("names/new", "")) &&
                                          isThere(places.path("new")));
    trial.expect("pxRenameTo_keepExtension_",
                 pxRenameTo_keepExtension_(places.file("a.txt", ""), "title", YES) != nil &&
                     isThere(places.path("title.txt")));
}

void tryAttributes(Trial const& trial, Places const& places) {
    NSString const file = places.file("attributes", "");
    NSString const model = places.file("model", "");
    NSDate const date = NSDate::dateWithTimeIntervalSince1970_(1'000'000'000);
    trial.expect("pxSetFileModificationDate_creationDate_", pxSetFileModificationDate_creationDate_(model, date, date));
    bool const isSet = pxSetFileAttributesFrom_(file, model);
    NSDictionary const attributes = NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(file, NO);
    trial.expect("pxSetFileAttributesFrom_", isSet && attributes.fileModificationDate().isEqualToDate_(date));
    trial.expect("pxSetExtendedFileAttributesFrom_skipKeys_",
                 pxSetExtendedFileAttributesFrom_skipKeys_(file, model, nil));
    trial.expect("pxPathSetNotWritable_locked_",
                 pxPathSetNotWritable_locked_(model, YES, NO) && (permissionsOf(model) & 0200U) == 0);
    NSArray const keys = NSArray::arrayWithObject_(NSFilePosixPermissions);
    trial.expect("pxSetFileAttributes_from_",
                 pxSetFileAttributes_from_(file, keys, model) && (permissionsOf(file) & 0200U) == 0);
    places.folder("like/inner");
    places.folder("unlike/inner");
    NSString const inner = places.path("unlike/inner");
    bool const isSetUpwards =
        pxSetFileAttributes_from_recurseUntilBeforeDstPath_(inner, keys, places.path("like/inner"), places.path(""));
    trial.expect("pxSetFileAttributes_from_recurseUntilBeforeDstPath_",
                 isSetUpwards || permissionsOf(inner) == permissionsOf(places.path("like/inner")));
}

void tryHandler(Places const& places) {
    Trial const trial("pathutils/PXFileManagerHandler");
    PXFileManagerHandler const handler = PXFileManagerHandler::alloc();
    NSDictionary const failure = NSDictionary::dictionaryWithObject_forKey_("No", "Error");
    NSFileManager const manager = NSFileManager::defaultManager();
    handler.fileManager_willProcessPath_(manager, places.path("any"));
    trial.expect("fileManager_willProcessPath_", handler.errorInfo() == nil);
    trial.expect("fileManager_shouldProceedAfterError_",
                 !handler.fileManager_shouldProceedAfterError_(manager, failure));
    trial.expect("errorInfo", isText(handler.errorInfo().objectForKey_("Error"), "No"));
    handler.setErrorInfo_(nil);
    trial.expect("setErrorInfo_", handler.errorInfo() == nil);
}

} // namespace

void tryFiles(Places const& places) {
    Trial const trial("pathutils/FileOperations");
    tryRemoving(trial, places);
    tryMovingFiles(trial, places);
    tryAttributes(trial, places);
    tryHandler(places);
}

void tryFolders(Places const& places) {
    Trial const trial("pathutils/FileOperations");
    trial.expect("pxCreateFolder", pxCreateFolder(places.path("made/inner")) && isThere(places.path("made/inner")));
    NSString const unique = pxCreateUniqueFolder(places.path("made"));
    trial.expect("pxCreateUniqueFolder", isText(unique, places.path("made-1").UTF8String()) && isThere(unique));
    NSString const model = places.folder("model folder");
    trial.expect("pxCreateFolderWithAttributesFrom_",
                 pxCreateFolderWithAttributesFrom_(places.path("made/model folder"), model));
    NSArray const keys = NSArray::arrayWithObject_(NSFilePosixPermissions);
    trial.expect("pxCreateFolderWithAttributes_from_",
                 pxCreateFolderWithAttributes_from_(places.path("made/like it"), keys, model));
    NSData const content = NSData::dataWithBytes_length_("alias", 5);
    trial.expect("pxCreateAliasFileWithContent_", pxCreateAliasFileWithContent_(places.path("alias file"), content) &&
                                                      isThere(places.path("alias file")));
    trial.expect("pxUniquePathOfPath",
                 isText(pxUniquePathOfPath(places.file("taken.txt", "")), places.path("taken-1.txt").UTF8String()));
    trial.expect("pxTrashFolderPathOfPath", pxTrashFolderPathOfPath(model) != nil);
    trial.expect("pxTemporaryItemsFolderPathOfPath", isThere(pxTemporaryItemsFolderPathOfPath(model)));
    trial.expect("pxTemporaryItemsFolderPath", isThere(pxTemporaryItemsFolderPath()));
}

} // namespace consumer
