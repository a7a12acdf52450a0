#include "platform/foundation/running/NSTimer.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/Log.h"
#include "tests/support/RunUntil.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

class Clock : public Handle<Clock, NSObject> {
public:
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "TimerClock",
                .superclass = classOf<NSObject>(),
                .methods = {method<&Clock::tick_>("tick:"), method<&Clock::raise_>("raise:")}};
    }
    void tick_(NSTimer const& timer) const;
    void raise_(NSTimer const&) const { throw NSRangeException("late"); }
    int ticks() const;
};

class Clock::Body : public ObjectBody {
public:
    int ticks{0};
    bool wasValid{false};
};

void Clock::tick_(NSTimer const& timer) const {
    ++bodyOf(*this)->ticks;
    bodyOf(*this)->wasValid = timer.isValid();
}

int Clock::ticks() const { return bodyOf(*this)->ticks; }

NSTimer timerOf(id const& target, BOOL repeats, SEL selector = "tick:") {
    return NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(0.001, target, selector, "info",
                                                                                     repeats);
}

TEST(Timer, FiresOnceAndIsInvalidThen) {
    Clock const clock = adopt<Clock>();
    NSTimer const timer = timerOf(clock, NO);
    EXPECT_TRUE(timer.isValid());
    ASSERT_TRUE(runUntil([&] { return !timer.isValid(); }));
    EXPECT_EQ(clock.ticks(), 1);
    EXPECT_TRUE(bodyOf(clock)->wasValid);
    timer.fire();
    EXPECT_EQ(clock.ticks(), 1);
}

TEST(Timer, FiresAgainAndAgainUntilItIsInvalidated) {
    Clock const clock = adopt<Clock>();
    NSTimer const timer = timerOf(clock, YES);
    ASSERT_TRUE(runUntil([&] { return clock.ticks() >= 3; }));
    timer.invalidate();
    int const ticks = clock.ticks();
    NSRunLoop::currentRunLoop().runUntilDate_(NSDate::dateWithTimeIntervalSinceNow_(0.02));
    EXPECT_EQ(clock.ticks(), ticks);
}

TEST(Timer, KeepsItsTargetUntilItIsInvalid) {
    Clock clock = adopt<Clock>();
    Weak<Clock> const weak(clock);
    NSTimer const timer = timerOf(clock, YES);
    clock = nil;
    EXPECT_FALSE(weak.load() == nil);
    timer.invalidate();
    EXPECT_TRUE(weak.load() == nil);
}

TEST(Timer, IsKeptByTheRunLoopWhileItIsValid) {
    Clock const clock = adopt<Clock>();
    timerOf(clock, NO);
    EXPECT_TRUE(runUntil([&] { return clock.ticks() == 1; }));
}

TEST(Timer, FireSendsItsMessage) {
    Clock const clock = adopt<Clock>();
    NSTimer const timer = timerOf(clock, YES);
    timer.fire();
    EXPECT_EQ(clock.ticks(), 1);
    EXPECT_TRUE(timer.isValid());
    timer.invalidate();
}

TEST(Timer, IsInvalidAfterAMessageThatRaises) {
    NSTimer const timer = timerOf(adopt<Clock>(), NO, "raise:");
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    EXPECT_TRUE(runUntil([&] { return !timer.isValid(); }));
    EXPECT_EQ(lines.size(), 1U);
}

TEST(Timer, TellsItsIntervalAndItsInformation) {
    NSTimer const timer = NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(
        -1, adopt<Clock>(), "tick:", "info", NO);
    EXPECT_EQ(timer.timeInterval(), 0.0001);
    EXPECT_TRUE(timer.userInfo().isEqual_("info"));
    timer.invalidate();
}

TEST(Timer, NeedsASelector) { EXPECT_THROW(timerOf(adopt<Clock>(), NO, SEL()), NSInvalidArgumentException); }

TEST(Timer, OfNilAnswersNothing) {
    NSTimer const timer;
    timer.invalidate();
    timer.fire();
    EXPECT_FALSE(timer.isValid());
    EXPECT_TRUE(timer.userInfo() == nil);
    EXPECT_EQ(timer.timeInterval(), 0);
}

} // namespace
} // namespace mac::test
