#include "scripting/ProcessQuitting.h"
#include "platform/foundation/dates/NSDate.h"
#include "scripting/ProcessesAndFinder.h"
#include "tests/support/Companion.h"
#include <csignal>
#include <gtest/gtest.h>
#include <vector>

namespace mac::test {
namespace {

TEST(ProcessQuitting, EndsWhenAProcessGoesBetweenTwoLooks) {
    RunningCompanion copy("refusing");
    int pauses = 0;
    EXPECT_TRUE(quitProcess(KRAProcessSerialNumber_(copy.psn()), [&](NSTimeInterval) {
        if (++pauses < 3) return;
        copy.process().sendSignal(SIGKILL);
        copy.process().wait();
    }));
    EXPECT_EQ(pauses, 3);
}

TEST(ProcessQuitting, LooksTwentyTimesForAProcessThatRefuses) {
    RunningCompanion copy("refusing");
    std::vector<NSTimeInterval> pauses;
    EXPECT_FALSE(
        quitProcess(KRAProcessSerialNumber_(copy.psn()), [&](NSTimeInterval seconds) { pauses.push_back(seconds); }));
    EXPECT_EQ(pauses, std::vector<NSTimeInterval>(20, 0.2));
    EXPECT_TRUE(copy.isRunning());
    EXPECT_EQ(copy.process().readLine(), "asked to quit");
}

TEST(ProcessQuitting, SleepsForThePauseAsked) {
    NSDate const start = NSDate::date();
    sleepForInterval(0.01);
    EXPECT_LE(start.timeIntervalSinceNow(), -0.01);
}

} // namespace
} // namespace mac::test
