#include "scripting/ProcessesAndFinder.h"
#include "platform/events/AppleEvents.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSThread.h"
#include <bit>

namespace mac {

namespace {

constexpr char FinderIdentifier[] = "com.apple.finder";

ProcessSerialNumber unboxed(NSNumber const& number) {
    return std::bit_cast<ProcessSerialNumber>(static_cast<std::uint64_t>(number.longLongValue()));
}

NSDictionary informationOf(ProcessSerialNumber const& psn) {
    return ProcessInformationCopyDictionary(&psn, kProcessDictionaryIncludeAllInformationMask);
}

OSStatus sendQuit(ProcessSerialNumber const& psn) {
    NSAppleEventDescriptor const target =
        NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeProcessSerialNumber, &psn, sizeof psn);
    NSAppleEventDescriptor const event =
        NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
            kCoreEventClass, kAEQuitApplication, target, kAutoGenerateReturnID, kAnyTransactionID);
    AEDesc reply{.descriptorType = typeNull};
    OSStatus const status = AESendMessage(event.aeDesc(), &reply, kAEWaitReply, kAEDefaultTimeout);
    AEDisposeDesc(&reply);
    return status;
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
    ProcessSerialNumber psn{0, kNoProcess};
    while (GetNextProcess(&psn) == noErr) {
        id const identifier = informationOf(psn).objectForKey_(kCFBundleIdentifierKey);
        if (identifier.isEqual_(FinderIdentifier)) return KRAProcessSerialNumber_(psn);
    }
    return nil;
}

bool KRAProcessSerialNumberSetFront(NSNumber receiver) {
    if (receiver == nil) return false;
    ProcessSerialNumber const psn = unboxed(receiver);
    return SetFrontProcess(&psn) == noErr;
}

bool KRAProcessSerialNumberQuit(NSNumber receiver) {
    constexpr int mostLooks = 20;
    constexpr NSTimeInterval betweenLooks = 0.2;
    if (receiver == nil) return false;
    ProcessSerialNumber const psn = unboxed(receiver);
    if (sendQuit(psn) != noErr) return false;
    for (int look = 0; look < mostLooks; ++look) {
        NSThread::sleepUntilDate_(NSDate::dateWithTimeIntervalSinceNow_(betweenLooks));
        if (informationOf(psn) == nil) return true;
    }
    return false;
}

bool pxTerminate(NSTask receiver) {
    bool const wasRunning = receiver.isRunning();
    if (wasRunning) receiver.terminate();
    return wasRunning;
}

namespace {

struct Registration {
    Registration() {
        Method const ofNumbers[] = {
            method<&KRAProcessSerialNumberSetFront>("KRAProcessSerialNumberSetFront"),
            method<&KRAProcessSerialNumberQuit>("KRAProcessSerialNumberQuit"),
        };
        classOf<NSNumber>().addMethods(ofNumbers);
        Method const ofTasks[] = {method<&pxTerminate>("pxTerminate")};
        classOf<NSTask>().addMethods(ofTasks);
    }
} const s_registration;

} // namespace

} // namespace mac
