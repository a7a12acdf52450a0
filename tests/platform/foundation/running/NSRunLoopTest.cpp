#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/Log.h"
#include "tests/support/RunUntil.h"
#include <QCoreApplication>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace mac::test {
namespace {

TEST(RunLoop, CallsFunctionsInTheirOrderWhenItGetsThere) {
    std::string order;
    performOnMainRunLoop([&] { order += "1"; });
    performOnMainRunLoop([&] { order += "2"; });
    EXPECT_EQ(order, "");
    EXPECT_TRUE(runUntil([&] { return order == "12"; }));
}

TEST(RunLoop, CallsWhatOtherThreadsWantOnTheMainThread) {
    std::thread::id const mainThread = std::this_thread::get_id();
    std::vector<std::thread::id> ran;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int index = 0; index < 4; ++index)
        threads.emplace_back([&] {
            for (int call = 0; call < 100; ++call)
                performOnMainRunLoop([&] { ran.push_back(std::this_thread::get_id()); });
        });
    EXPECT_TRUE(runUntil([&] { return ran.size() == 400; }));
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(std::count(ran.begin(), ran.end(), mainThread), 400);
}

TEST(RunLoop, ContinuesWhenAFunctionRaises) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    bool isReached = false;
    performOnMainRunLoop([] { throw NSRangeException("beyond"); });
    performOnMainRunLoop([&] { isReached = true; });
    EXPECT_TRUE(runUntil([&] { return isReached; }));
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("NSRangeException: beyond"), std::string::npos);
}

TEST(RunLoop, MayBeRunByAFunctionThatItCalls) {
    bool isInnerDone = false;
    bool isOuterDone = false;
    performOnMainRunLoop([&] {
        performOnMainRunLoop([&] { isInnerDone = true; });
        isOuterDone = runUntil([&] { return isInnerDone; });
    });
    EXPECT_TRUE(runUntil([&] { return isOuterDone; }));
}

// A program's loop may end before it comes to a function; so does the one of a window in a test.
TEST(RunLoop, CallsInItsNextLifeWhatTheLastOneLeft) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto const program = [] {
        int calls = 0;
        int argumentCount = 1;
        char name[] = "test";
        char* arguments[] = {name, nullptr};
        std::thread([&] { performOnMainRunLoop([&] { ++calls; }); }).join();
        {
            QCoreApplication const application(argumentCount, arguments);
            performOnMainRunLoop([&] { ++calls; });
        }
        performOnMainRunLoop([&] { ++calls; });
        QCoreApplication const application(argumentCount, arguments);
        performOnMainRunLoop([&] { ++calls; });
        std::_Exit(runUntil([&] { return calls == 4; }) ? 0 : 1);
    };
    EXPECT_EXIT(program(), testing::ExitedWithCode(0), "");
}

TEST(RunLoop, SaysWhetherAnythingArrivedBeforeTheDate) {
    while (NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode, NSDate::distantPast())) {}
    EXPECT_FALSE(NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode,
                                                                 NSDate::dateWithTimeIntervalSinceNow_(0.01)));
    performOnMainRunLoop([] {});
    EXPECT_TRUE(NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode,
                                                                NSDate::dateWithTimeIntervalSinceNow_(60)));
}

TEST(RunLoop, RunsUntilTheDate) {
    NSDate const end = NSDate::dateWithTimeIntervalSinceNow_(0.02);
    NSRunLoop::currentRunLoop().runUntilDate_(end);
    EXPECT_LE(end.timeIntervalSinceNow(), 0);
}

TEST(RunLoop, OfNilDoesNothing) {
    NSRunLoop(nil).runUntilDate_(NSDate::distantFuture());
    EXPECT_FALSE(NSRunLoop(nil).runMode_beforeDate_(NSDefaultRunLoopMode, NSDate::distantFuture()));
}

// Keeps what it was sent.
class Addressee : public Handle<Addressee, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        std::vector<std::string> got{};
    };
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "Addressee",
                .superclass = classOf<NSObject>(),
                .methods = {method<&Addressee::take_>("take:"), method<&Addressee::refuse_>("refuse:")}};
    }
    void take_(NSString const& letter) const { bodyOf(*this)->got.push_back(letter.UTF8String()); }
    void refuse_(id const&) const { throw NSRangeException("refused"); }
};

TEST(RunLoop, SendsAMessageOnceItsDelayIsOver) {
    Addressee const addressee = adopt<Addressee>();
    std::vector<std::string> const& got = bodyOf(addressee)->got;
    NSDate const sent = NSDate::date();
    performSelector_withObject_afterDelay_(addressee, "take:", "late", 0.05);
    performSelector_withObject_afterDelay_(addressee, "take:", "soon", 0);
    performSelector_withObject_afterDelay_(addressee, "take:", "at once", -1);
    EXPECT_TRUE(got.empty());
    EXPECT_TRUE(runUntil([&] { return got.size() == 3; }));
    EXPECT_EQ(got, (std::vector<std::string>{"soon", "at once", "late"}));
    EXPECT_LE(sent.timeIntervalSinceNow(), -0.05);
}

TEST(RunLoop, KeepsReceiverAndObjectOfALateMessage) {
    WeakReference gone;
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    {
        Addressee const addressee = adopt<Addressee>();
        gone = addressee;
        performSelector_withObject_afterDelay_(addressee, "refuse:", nil, 0);
    }
    EXPECT_FALSE(gone.load() == nil);
    EXPECT_TRUE(runUntil([&] { return gone.load() == nil; }));
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("NSRangeException: refused"), std::string::npos);
}

TEST(RunLoop, SendsNoLateMessageToNil) {
    performSelector_withObject_afterDelay_(nil, "take:", nil, 0);
    EXPECT_THROW(performSelector_withObject_afterDelay_(adopt<Addressee>(), SEL(), nil, 0), NSInvalidArgumentException);
}

} // namespace
} // namespace mac::test
