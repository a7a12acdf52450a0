#include "pathutils/FinderMetadata.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "scripting/AppleEventDescriptors.h"
#include "scripting/ProcessesAndFinder.h"

#include "tests/consumer/operations/Trial.h"
#include <stdlib.h>

// Running processes and the Finder. The default file browser is a copy of this program (Main.cpp).

namespace consumer {

using namespace mac;

namespace {

// A file browser is started only if a display is named, which this one does not need.
class NamedDisplay {
public:
    NamedDisplay() { ::setenv("DISPLAY", ":of-nobody", 1); }
    ~NamedDisplay() { ::unsetenv("DISPLAY"); }
    NamedDisplay(NamedDisplay const&) = delete;
    NamedDisplay& operator=(NamedDisplay const&) = delete;
};

void tryFinder(Trial const& trial, Places const& places) {
    NamedDisplay const display;
    NSString const file = places.file("shown/letter", "");
    NSArray const items = NSArray::arrayWithObjects_({file, NSNull::null()});
    // Without a browser that is a service it is started with the folder.
    trial.expect("KRAPathRevealInFinder", KRAPathRevealInFinder(file) && !KRAPathRevealInFinder("/no such/item"));
    NSNumber const finder = KRAProcessSerialNumberGetFinder();
    trial.expect("KRAProcessSerialNumberGetFinder", finder != nil);
    trial.expect("pxRevealItemsInFinder", pxRevealItemsInFinder(items.objectEnumerator()));
    trial.expect("pxOpenItemWithFinder", pxOpenItemWithFinder(places.path("shown")));
    trial.expect("pxOpenItemsWithFinder",
                 pxOpenItemsWithFinder(NSArray::arrayWithObject_(places.path("shown")).objectEnumerator()));
    trial.expect("pxShowFinderInfo",
                 pxShowFinderInfo(items.objectEnumerator()) && !pxShowFinderInfo(NSArray::array().objectEnumerator()));
    Trial const metadata("pathutils/FinderMetadata");
    FSRef ref{};
    KRPathGetFSRef_traverseLink_(file, &ref, NO);
    metadata.expect("pxUpdatePathInFinder", pxUpdatePathInFinder(file));
    metadata.expect("pxUpdatePathInFinder_", pxUpdatePathInFinder_(&ref));
    bool hasQuit = true;
    for (NSNumber browser = finder; browser != nil && hasQuit; browser = KRAProcessSerialNumberGetFinder())
        hasQuit = KRAProcessSerialNumberQuit(browser);
    trial.expect("KRAProcessSerialNumberQuit", hasQuit && KRAProcessSerialNumberGetFinder() == nil);
}

} // namespace

void tryProcesses(Places const& places) {
    Trial const trial("scripting/ProcessesAndFinder");
    trial.expect("KRAProcessSerialNumber_", KRAProcessSerialNumber_({0, 2}).unsignedLongLongValue() == 0x200000000);
    NSNumber const own = KRAProcessSerialNumberGetCurrent();
    trial.expect("KRAProcessSerialNumberGetCurrent", own != nil);
    // There is no display whose windows could be in front.
    trial.expect("KRAProcessSerialNumberGetFront", KRAProcessSerialNumberGetFront() == nil);
    trial.expect("KRAProcessSerialNumberSetFront", !KRAProcessSerialNumberSetFront(own));
    tryFinder(trial, places);
    NSTask const task = NSTask::launchedTaskWithLaunchPath_arguments_("/bin/sleep", NSArray::arrayWithObject_("600"));
    bool const wasRunning = pxTerminate(task);
    task.waitUntilExit();
    trial.expect("pxTerminate", wasRunning && !pxTerminate(task));
}

} // namespace consumer
