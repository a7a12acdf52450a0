#include "scripting/ProcessQuitting.h"
#include "platform/events/AppleEvents.h"
#include "platform/foundation/running/NSThread.h"
#include "platform/processes/Processes.h"
#include <bit>

namespace mac {

namespace {

bool hasGone(ProcessSerialNumber const& psn) {
    return ProcessInformationCopyDictionary(&psn, kProcessDictionaryIncludeAllInformationMask) == nil;
}

} // namespace

void sleepForInterval(NSTimeInterval seconds) {
    NSThread::sleepUntilDate_(NSDate::dateWithTimeIntervalSinceNow_(seconds));
}

bool quitProcess(NSNumber const& number, Pause const& pause) {
    constexpr int mostLooks = 20;
    constexpr NSTimeInterval betweenLooks = 0.2;
    if (number == nil) return false;
    auto const psn = std::bit_cast<ProcessSerialNumber>(static_cast<std::uint64_t>(number.longLongValue()));
    if (sendEvent(psn, kCoreEventClass, kAEQuitApplication) != noErr) return false;
    for (int look = 0; look < mostLooks; ++look) {
        pause(betweenLooks);
        if (hasGone(psn)) return true;
    }
    return false;
}

} // namespace mac
