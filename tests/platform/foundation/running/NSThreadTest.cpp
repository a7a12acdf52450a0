#include "platform/foundation/running/NSThread.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/running/NSTimer.h"
#include "tests/support/RunUntil.h"
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace mac::test {
namespace {

TEST(NSThread, SleepsUntilTheDate) {
    NSDate const date = NSDate::dateWithTimeIntervalSinceNow_(0.01);
    NSThread::sleepUntilDate_(date);
    EXPECT_LE(date.timeIntervalSinceNow(), 0);
}

// How often this thread has given up the processor because it waited for something.
long waitsOfThisThread() {
    rusage usage{};
    EXPECT_EQ(::getrusage(RUSAGE_THREAD, &usage), 0);
    return usage.ru_nvcsw;
}

TEST(NSThread, DoesNotSleepForADateThatHasPassedOrForNone) {
    NSDate const justPassed = NSDate::dateWithTimeIntervalSinceNow_(-0.001);
    // Once without counting: what is used for the first time may be read from the disk.
    for (NSDate const& date : {NSDate::distantPast(), justPassed, NSDate(nil)})
        NSThread::sleepUntilDate_(date);
    long const before = waitsOfThisThread();
    for (NSDate const& date : {NSDate::distantPast(), justPassed, NSDate(nil)})
        NSThread::sleepUntilDate_(date);
    EXPECT_EQ(waitsOfThisThread(), before);
    NSThread::sleepUntilDate_(NSDate::dateWithTimeIntervalSinceNow_(0.001));
    EXPECT_GT(waitsOfThisThread(), before) << "a sleep is a wait";
}

TEST(NSThread, HandlesNothingWhileItSleeps) {
    bool isCalled = false;
    performOnMainRunLoop([&] { isCalled = true; });
    NSThread::sleepUntilDate_(NSDate::dateWithTimeIntervalSinceNow_(0.01));
    EXPECT_FALSE(isCalled);
    EXPECT_TRUE(runUntil([&] { return isCalled; }));
}

} // namespace
} // namespace mac::test
