#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "tests/support/RunUntil.h"
#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace mac::test {
namespace {

TEST(IdleRunLoop, CallsFunctionsInTheirOrderOnce) {
    std::string order;
    performWhenMainRunLoopIsIdle([&] { order += "1"; });
    performWhenMainRunLoopIsIdle([&] { order += "2"; });
    EXPECT_EQ(order, "");
    EXPECT_TRUE(runUntil([&] { return order == "12"; }));
}

TEST(IdleRunLoop, DoesWhatIsDueFirst) {
    NSRunLoop::currentRunLoop();
    std::string order;
    performWhenMainRunLoopIsIdle([&] { order += "idle"; });
    QTimer::singleShot(0, [&] { order += "timer "; });
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    QSocketNotifier input(pipe[0], QSocketNotifier::Read);
    int inputs = 0;
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        order += "input ";
        if (++inputs == 3) input.setEnabled(false);
    });
    ASSERT_EQ(::write(pipe[1], "x", 1), 1);
    EXPECT_TRUE(runUntil([&] { return order.ends_with("idle"); }));
    EXPECT_NE(order.find("timer "), std::string::npos) << order;
    EXPECT_NE(order.find("input input input "), std::string::npos) << order;
    ::close(pipe[0]);
    ::close(pipe[1]);
}

TEST(IdleRunLoop, MayBeRunByAFunctionThatItCalls) {
    bool isInnerDone = false;
    bool isOuterDone = false;
    performWhenMainRunLoopIsIdle([&] {
        performWhenMainRunLoopIsIdle([&] { isInnerDone = true; });
        isOuterDone = runUntil([&] { return isInnerDone; });
    });
    EXPECT_TRUE(runUntil([&] { return isOuterDone; }));
}

TEST(IdleRunLoop, CallsInItsNextLifeWhatTheLastOneLeft) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto const program = [] {
        int calls = 0;
        int argumentCount = 1;
        char name[] = "test";
        char* arguments[] = {name, nullptr};
        performWhenMainRunLoopIsIdle([&] { ++calls; });
        {
            QCoreApplication const application(argumentCount, arguments);
            // Begins to watch, and ends before the loop was idle.
            application.processEvents();
            performWhenMainRunLoopIsIdle([&] { ++calls; });
        }
        QCoreApplication const application(argumentCount, arguments);
        performWhenMainRunLoopIsIdle([&] { ++calls; });
        std::_Exit(runUntil([&] { return calls == 3; }) ? 0 : 1);
    };
    EXPECT_EXIT(program(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace mac::test
