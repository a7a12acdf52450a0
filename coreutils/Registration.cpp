#include "coreutils/Registration.h"
#include "coreutils/ArrayLookups.h"
#include "coreutils/Collections.h"
#include "coreutils/DeferredPerforming.h"
#include "coreutils/IconsAndImages.h"
#include "coreutils/Logging.h"
#include "coreutils/Strings.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

namespace {

void registerStrings() {
    addCategory<NSString>(
        {
            method<&pxCountOf_>("pxCountOf:"),
            method<&pxContainsCharactersInString_>("pxContainsCharactersInString:"),
            method<&pxStringByRemovingCharactersInSet_>("pxStringByRemovingCharactersInSet:"),
            method<&pxStringBySubstituting_with_>("pxStringBySubstituting:with:"),
        },
        {
            classMethod<&pxUUID>("pxUUID"),
            classMethod<&pxFormattedStringWithSize_>("pxFormattedStringWithSize:"),
            classMethod<&pxDescriptionOfSystemErrorCode_>("pxDescriptionOfSystemErrorCode:"),
        });
    addCategory<NSData>({method<&pxChecksum>("pxChecksum")});
}

void registerCollections() {
    addCategory<NSArray>({
        method<static_cast<NSMutableIndexSet (*)(NSArray)>(&pxIndexSetWithNumbers)>("pxIndexSetWithNumbers"),
        method<&pxStringValues>("pxStringValues"),
        method<&pxFlattenedMutableArrayOfArrays>("pxFlattenedMutableArrayOfArrays"),
        method<&pxFlattenedMutableSetOfSets>("pxFlattenedMutableSetOfSets"),
        method<&pxMutableArrayWithTrimmedObjectsForKeys_>("pxMutableArrayWithTrimmedObjectsForKeys:"),
        method<&pxUniqueCopyNameForName_>("pxUniqueCopyNameForName:"),
        method<&pxObjectWithValue_forKeyPath_>("pxObjectWithValue:forKeyPath:"),
        method<&pxObjectAtIndex_>("pxObjectAtIndex:"),
    });
    addCategory<NSMutableArray>({
        method<&pxMoveObjectAtIndex_toIndex_>("pxMoveObjectAtIndex:toIndex:"),
        method<&pxMoveObjectsAtIndexes_toIndex_>("pxMoveObjectsAtIndexes:toIndex:"),
    });
    addCategory<NSMutableDictionary>(
        {}, {classMethod<&pxDictionaryWithDictionary_forKeys_>("pxDictionaryWithDictionary:forKeys:")});
    addCategory<NSEnumerator>({
        method<static_cast<NSMutableIndexSet (*)(NSEnumerator)>(&pxIndexSetWithNumbers)>("pxIndexSetWithNumbers"),
    });
    addCategory<NSSet>({
        method<static_cast<NSMutableIndexSet (*)(NSSet)>(&pxIndexSetWithNumbers)>("pxIndexSetWithNumbers"),
        method<&pxUnionWithSet_>("pxUnionWithSet:"),
    });
    addCategory<NSIndexSet>({method<&pxArrayWithIndexes>("pxArrayWithIndexes")});
    addCategory<NSNull>({method<&objectEnumerator>("objectEnumerator")});
}

void registerKeyValueOperations() {
    addCategory<NSObject>({
        method<&pxSetValueFrom_forKey_>("pxSetValueFrom:forKey:"),
        method<&pxSetValuesFrom_forKeys_>("pxSetValuesFrom:forKeys:"),
        method<&pxSetValuesFrom_>("pxSetValuesFrom:"),
        method<&pxValueForKeyPath_>("pxValueForKeyPath:"),
        method<&pxSetValue_forKeyPath_>("pxSetValue:forKeyPath:"),
        method<&pxStartObserving_forKeyPath_options_context_>("pxStartObserving:forKeyPath:options:context:"),
        method<&pxStopObserving_forKeyPath_>("pxStopObserving:forKeyPath:"),
        method<&pxStartObserving_forKeyPaths_options_context_>("pxStartObserving:forKeyPaths:options:context:"),
        method<&pxStopObserving_forKeyPaths_>("pxStopObserving:forKeyPaths:"),
        method<&pxStartObservingAllObjectsOf_forKeyPath_options_context_>(
            "pxStartObservingAllObjectsOf:forKeyPath:options:context:"),
        method<&pxStopObservingAllObjectsOf_forKeyPath_>("pxStopObservingAllObjectsOf:forKeyPath:"),
        method<&pxStartObservingAllObjectsOf_forKeyPaths_options_context_>(
            "pxStartObservingAllObjectsOf:forKeyPaths:options:context:"),
        method<&pxStopObservingAllObjectsOf_forKeyPaths_>("pxStopObservingAllObjectsOf:forKeyPaths:"),
        method<&pxStartObservingAllKeysOfAllObjectsOf_options_context_>(
            "pxStartObservingAllKeysOfAllObjectsOf:options:context:"),
        method<&pxStopObservingAllKeysOfAllObjectsOf_>("pxStopObservingAllKeysOfAllObjectsOf:"),
    });
}

void registerIconsAndDates() {
    addCategory<NSString>({
        method<&pxIconForFile>("pxIconForFile"),
        method<&pxIconForFileWithDimension_>("pxIconForFileWithDimension:"),
        method<&pxSmallIconForFile>("pxSmallIconForFile"),
        method<&pxLargeIconForFile>("pxLargeIconForFile"),
        method<&pxHugeIconForFile>("pxHugeIconForFile"),
        method<&pxThumbnailIconForFile>("pxThumbnailIconForFile"),
        method<&pxSmallIconForFileType>("pxSmallIconForFileType"),
    });
    addCategory<NSImage>({method<&pxTrimWithDimension_>("pxTrimWithDimension:")},
                         {
                             classMethod<&pxGenericIconForFileCreatorCode_fileTypeCode_fileTypeString_dimension_>(
                                 "pxGenericIconForFileCreatorCode:fileTypeCode:fileTypeString:dimension:"),
                             classMethod<&pxImageWithIconRef_dimension_>("pxImageWithIconRef:dimension:"),
                             classMethod<&pxIconWithData_>("pxIconWithData:"),
                         });
    addCategory<NSColor>({}, {classMethod<&pxColorWithQuickDrawRGBColor_>("pxColorWithQuickDrawRGBColor:")});
    addCategory<NSUserDefaults>({
        method<&pxSetColor_forKey_>("pxSetColor:forKey:"),
        method<&pxColorForKey_>("pxColorForKey:"),
    });
    addCategory<NSDictionary>({}, {classMethod<&pxDictionaryWithIconRef_>("pxDictionaryWithIconRef:")});
    addCategory<NSDate>({method<&pxUTCDateTime_>("pxUTCDateTime:")},
                        {classMethod<&pxDateWithUTCDateTime_>("pxDateWithUTCDateTime:")});
}

void registerLogging() {
    addCategory<NSBundle>({
        method<&pxLogFilePathWithAppendingToName_>("pxLogFilePathWithAppendingToName:"),
        method<&pxCreateLogFileWithAppendingToName_appendingToFile_includeAuxiliaryInformation_>(
            "pxCreateLogFileWithAppendingToName:appendingToFile:includeAuxiliaryInformation:"),
    });
    addCategory<NSString>({
        method<&pxOpenLogFileForPathWithAppending_>("pxOpenLogFileForPathWithAppending:"),
        method<static_cast<void (*)(NSString, NSString)>(&pxLog_)>("pxLog:"),
        method<static_cast<void (*)(NSString, BOOL, NSString)>(&pxLogAux_)>("pxLogAux::"),
        method<&pxFormattedStringWithArguments_>("pxFormattedStringWithArguments:"),
    });
}

void registerDeferredPerforming() {
    addCategory<NSObject>({
        method<&pxRegisterPerformDeferredSelector>("pxRegisterPerformDeferredSelector"),
        method<&pxUnregisterPerformDeferredSelector>("pxUnregisterPerformDeferredSelector"),
        method<&pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_>(
            "pxPerformDeferredSelector:withObject:postWhenIdle:coalescing:"),
        method<&pxPerformDeferredSelector_withObject_withObject_postWhenIdle_coalescing_>(
            "pxPerformDeferredSelector:withObject:withObject:postWhenIdle:coalescing:"),
        method<&pxPerformDeferredSelectorHandler_>("pxPerformDeferredSelectorHandler:"),
    });
}

} // namespace

void registerCoreUtils() {
    registerDeferredPerforming();
    registerLogging();
    registerStrings();
    registerCollections();
    registerKeyValueOperations();
    registerIconsAndDates();
}

} // namespace mac
