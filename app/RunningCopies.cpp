#include "app/AppController.h"
#include "app/AppControllerBody.h"
#include "platform/appkit/workspace/NSWorkspace.h"
#include "platform/events/AppleEvents.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "scripting/ProcessesAndFinder.h"
#include <bit>
#include <functional>

namespace framekeeper {

namespace {

void forEachRunningCopy(std::function<void(ProcessSerialNumber const&, NSDictionary const&)> const& function) {
    ProcessSerialNumber psn{0, kNoProcess};
    while (GetNextProcess(&psn) == noErr) {
        NSDictionary const information =
            ProcessInformationCopyDictionary(&psn, kProcessDictionaryIncludeAllInformationMask);
        if (information.objectForKey_(kCFBundleIdentifierKey).isEqual_(CompanionIdentifier)) function(psn, information);
    }
}

void quitCopy(NSNumber const& number) {
    auto const psn = std::bit_cast<ProcessSerialNumber>(static_cast<std::uint64_t>(number.longLongValue()));
    std::int32_t pid = 0;
    if (GetProcessPID(&psn, &pid) != noErr) {
        NSBeep();
        NSLog("Quitting Mirror Frame (psn=%@) %@", number, "failed");
        return;
    }
    bool const isSent = sendEvent(psn, kCoreEventClass, kAEQuitApplication) == noErr;
    if (!isSent) NSBeep();
    NSLog("Quitting Mirror Frame (pid=%d) %@", pid, isSent ? NSString("succeeded") : NSString("failed"));
}

} // namespace

void AppController::syncIsRunningPaths() const {
    if (*this == nil) return;
    NSMutableSet const entries = NSMutableSet::set();
    forEachRunningCopy([&](ProcessSerialNumber const& psn, NSDictionary const& information) {
        id const path = information.objectForKey_(kIOBundlePathKey);
        if (path == nil) return;
        entries.addObject_(
            NSDictionary::dictionaryWithObjectsAndKeys_({path, "path", KRAProcessSerialNumber_(psn), "psn"}));
    });
    setIsRunningPaths_(entries);
}

bool AppController::isRunningWithQuitting_(BOOL quit) const {
    if (*this == nil) return false;
    NSMutableArray const numbers = NSMutableArray::array();
    forEachRunningCopy([&](ProcessSerialNumber const&, NSDictionary const& information) {
        id const number = information.objectForKey_("PSN");
        if (number != nil) numbers.addObject_(number);
    });
    for (NSUInteger index = 0; quit && index < numbers.count(); ++index)
        quitCopy(as<NSNumber>(numbers.objectAtIndex_(index)));
    return numbers.count() > 0;
}

void AppController::quitAction_(id const&) const {
    NSArray const selected = pathsArrayController().selectedObjects();
    if (selected.count() != 1) return;
    NSNumber const psn = as<NSNumber>(selected.objectAtIndex_(0).valueForKey_("psn"));
    if (!quitProcess(psn, bodyOf(*this)->_pause)) {
        NSBeep();
        NSLog("Could not quit process.");
        return;
    }
    syncIsRunningPaths();
    reSync();
    tell(*this, NSLocalizedString("The copy has quit.", nil), Offer::Nothing);
}

void AppController::openActivityMonitorAction_(id const&) const {
    if (*this == nil) return;
    bool const isLaunched =
        NSWorkspace::sharedWorkspace()
            .launchAppWithBundleIdentifier_options_additionalEventParamDescriptor_launchIdentifier_(
                "com.apple.ActivityMonitor", NSWorkspaceLaunchDefault, NSAppleEventDescriptor::nullDescriptor(), {});
    if (isLaunched) return;
    NSBeep();
    NSLog("Could not launch Activity Monitor.");
}

} // namespace framekeeper
