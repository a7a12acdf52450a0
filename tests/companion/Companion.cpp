#include "platform/events/AppleEvents.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/running/NSTimer.h"
#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <sys/prctl.h>
#include <unistd.h>

// Stands for the companion: it runs until it is asked to quit, and answers as its bundle says under WhenAskedToQuit:
// "quit" at once, "dawdle" for 0.3 seconds, "linger" until there is a line on its standard input, "refuse", "crash", or
// "none", which handles no event at all.

namespace {

using namespace mac;

std::optional<NSDate> s_end;

void say(char const* line) {
    std::puts(line);
    std::fflush(stdout);
}

OSErr quit(AppleEvent const*, AppleEvent*, void* refcon) {
    constexpr OSErr userCanceledErr = -128;
    std::string const& answer = *static_cast<std::string const*>(refcon);
    say("asked to quit");
    if (answer == "refuse") return userCanceledErr;
    if (answer == "crash") std::raise(SIGKILL);
    s_end = NSDate::dateWithTimeIntervalSinceNow_(answer == "dawdle" ? 0.3 : 0);
    return noErr;
}

// Until there is a line, or no more input.
void waitForLine() {
    for (int byte = std::getchar(); byte != EOF && byte != '\n';)
        byte = std::getchar();
}

// Sends an event to the parent, which opens this process's end of the bus: from then on it can receive events.
void comeWithinReach() {
    std::int32_t const parent = ::getppid();
    NSAppleEventDescriptor const hello =
        NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
            AEEventClass("test"), AEEventID("helo"),
            NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeKernelProcessID, &parent,
                                                                               sizeof parent),
            kAutoGenerateReturnID, kAnyTransactionID);
    AESendMessage(hello.aeDesc(), nullptr, kAENoReply, kNoTimeOut);
}

} // namespace

int main() {
    // A test that fails early, or a demo that is broken off, takes it along.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::string answer =
        as<NSString>(NSBundle::mainBundle().objectForInfoDictionaryKey_("WhenAskedToQuit")).UTF8String();
    if (answer != "none") {
        AEInstallEventHandler(kCoreEventClass, kAEQuitApplication, quit, &answer, NO);
        comeWithinReach();
    }
    say("ready");
    while (!s_end || s_end->timeIntervalSinceNow() > 0)
        NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode, s_end.value_or(NSDate::distantFuture()));
    if (answer == "linger") waitForLine();
    return 0;
}
