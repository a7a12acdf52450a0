#include "coreutils/DisclaimerAndViews.h"
#include "platform/appkit/views/NSApplication.h"
#include "platform/foundation/running/NSRunLoop.h"
#include <cstdio>

using namespace mac;

namespace {

void say(char const* word) {
    std::puts(word);
    std::fflush(stdout);
}

} // namespace

// An application that asks for the disclaimer before its first window: says whether it was shown, whether the
// application runs then, which it ends, and that it has ended.
int main() {
    say(pxRunDisclaimer("application") ? "shown" : "not shown");
    NSApplication const application = NSApplication::sharedApplication();
    performOnMainRunLoop([&] {
        say("runs");
        application.terminate_(nil);
    });
    application.run();
    say("ended");
    return 0;
}
