#include "platform/foundation/running/NSTask.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/support/TemporaryFolder.h"
#include <csignal>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {
namespace {

NSTask shell(NSString const& command) {
    return NSTask::launchedTaskWithLaunchPath_arguments_("/bin/sh", NSArray::arrayWithObjects_({"-c", command}));
}

TEST(NSTask, RunsAProgramToItsEnd) {
    NSTask const task = NSTask::alloc().init();
    EXPECT_EQ(task.processIdentifier(), 0);
    EXPECT_FALSE(task.isRunning());
    task.setLaunchPath_("/bin/sh");
    task.setArguments_(NSArray::arrayWithObjects_({"-c", "exit 3"}));
    task.launch();
    EXPECT_GT(task.processIdentifier(), 0);
    task.waitUntilExit();
    EXPECT_FALSE(task.isRunning());
    EXPECT_EQ(task.terminationStatus(), 3);
    EXPECT_EQ(task.launchPath().UTF8String(), "/bin/sh");
    EXPECT_EQ(task.arguments().count(), 2U);
}

TEST(NSTask, HandsItsArgumentsOverAsTheyAre) {
    TemporaryFolder const folder;
    NSString const path = NSString::stringWithFileSystemRepresentation_(folder.path("\xE9 \"$x\" '*'\n"));
    NSTask const task =
        NSTask::launchedTaskWithLaunchPath_arguments_("/usr/bin/touch", NSArray::arrayWithObject_(path));
    task.waitUntilExit();
    EXPECT_EQ(task.terminationStatus(), 0);
    EXPECT_EQ(::access(folder.path("\xE9 \"$x\" '*'\n").c_str(), F_OK), 0);
}

TEST(NSTask, IsEndedByASignal) {
    NSTask const task = shell("read line");
    NSTask const endless =
        NSTask::launchedTaskWithLaunchPath_arguments_("/bin/sleep", NSArray::arrayWithObject_("600"));
    EXPECT_TRUE(endless.isRunning());
    EXPECT_THROW(static_cast<void>(endless.terminationStatus()), NSInvalidArgumentException);
    endless.terminate();
    endless.waitUntilExit();
    EXPECT_EQ(endless.terminationStatus(), SIGTERM);
    endless.terminate();
    task.terminate();
    task.waitUntilExit();
}

TEST(NSTask, IsLaunchedOnce) {
    NSTask const task = shell("exit 0");
    EXPECT_THROW(task.launch(), NSInvalidArgumentException);
    task.waitUntilExit();
    EXPECT_THROW(task.launch(), NSInvalidArgumentException);
}

TEST(NSTask, RaisesForWhatCannotBeLaunched) {
    TemporaryFolder const folder;
    NSTask const task = NSTask::alloc().init();
    EXPECT_THROW(task.launch(), NSInvalidArgumentException);
    EXPECT_THROW(task.terminate(), NSInvalidArgumentException);
    EXPECT_THROW(static_cast<void>(task.terminationStatus()), NSInvalidArgumentException);
    for (std::string const& path : {folder.path(), folder.path("none"), folder.makeFile("plain", "x")}) {
        task.setLaunchPath_(NSString::stringWithFileSystemRepresentation_(path));
        EXPECT_THROW(task.launch(), NSInvalidArgumentException) << path;
    }
    task.setLaunchPath_("/bin/true");
    task.setArguments_(NSArray::arrayWithObject_(NSArray::array()));
    EXPECT_THROW(task.launch(), NSInvalidArgumentException);
    EXPECT_FALSE(task.isRunning());
}

TEST(NSTask, LeavesItsChildAloneWhenItGoes) {
    TemporaryFolder const folder;
    std::string const pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    pid_t child = 0;
    {
        NSTask const task = NSTask::launchedTaskWithLaunchPath_arguments_(
            "/bin/cat", NSArray::arrayWithObject_(NSString::stringWithFileSystemRepresentation_(pipe)));
        child = task.processIdentifier();
    }
    EXPECT_EQ(::kill(child, SIGTERM), 0);
    siginfo_t information{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &information, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(information.si_status, SIGTERM);
    // The next launch clears away what is left of it.
    shell("exit 0").waitUntilExit();
    EXPECT_NE(::kill(child, 0), 0);
}

TEST(NSTask, DoesNothingForNil) {
    NSTask const task = nil;
    task.setLaunchPath_("/bin/false");
    task.setArguments_(NSArray::array());
    task.launch();
    task.terminate();
    task.waitUntilExit();
    EXPECT_TRUE(task.init() == nil);
    EXPECT_TRUE(task.launchPath() == nil);
    EXPECT_TRUE(task.arguments() == nil);
    EXPECT_FALSE(task.isRunning());
    EXPECT_EQ(task.terminationStatus(), 0);
    EXPECT_EQ(task.processIdentifier(), 0);
}

} // namespace
} // namespace mac::test
