#include "platform/foundation/NSThread.h"
#include "platform/foundation/NSRunLoop.h"
#include "platform/foundation/NSTimer.h"
#include "tests/support/RunUntil.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(NSThread, SleepsUntilTheDate) {
    NSDate const date = NSDate::dateWithTimeIntervalSinceNow_(0.01);
    NSThread::sleepUntilDate_(date);
    EXPECT_LE(date.timeIntervalSinceNow(), 0);
}

TEST(NSThread, DoesNotSleepForADateThatHasPassedOrForNone) {
    NSThread::sleepUntilDate_(NSDate::distantPast());
    NSThread::sleepUntilDate_(nil);
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
