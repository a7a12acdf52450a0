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
    // The system makes a thread wait for reasons of its own, too: for a page from the disk, for one.
    bool isWithoutWait = false;
    for (int round = 0; round < 10 && !isWithoutWait; ++round) {
        long const before = waitsOfThisThread();
        for (NSDate const& date : {NSDate::distantPast(), justPassed, NSDate(nil)})
            NSThread::sleepUntilDate_(date);
        isWithoutWait = waitsOfThisThread() == before;
    }
    EXPECT_TRUE(isWithoutWait);
    // A thread that comes to its turn late finds that a short sleep is over.
    long const before = waitsOfThisThread();
    for (double seconds = 0.001; waitsOfThisThread() == before && seconds <= 10; seconds *= 10)
        NSThread::sleepUntilDate_(NSDate::dateWithTimeIntervalSinceNow_(seconds));
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
