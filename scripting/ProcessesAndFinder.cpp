#include "scripting/ProcessesAndFinder.h"
#include "pathutils/FinderMetadata.h"
#include "platform/appkit/workspace/NSWorkspace.h"
#include "platform/desktop/session/Patience.h"
#include "platform/events/AppleEvents.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/NSThread.h"
#include "platform/foundation/urls/NSURL.h"
#include "platform/launchservices/ItemInformation.h"
#include "scripting/AppleScriptExecution.h"
#include "scripting/FileReferences.h"
#include "scripting/ProcessQuitting.h"
#include <bit>

namespace mac {

namespace {

ProcessSerialNumber unboxed(NSNumber const& number) {
    return std::bit_cast<ProcessSerialNumber>(static_cast<std::uint64_t>(number.longLongValue()));
}

// The path of an item that is one or a file's URL; nil for everything else, null objects among it.
NSString pathOfItem(id const& item) {
    NSString const path = as<NSString>(item);
    NSURL const url = as<NSURL>(item);
    if (path == nil && !url.isFileURL()) return nil;
    return (path == nil ? url.path() : path).stringByStandardizingPath();
}

// Tries every item; whether one of them could be shown. All of them together wait for the file browser once.
bool showItems(NSEnumerator const& items, bool (*show)(NSString)) {
    Patience const patience;
    bool isAnyShown = false;
    for (id item = items.nextObject(); item != nil; item = items.nextObject()) {
        NSString const path = pathOfItem(item);
        if (path != nil && show(path)) isAnyShown = true;
    }
    return isAnyShown;
}

} // namespace

NSNumber KRAProcessSerialNumber_(ProcessSerialNumber psn) {
    return NSNumber::numberWithUnsignedLongLong_(std::bit_cast<std::uint64_t>(psn));
}

NSNumber KRAProcessSerialNumberGetFront() {
    ProcessSerialNumber psn;
    return GetFrontProcess(&psn) == noErr ? KRAProcessSerialNumber_(psn) : NSNumber(nil);
}

NSNumber KRAProcessSerialNumberGetCurrent() {
    ProcessSerialNumber psn;
    return GetCurrentProcess(&psn) == noErr ? KRAProcessSerialNumber_(psn) : NSNumber(nil);
}

NSNumber KRAProcessSerialNumberGetFinder() {
    std::optional<ProcessSerialNumber> const finder = processWith(kCFBundleIdentifierKey, "com.apple.finder");
    return finder ? KRAProcessSerialNumber_(*finder) : NSNumber(nil);
}

bool KRAProcessSerialNumberSetFront(NSNumber receiver) {
    if (receiver == nil) return false;
    ProcessSerialNumber const psn = unboxed(receiver);
    return SetFrontProcess(&psn) == noErr;
}

bool KRAProcessSerialNumberQuit(NSNumber receiver) { return quitProcess(receiver, sleepForInterval); }

bool KRAPathRevealInFinder(NSString receiver) {
    Patience const patience;
    if (KRCPathExists(receiver))
        return NSWorkspace::sharedWorkspace().selectFile_inFileViewerRootedAtPath_(receiver, "");
    // The root is no folder that anybody would look for the item in.
    for (NSString path = receiver.stringByDeletingLastPathComponent(); path.pathComponents().count() > 1;
         path = path.stringByDeletingLastPathComponent()) {
        std::uint32_t flags = 0;
        if (!KRCPathExists(path) || !pxLSFlagsOfPath_(path, &flags)) continue;
        if ((flags & kLSItemInfoIsInvisible) != 0) return false;
        if (pxOpenItemWithFinder(path)) return true;
    }
    return false;
}

bool pxOpenItemWithFinder(NSString receiver) {
    NSString const path = receiver.stringByStandardizingPath();
    return KRCPathExists(path) && NSWorkspace::sharedWorkspace().openFile_(path);
}

bool pxRevealItemsInFinder(NSEnumerator receiver) { return showItems(receiver, &KRAPathRevealInFinder); }

bool pxOpenItemsWithFinder(NSEnumerator receiver) { return showItems(receiver, &pxOpenItemWithFinder); }

bool pxShowFinderInfo(NSEnumerator receiver) {
    NSMutableString const script = NSMutableString::stringWithString_("tell application \"Finder\" to activate\n");
    NSUInteger const lengthWithoutItems = script.length();
    for (id item = receiver.nextObject(); item != nil; item = receiver.nextObject()) {
        NSString const path = as<NSString>(item).stringByStandardizingPath();
        if (!KRCPathExists(path)) continue;
        script.appendFormat_("set x to POSIX file \"%@\" as text\n", pxStringByEscapingDoubleQuotes(path));
        script.appendString_("tell application \"Finder\" to open information window of alias x\n");
    }
    if (script.length() == lengthWithoutItems) return false;
    pxExecuteAsAppleScript(script);
    return true;
}

bool pxTerminate(NSTask receiver) {
    bool const wasRunning = receiver.isRunning();
    if (wasRunning) receiver.terminate();
    return wasRunning;
}

} // namespace mac
