#include "platform/foundation/running/Log.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/running/Beep.h"
#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

namespace mac::test {
namespace {

std::string standardErrorOf(NSString const& message) {
    testing::internal::CaptureStderr();
    logMessage(message);
    return testing::internal::GetCapturedStderr();
}

TEST(Log, WritesOneLineToStandardError) {
    std::string const line = standardErrorOf("ERROR: it failed");
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
    EXPECT_NE(line.find("] ERROR: it failed\n"), std::string::npos);
}

TEST(Log, KeepsAMessageWithLineBreaksInOneLine) {
    std::string const line = standardErrorOf("first\n2026-11-21 a faked line\x1B[2J");
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
    EXPECT_NE(line.find("first\\n2026-11-21 a faked line\\x1b[2J"), std::string::npos);
}

TEST(Log, WritesWhatTurnsTextAroundAsItsCode) {
    NSString const message = NSString::stringWithCodeUnits(u"a\u202Eb\u2028c\u009Bd\u00E9\U0001F600");
    EXPECT_NE(standardErrorOf(message).find("] a\\u202eb\\u2028c\\x9bd\u00E9\U0001F600\n"), std::string::npos);
}

TEST(Log, ShowsTheBytesOfANameThatIsNoText) {
    NSString const name = NSString::stringWithFileSystemRepresentation_("Mirror \xFF Frame");
    EXPECT_NE(standardErrorOf(name).find("] Mirror \\xff Frame\n"), std::string::npos);
}

TEST(Log, TreatsAMessageAsTextAndNotAsAFormat) {
    EXPECT_NE(standardErrorOf("100%s %n %@").find("100%s %n %@"), std::string::npos);
}

TEST(Log, WritesNilAsNull) { EXPECT_NE(standardErrorOf(nil).find("(null)"), std::string::npos); }

TEST(Log, FormatsItsArguments) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    NSLog("%@ (pid=%d) %s", "Quitting", 42, "succeeded");
    EXPECT_EQ(lines, std::vector<std::string>{"Quitting (pid=42) succeeded"});
}

TEST(LogListener, HearsFromItsBirthToItsDeath) {
    std::vector<std::string> lines;
    NSLog("before");
    {
        LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
        NSLog("during");
    }
    NSLog("after");
    EXPECT_EQ(lines, std::vector<std::string>{"during"});
}

TEST(LogListener, IsNotToldWhatAListenerLogs) {
    int heard = 0;
    LogListener const listener([&](NSString const&) {
        ++heard;
        NSLog("from within");
    });
    NSLog("from outside");
    EXPECT_EQ(heard, 1);
}

TEST(LogListener, HearsOtherThreads) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    std::thread([] { NSLog("from a thread"); }).join();
    EXPECT_EQ(lines, std::vector<std::string>{"from a thread"});
}

TEST(LogListener, MayRaiseWithoutStoppingTheLog) {
    LogListener const listener([](NSString const&) { throw NSRangeException("listener"); });
    std::string const lines = standardErrorOf("message");
    EXPECT_NE(lines.find("] message\n"), std::string::npos);
    EXPECT_NE(lines.find("] A listener of the log raised an exception\n"), std::string::npos);
}

TEST(LogListener, MayEndOthersAndItself) {
    int heard = 0;
    std::unique_ptr<LogListener> first;
    std::unique_ptr<LogListener> second;
    first = std::make_unique<LogListener>([&](NSString const&) {
        ++heard;
        second.reset();
        first.reset();
    });
    second = std::make_unique<LogListener>([&](NSString const&) { heard += 100; });
    NSLog("one");
    NSLog("two");
    EXPECT_EQ(heard, 1);
}

// What the listener's owner frees next is not used any more.
TEST(LogListener, IsNotRunningOnAnotherThreadOnceItIsDestroyed) {
    std::atomic<bool> isHeard{false};
    std::atomic<bool> isDone{false};
    std::atomic<bool> isOver{false};
    auto listener = std::make_unique<LogListener>([&](NSString const&) {
        isHeard = true;
        isHeard.notify_one();
        for (int turn = 0; turn < 1000; ++turn)
            std::this_thread::yield();
        isDone = true;
    });
    std::thread thread([&] {
        NSLog("from a thread");
        isOver = true;
    });
    isHeard.wait(false);
    listener.reset();
    EXPECT_TRUE(isDone);
    thread.join();
    EXPECT_TRUE(isOver);
}

TEST(Beep, SoundsAndIsHeardByListeners) {
    int sounds = 0;
    int heard = 0;
    setBeepSound([&] { ++sounds; });
    {
        BeepListener const listener([&] { ++heard; });
        NSBeep();
    }
    NSBeep();
    setBeepSound({});
    EXPECT_EQ(sounds, 2);
    EXPECT_EQ(heard, 1);
}

} // namespace
} // namespace mac::test
