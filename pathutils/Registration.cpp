#include "pathutils/Registration.h"
#include "pathutils/AliasesAndContents.h"
#include "pathutils/BundleVersions.h"
#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "pathutils/PXFileManagerHandler.h"
#include "pathutils/PathRelations.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

namespace {

void registerBundleVersions() {
    addCategory<NSString>({
        method<&pxVersionOfPath>("pxVersionOfPath"),
        method<&pxParseVersionToMajor_minor_subminor_>("pxParseVersionToMajor:minor:subminor:"),
        method<&pxTrimmedVersion_>("pxTrimmedVersion:"),
        method<&pxTrimmedVersion>("pxTrimmedVersion"),
        method<&pxVersionCompare_>("pxVersionCompare:"),
    });
}

void registerPathRelations() {
    addCategory<NSString>({
        method<&pxIsEqualToPath_>("pxIsEqualToPath:"),
        method<&pxIsChildOf_>("pxIsChildOf:"),
        method<&pxFastIsChildOf_>("pxFastIsChildOf:"),
        method<&pxIsPathPackageOrPartOfPackageCheckingMaxLevels_>("pxIsPathPackageOrPartOfPackageCheckingMaxLevels:"),
        method<&pxIsPathPartOfPackageCheckingMaxLevels_>("pxIsPathPartOfPackageCheckingMaxLevels:"),
        method<&pxDisplayNameOfPath>("pxDisplayNameOfPath"),
        method<&pxParentPathOfPath>("pxParentPathOfPath"),
        method<&pxInfoDictionaryForPath>("pxInfoDictionaryForPath"),
        method<&pxInfoDictionaryForPathUncached>("pxInfoDictionaryForPathUncached"),
        method<&pxVisibleDirectoryContentsAtPath_>("pxVisibleDirectoryContentsAtPath:"),
        method<&pxFilenameExtensionOfUTI>("pxFilenameExtensionOfUTI"),
        method<&pxFilenameExtensionOfUTIPanther>("pxFilenameExtensionOfUTIPanther"),
        method<static_cast<bool (*)(NSString)>(&pxIsImageFile)>("pxIsImageFile"),
        method<static_cast<bool (*)(NSString)>(&pxIsAudioFile)>("pxIsAudioFile"),
        method<&pxIsWritableFileAtPath>("pxIsWritableFileAtPath"),
        method<&pxIsDeletableFileAtPath>("pxIsDeletableFileAtPath"),
        method<&pxURLOfPath>("pxURLOfPath"),
        method<&pxURLOfPath_>("pxURLOfPath:"),
    });
}

void registerFileOperations() {
    registerClasses<PXFileManagerHandler>();
    addCategory<NSString>(
        {
            method<&pxRemoveFile2>("pxRemoveFile2"),
            method<&pxRemoveFile>("pxRemoveFile"),
            method<&pxRemoveFileIfExists>("pxRemoveFileIfExists"),
            method<&pxMoveToTrash>("pxMoveToTrash"),
            method<&pxMoveToFolder_>("pxMoveToFolder:"),
            method<&pxMoveToFolder2_>("pxMoveToFolder2:"),
            method<&pxCopyToPath_>("pxCopyToPath:"),
            method<&pxCopyToFolder_>("pxCopyToFolder:"),
            method<&pxRenameToNameOf_>("pxRenameToNameOf:"),
            method<&pxRenameTo_keepExtension_>("pxRenameTo:keepExtension:"),
            method<&pxCreateAliasFileWithContent_>("pxCreateAliasFileWithContent:"),
            method<&pxCreateUniqueFolder>("pxCreateUniqueFolder"),
            method<&pxCreateFolder>("pxCreateFolder"),
            method<&pxCreateFolderWithAttributesFrom_>("pxCreateFolderWithAttributesFrom:"),
            method<&pxCreateFolderWithAttributes_from_>("pxCreateFolderWithAttributes:from:"),
            method<&pxPathSetNotWritable_locked_>("pxPathSetNotWritable:locked:"),
            method<&pxSetFileModificationDate_creationDate_>("pxSetFileModificationDate:creationDate:"),
            method<&pxSetFileAttributesFrom_>("pxSetFileAttributesFrom:"),
            method<&pxSetExtendedFileAttributesFrom_skipKeys_>("pxSetExtendedFileAttributesFrom:skipKeys:"),
            method<&pxSetFileAttributes_from_>("pxSetFileAttributes:from:"),
            method<&pxSetFileAttributes_from_recurseUntilBeforeDstPath_>(
                "pxSetFileAttributes:from:recurseUntilBeforeDstPath:"),
            method<&pxUniquePathOfPath>("pxUniquePathOfPath"),
            method<&pxTrashFolderPathOfPath>("pxTrashFolderPathOfPath"),
            method<&pxTemporaryItemsFolderPathOfPath>("pxTemporaryItemsFolderPathOfPath"),
        },
        {classMethod<&pxTemporaryItemsFolderPath>("pxTemporaryItemsFolderPath")});
    addCategory<NSEnumerator>({method<&pxRemoveFiles>("pxRemoveFiles")});
}

void registerExtendedAttributes() {
    addCategory<NSString>({
        method<&pxExtendedAttributesKeys>("pxExtendedAttributesKeys"),
        method<&pxExtendedAttributeDataForKey_>("pxExtendedAttributeDataForKey:"),
        method<&pxSetExtendedAttributeData_forKey_>("pxSetExtendedAttributeData:forKey:"),
        method<&pxRemoveExtendedAttributeForKey_>("pxRemoveExtendedAttributeForKey:"),
        method<&pxExtendedAttributes>("pxExtendedAttributes"),
        method<&pxExtendedAttributesForKeys_>("pxExtendedAttributesForKeys:"),
        method<&pxSetExtendedAttributes_>("pxSetExtendedAttributes:"),
        method<&pxExtendedAttributeDictionaryForKey_>("pxExtendedAttributeDictionaryForKey:"),
        method<&pxSetExtendedAttributeDictionary_forKey_>("pxSetExtendedAttributeDictionary:forKey:"),
        method<&pxExtendedAttributeDictionary>("pxExtendedAttributeDictionary"),
        method<&pxSetExtendedAttributeDictionary_>("pxSetExtendedAttributeDictionary:"),
    });
}

void registerFinderMetadata() {
    addCategory<NSString>(
        {
            method<&KRPathGetFSRef_getIsDirectory_traverseLink_>("KRPathGetFSRef:getIsDirectory:traverseLink:"),
            method<&KRPathGetFSRef_traverseLink_>("KRPathGetFSRef:traverseLink:"),
            method<&KRPathGetParentFSRef_name_>("KRPathGetParentFSRef:name:"),
            method<&pxVolumeRefNumOfPath>("pxVolumeRefNumOfPath"),
            method<&pxFilesystemIDForPath>("pxFilesystemIDForPath"),
            method<&KRPathSupportsCustomIcons>("KRPathSupportsCustomIcons"),
            method<&KRPathHasInexactTime>("KRPathHasInexactTime"),
            method<&pxPathIsOnDOSVolume>("pxPathIsOnDOSVolume"),
            method<&pxPathIsOnIDisk>("pxPathIsOnIDisk"),
            method<&pxValenceOfPath_>("pxValenceOfPath:"),
            method<&pxFinderFlagsOfPath_>("pxFinderFlagsOfPath:"),
            method<&pxSetFinderFlagsOfPath_mask_>("pxSetFinderFlagsOfPath:mask:"),
            method<&pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_>(
                "pxFinderFlagsOfPath:isFolder:customIconRef:labelIndex:"),
            method<&pxFinderFlagsOfPath_isFolder_customIconData_labelIndex_>(
                "pxFinderFlagsOfPath:isFolder:customIconData:labelIndex:"),
            method<&pxLSFlagsOfPath_>("pxLSFlagsOfPath:"),
            method<&pxLSFlagsOfPath_displayName_>("pxLSFlagsOfPath:displayName:"),
            method<&pxLSFlagsOfPath_displayName_isDirectory_>("pxLSFlagsOfPath:displayName:isDirectory:"),
            method<&pxUpdatePathInFinder>("pxUpdatePathInFinder"),
        },
        {classMethod<&pxUpdatePathInFinder_>("pxUpdatePathInFinder:")});
}

void registerAliasesAndContents() {
    addCategory<NSString>(
        {
            method<&pxAliasDataOfPath>("pxAliasDataOfPath"),
            method<&pxExchangeFileWith_>("pxExchangeFileWith:"),
            method<&pxPathHasEqualContentsWithPath_>("pxPathHasEqualContentsWithPath:"),
            method<&pxChecksumOfPath>("pxChecksumOfPath"),
            method<&pxModificationDateOfPath>("pxModificationDateOfPath"),
        },
        {
            classMethod<&pxIsFork_equalToFork_dataFork_>("pxIsFork:equalToFork:dataFork:"),
            classMethod<&pxIsContentsOfFile_equalToFile_>("pxIsContentsOfFile:equalToFile:"),
        });
    addCategory<NSData>(
        {
            method<&pxPathOfAliasData>("pxPathOfAliasData"),
            method<&pxPathOfAliasDataChangedAlias_>("pxPathOfAliasDataChangedAlias:"),
            method<&pxCreateHandle>("pxCreateHandle"),
        },
        {classMethod<&pxDataWithHandle_>("pxDataWithHandle:")});
}

} // namespace

void registerPathUtils() {
    registerBundleVersions();
    registerPathRelations();
    registerFileOperations();
    registerExtendedAttributes();
    registerFinderMetadata();
    registerAliasesAndContents();
}

} // namespace mac
