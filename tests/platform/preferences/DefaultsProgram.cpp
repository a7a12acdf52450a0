#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/text/NSString.h"
#include "platform/preferences/NSUserDefaults.h"
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

// A program whose user defaults the tests look at:
//   get KEY                 prints the value
//   set KEY VALUE           sets it and exits
//   set-and-run KEY VALUE   sets it, runs its loop for a second, says so and waits for its end
//   set-and-wait KEY VALUE  sets it, says so, waits for a line and exits
//   set-many PREFIX COUNT   sets PREFIX0, PREFIX1, … and synchronises after each

using namespace mac;

namespace {

NSString defaultsText(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

// Repeated for a minute, since another program that saves all the time may keep one attempt from its turn.
bool synchronizes(NSUserDefaults const& defaults) {
    NSDate const end = NSDate::dateWithTimeIntervalSinceNow_(60);
    while (!defaults.synchronize()) {
        if (end.timeIntervalSinceNow() < 0) return false;
    }
    return true;
}

int setMany(NSUserDefaults const& defaults, std::string const& prefix, int count) {
    for (int index = 0; index < count; ++index) {
        defaults.setObject_forKey_("set", defaultsText(prefix + std::to_string(index)));
        if (!synchronizes(defaults)) return 1;
    }
    return 0;
}

// Until there is a line, or no more input.
void tellAndWait(char const* text) {
    std::puts(text);
    std::fflush(stdout);
    for (int byte = std::getchar(); byte != EOF && byte != '\n';)
        byte = std::getchar();
}

void runForASecond() {
    NSRunLoop::currentRunLoop().runUntilDate_(NSDate::dateWithTimeIntervalSinceNow_(1));
    tellAndWait("a second is over");
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> const words(argv + 1, argv + argc);
    if (words.size() < 2) return 2;
    NSUserDefaults const defaults = NSUserDefaults::standardUserDefaults();
    if (words[0] == "get") {
        std::puts(defaults.stringForKey_(defaultsText(words[1])).fileSystemRepresentation().value_or("").c_str());
        return 0;
    }
    if (words.size() < 3) return 2;
    if (words[0] == "set-many") return setMany(defaults, words[1], std::atoi(words[2].c_str()));
    defaults.setObject_forKey_(defaultsText(words[2]), defaultsText(words[1]));
    if (words[0] == "set-and-run") runForASecond();
    if (words[0] == "set-and-wait") tellAndWait("it is set");
    return 0;
}
