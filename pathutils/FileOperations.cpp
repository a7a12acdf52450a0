#include "pathutils/FileOperations.h"
#include "pathutils/PXFileManagerHandler.h"
#include "scripting/AppleScriptExecution.h"
#include "scripting/FileReferences.h"

namespace mac {

namespace {

NSFileManager manager() { return NSFileManager::defaultManager(); }

NSString errorOf(PXFileManagerHandler const& handler) {
    return as<NSString>(handler.errorInfo().objectForKey_("Error"));
}

// Nil if the operation was done, even if the handler has a message.
NSString messageOf(PXFileManagerHandler const& handler, bool isDone, NSString const& otherwise) {
    NSString const message = errorOf(handler);
    return isDone || !(message == nil) ? message : otherwise;
}

} // namespace

NSString pxRemoveFile2(NSString receiver) {
    if (receiver == nil) return nil;
    PXFileManagerHandler const handler = PXFileManagerHandler::alloc();
    bool const isDone = manager().removeFileAtPath_handler_(receiver, handler);
    return messageOf(handler, isDone, "Could not delete file item.");
}

bool pxRemoveFile(NSString receiver) { return manager().removeFileAtPath_handler_(receiver, nil); }

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

} // namespace mac
