#include "scripting/ProcessesAndFinder.h"
#include "tests/platform/desktop/PlayedWindowManager.h"
#include "tests/support/Companion.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>

namespace mac::test {
namespace {

constexpr ProcessSerialNumber Current{0, kCurrentProcess};

TEST(ProcessNumbers, HoldTheBytesOfTheSerialNumber) {
    EXPECT_EQ(KRAProcessSerialNumber_(Current).unsignedLongLongValue(), 0x0000000200000000ULL);
    EXPECT_EQ(KRAProcessSerialNumber_({1, 2}).unsignedLongLongValue(), 0x0000000200000001ULL);
    EXPECT_EQ(KRAProcessSerialNumber_({0, 0}).unsignedLongLongValue(), 0U);
    EXPECT_EQ(KRAProcessSerialNumber_({0xFFFFFFFF, 0xFFFFFFFE}).unsignedLongLongValue(), 0xFFFFFFFEFFFFFFFFULL);
}

TEST(ProcessNumbers, AreThoseOfTheProcessList) {
    RunningCompanion const copy("willing");
    ProcessSerialNumber const psn = copy.psn();
    NSDictionary const information =
        ProcessInformationCopyDictionary(&psn, kProcessDictionaryIncludeAllInformationMask);
    EXPECT_TRUE(information.objectForKey_("PSN").isEqual_(KRAProcessSerialNumber_(psn)));
}

TEST(ProcessNumbers, NameThisProcess) {
    ProcessSerialNumber self;
    ASSERT_EQ(GetCurrentProcess(&self), noErr);
    EXPECT_TRUE(KRAProcessSerialNumberGetCurrent().isEqual_(KRAProcessSerialNumber_(self)));
}

TEST(ProcessNumbers, NameNoFinderWhereNoneRuns) {
    TemporaryFolder const empty;
    EnvironmentVariable const data("XDG_DATA_HOME", empty.path());
    EnvironmentVariable const dataDirs("XDG_DATA_DIRS", empty.path());
    EnvironmentVariable const config("XDG_CONFIG_HOME", empty.path());
    EnvironmentVariable const configDirs("XDG_CONFIG_DIRS", empty.path());
    EXPECT_TRUE(KRAProcessSerialNumberGetFinder() == nil);
}

TEST(ProcessNumbers, NameTheFirstFinder) {
    TemporaryFolder const folder;
    std::ifstream const cat("/bin/cat", std::ios::binary);
    std::ostringstream bytes;
    bytes << cat.rdbuf();
    std::string const program = folder.makeFile("browser", bytes.str());
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    folder.makeFile("applications/browser.desktop",
                    "[Desktop Entry]\nName=Files\nExec=\"" + program + "\" %U\nType=Application\n");
    folder.makeFile("mimeapps.list", "[Default Applications]\ninode/directory=browser.desktop\n");
    EnvironmentVariable const data("XDG_DATA_HOME", folder.path());
    EnvironmentVariable const config("XDG_CONFIG_HOME", folder.path());
    ChildProcess const first({program});
    ChildProcess const second({program});
    ProcessSerialNumber psn;
    ASSERT_EQ(GetProcessForPID(std::min(first.pid(), second.pid()), &psn), noErr);
    EXPECT_TRUE(KRAProcessSerialNumberGetFinder().isEqual_(KRAProcessSerialNumber_(psn)));
}

TEST(ProcessNumbers, TellNothingOfTheFrontWithoutADisplay) {
    EnvironmentVariable const display("DISPLAY", "");
    EXPECT_TRUE(KRAProcessSerialNumberGetFront() == nil);
    EXPECT_FALSE(KRAProcessSerialNumberSetFront(KRAProcessSerialNumberGetCurrent()));
    EXPECT_FALSE(KRAProcessSerialNumberSetFront(KRAProcessSerialNumber_({0, kNoProcess})));
    EXPECT_FALSE(KRAProcessSerialNumberSetFront(nil));
}

class FrontProcessNumbers : public PlayedWindowManager {};

TEST_F(FrontProcessNumbers, NameTheProcessInFrontAndNoneWithoutOne) {
    EXPECT_TRUE(KRAProcessSerialNumberGetFront() == nil) << "no window is active";
    RunningCompanion copy("willing");
    activate(makeWindow(copy.process().pid()));
    EXPECT_TRUE(KRAProcessSerialNumberGetFront().isEqual_(KRAProcessSerialNumber_(copy.psn())));
}

TEST_F(FrontProcessNumbers, BringTheirProcessToTheFront) {
    RunningCompanion copy("willing");
    NSNumber const number = KRAProcessSerialNumber_(copy.psn());
    xcb_window_t const own = makeWindow(::getpid());
    list("_NET_CLIENT_LIST_STACKING", {own});
    atom("_NET_ACTIVE_WINDOW");
    manageWindows();
    EXPECT_FALSE(KRAProcessSerialNumberSetFront(number)) << "it has no window";
    EXPECT_FALSE(message());
    xcb_window_t const window = makeWindow(copy.process().pid());
    list("_NET_CLIENT_LIST_STACKING", {window, own});
    EXPECT_TRUE(KRAProcessSerialNumberSetFront(number));
    DisplayReply<xcb_client_message_event_t> const asked = message();
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->type, atom("_NET_ACTIVE_WINDOW"));
    EXPECT_EQ(asked->window, window);
}

TEST(ProcessNumbers, QuitTheirProcess) {
    RunningCompanion copy("willing");
    EXPECT_TRUE(KRAProcessSerialNumberQuit(KRAProcessSerialNumber_(copy.psn())));
    EXPECT_FALSE(copy.isRunning());
    EXPECT_EQ(copy.process().wait(), 0);
}

TEST(ProcessNumbers, QuitAProcessThatTakesItsTime) {
    RunningCompanion copy("slow");
    EXPECT_TRUE(KRAProcessSerialNumberQuit(KRAProcessSerialNumber_(copy.psn())));
    EXPECT_EQ(copy.process().wait(), 0);
}

TEST(ProcessNumbers, QuitAProcessWithoutAnEventHandlerBySignal) {
    RunningCompanion copy("deaf");
    EXPECT_TRUE(KRAProcessSerialNumberQuit(KRAProcessSerialNumber_(copy.psn())));
    EXPECT_EQ(copy.process().wait(), -SIGTERM);
}

TEST(ProcessNumbers, FailToQuitAProcessThatHasGone) {
    RunningCompanion copy("willing");
    NSNumber const number = KRAProcessSerialNumber_(copy.psn());
    copy.process().sendSignal(SIGKILL);
    copy.process().wait();
    EXPECT_FALSE(KRAProcessSerialNumberQuit(number));
}

TEST(ProcessNumbers, FailToQuitAMissingProcess) {
    EXPECT_FALSE(KRAProcessSerialNumberQuit(KRAProcessSerialNumber_({0, kNoProcess})));
    EXPECT_FALSE(KRAProcessSerialNumberQuit(NSNumber::numberWithDouble_(1.5)));
    EXPECT_FALSE(KRAProcessSerialNumberQuit(nil));
}

TEST(ProcessNumbers, AnswerMessagesByName) {
    RunningCompanion copy("willing");
    id const number = KRAProcessSerialNumber_(copy.psn());
    EXPECT_FALSE(as<NSNumber>(number.performSelector_("KRAProcessSerialNumberSetFront")).boolValue());
    EXPECT_TRUE(as<NSNumber>(number.performSelector_("KRAProcessSerialNumberQuit")).boolValue());
}

TEST(TaskTermination, AsksARunningTaskToEnd) {
    NSTask const task = NSTask::launchedTaskWithLaunchPath_arguments_("/bin/sleep", NSArray::arrayWithObject_("600"));
    EXPECT_TRUE(pxTerminate(task));
    task.waitUntilExit();
    EXPECT_EQ(task.terminationStatus(), SIGTERM);
}

TEST(TaskTermination, LeavesAFinishedTaskAlone) {
    NSTask const task = NSTask::launchedTaskWithLaunchPath_arguments_("/bin/true", nil);
    task.waitUntilExit();
    EXPECT_FALSE(pxTerminate(task));
    EXPECT_EQ(task.terminationStatus(), 0);
}

TEST(TaskTermination, LeavesATaskAloneThatWasNotLaunched) {
    EXPECT_FALSE(pxTerminate(NSTask::alloc().init()));
    EXPECT_FALSE(pxTerminate(nil));
}

} // namespace
} // namespace mac::test
