#include "scripting/Registration.h"
#include "platform/foundation/objects/Method.h"
#include "scripting/AppleEventDescriptors.h"
#include "scripting/AppleScriptExecution.h"
#include "scripting/FileReferences.h"
#include "scripting/ProcessesAndFinder.h"
#include "scripting/URLUtilities.h"

namespace mac {

namespace {

void registerAppleScriptExecution() {
    addCategory<NSString>({
        method<&pxExecuteAsAppleScript>("pxExecuteAsAppleScript"),
        method<&pxExecuteAsAppleScript_>("pxExecuteAsAppleScript:"),
        method<&pxExecuteAsAppleScript2_>("pxExecuteAsAppleScript2:"),
        method<&pxExecuteAsShellScriptWithAdminPrivs_>("pxExecuteAsShellScriptWithAdminPrivs:"),
        method<&pxQuotedForm>("pxQuotedForm"),
        method<&pxStringByEscapingDoubleQuotes>("pxStringByEscapingDoubleQuotes"),
        method<&pxStringByEscapingSingleQuotes>("pxStringByEscapingSingleQuotes"),
    });
    addCategory<NSAppleScript>({
        method<&pxExecuteHandler_withParameters_error_>("pxExecuteHandler:withParameters:error:"),
        method<static_cast<id (*)(NSAppleScript, NSString, NSString*, NSArray)>(
            &pxExecuteHandler_error_withParameters_)>("pxExecuteHandler:error:withParameters:"),
    });
}

void registerAppleEventDescriptors() {
    addCategory<NSAppleEventDescriptor>(
        {
            method<&pxSend>("pxSend"),
            method<&pxObject>("pxObject"),
        },
        {
            classMethod<&pxFinderAppleEventWithEventID_>("pxFinderAppleEventWithEventID:"),
            classMethod<&pxFinderAppleEventWithEventClass_eventID_>("pxFinderAppleEventWithEventClass:eventID:"),
            classMethod<&pxDescriptorWithProcessSerialNumberSelf>("pxDescriptorWithProcessSerialNumberSelf"),
            classMethod<&pxDescriptorWithProcessSerialNumberFinder>("pxDescriptorWithProcessSerialNumberFinder"),
        });
}

void registerProcessesAndFinder() {
    addCategory<NSNumber>(
        {
            method<&KRAProcessSerialNumberSetFront>("KRAProcessSerialNumberSetFront"),
            method<&KRAProcessSerialNumberQuit>("KRAProcessSerialNumberQuit"),
        },
        {
            classMethod<&KRAProcessSerialNumber_>("KRAProcessSerialNumber:"),
            classMethod<&KRAProcessSerialNumberGetFront>("KRAProcessSerialNumberGetFront"),
            classMethod<&KRAProcessSerialNumberGetCurrent>("KRAProcessSerialNumberGetCurrent"),
            classMethod<&KRAProcessSerialNumberGetFinder>("KRAProcessSerialNumberGetFinder"),
        });
    addCategory<NSString>({
        method<&KRAPathRevealInFinder>("KRAPathRevealInFinder"),
        method<&pxOpenItemWithFinder>("pxOpenItemWithFinder"),
    });
    addCategory<NSEnumerator>({
        method<&pxRevealItemsInFinder>("pxRevealItemsInFinder"),
        method<&pxOpenItemsWithFinder>("pxOpenItemsWithFinder"),
        method<&pxShowFinderInfo>("pxShowFinderInfo"),
    });
    addCategory<NSTask>({method<&pxTerminate>("pxTerminate")});
}

void registerFileReferences() {
    addCategory<NSString>(
        {
            method<&KRCStringBySwappingColonsAndSlashes>("KRCStringBySwappingColonsAndSlashes"),
            method<&KRCStringGetHFSUniStr255_>("KRCStringGetHFSUniStr255:"),
            method<&KRCPathNameGetHFSUniStr255_>("KRCPathNameGetHFSUniStr255:"),
            method<&KRCPathGetFileType>("KRCPathGetFileType"),
            method<&KRCPathIsSymbolicLink>("KRCPathIsSymbolicLink"),
            method<&KRCPathExists>("KRCPathExists"),
            method<&KRCPathExistsIsDirectory_>("KRCPathExistsIsDirectory:"),
            method<&KRCPathExistsTraverseLink_>("KRCPathExistsTraverseLink:"),
            method<&KRCPathExistsIsDirectory_traverseLink_>("KRCPathExistsIsDirectory:traverseLink:"),
            method<&KRCPathGetFileSystemPath>("KRCPathGetFileSystemPath"),
            method<&KRCPathGetFSRef_>("KRCPathGetFSRef:"),
            method<&KRCPathGetFSRef_isDirectory_>("KRCPathGetFSRef:isDirectory:"),
            method<&KRCPathGetFSRef_getIsDirectory_>("KRCPathGetFSRef:getIsDirectory:"),
            method<&KRCPathDisplayNames>("KRCPathDisplayNames"),
            method<&KRCPathSubPathRelativeToBasePath_>("KRCPathSubPathRelativeToBasePath:"),
        },
        {
            classMethod<&KRCHFSUniStr255SwapColonsAndSlashes_>("KRCHFSUniStr255SwapColonsAndSlashes:"),
            classMethod<&KRCStringWithHFSUniStr255_>("KRCStringWithHFSUniStr255:"),
            classMethod<&KRCStringWithHFSUniStr255NoCopy_>("KRCStringWithHFSUniStr255NoCopy:"),
            classMethod<&KRCPathWithFSRef_>("KRCPathWithFSRef:"),
        });
    addCategory<NSURL>(
        {
            method<&KRCURLGetFSRef_>("KRCURLGetFSRef:"),
            method<&KRCURLRelativeURLWithFSRef_>("KRCURLRelativeURLWithFSRef:"),
            method<&KRCURLIsOnIDisk>("KRCURLIsOnIDisk"),
        },
        {classMethod<&KRCURLWithFSRef_>("KRCURLWithFSRef:")});
}

void registerURLUtilities() {
    addCategory<NSURL>(
        {
            method<&pxLSFlags_displayName_>("pxLSFlags:displayName:"),
            method<&KRVolumeURLGetPath>("KRVolumeURLGetPath"),
            method<static_cast<bool (*)(NSURL)>(&pxIsImageFile)>("pxIsImageFile"),
            method<static_cast<bool (*)(NSURL)>(&pxIsAudioFile)>("pxIsAudioFile"),
            method<&KRURLSupportsCustomIcons>("KRURLSupportsCustomIcons"),
            method<&KRURLHasInexactTime>("KRURLHasInexactTime"),
            method<&pxComponent_>("pxComponent:"),
            method<&pxDisplayComponent_>("pxDisplayComponent:"),
            method<&pxDisplayComponents>("pxDisplayComponents"),
        },
        {classMethod<&pxURLForVolume_>("pxURLForVolume:")});
}

} // namespace

void registerScripting() {
    registerAppleScriptExecution();
    registerAppleEventDescriptors();
    registerProcessesAndFinder();
    registerFileReferences();
    registerURLUtilities();
}

} // namespace mac
