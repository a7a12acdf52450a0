#include "platform/appkit/interface/ApplicationEvents.h"
#include "platform/appkit/interface/ApplicationInstance.h"
#include "platform/appkit/views/NSApplication.h"
#include "platform/events/AppleEvents.h"
#include "platform/foundation/running/NSRunLoop.h"
#include <QApplication>

namespace mac {

namespace {

OSErr doNothing(AppleEvent const*, AppleEvent*, void*) { return noErr; }

OSErr bringToFront(AppleEvent const*, AppleEvent*, void*) {
    raiseWindows();
    return noErr;
}

// The delegate may have ended the program already when the last window was closed.
void quitNow() {
    QApplication::closeAllWindows();
    NSApplication::sharedApplication().terminate_(nil);
}

OSErr quit(AppleEvent const*, AppleEvent*, void*) {
    performOnMainRunLoop(quitNow);
    return noErr;
}

} // namespace

void installApplicationEvents() {
    AEInstallEventHandler(kCoreEventClass, kAEOpenApplication, doNothing, nullptr, NO);
    AEInstallEventHandler(kCoreEventClass, kAEReopenApplication, bringToFront, nullptr, NO);
    AEInstallEventHandler(kCoreEventClass, kAEQuitApplication, quit, nullptr, NO);
}

} // namespace mac
