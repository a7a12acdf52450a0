#include "app/AppControllerBody.h"
#include "platform/foundation/running/Log.h"
#include "platform/processes/Processes.h"
#include "scripting/ProcessesAndFinder.h"
#include "tests/app/Complaints.h"
#include "tests/app/PathSources.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/Companion.h"
#include "tests/support/TestRun.h"
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <vector>

namespace framekeeper::test {
namespace {

using mac::test::RunningCompanion;

// The companion is the only program here of which copies are quit.
class RunningCopies : public mac::test::OwnProcesses {
protected:
    void SetUp() override {
        OwnProcesses::SetUp();
        m_controller.setValue_forKey_(m_selection, "pathsArrayController");
    }

    // Reads all sources anew and selects the records of these paths.
    void select(std::vector<NSString> const& paths) const {
        m_controller.syncIsRunningPaths();
        m_controller.reSync();
        selectKnown(paths);
    }
    void selectKnown(std::vector<NSString> const& paths) const {
        NSMutableArray const records = NSMutableArray::array();
        for (NSString const& path : paths)
            records.addObject_(recordOf(m_controller, path));
        m_selection.setContent_(m_controller.paths());
        ASSERT_TRUE(m_selection.setSelectedObjects_(records));
    }
    std::vector<std::string> runningPaths() const {
        std::vector<std::string> paths;
        for (id const& entry : m_controller.isRunningPaths().allObjects())
            paths.push_back(text(entry.valueForKey_("path")));
        std::ranges::sort(paths);
        return paths;
    }

    TemporaryFolder const m_folder{};
    // A copy of which no process runs.
    NSString const m_idle{makeCopy(m_folder, "idle")};
    AppController m_controller = makeController();
    NSArrayController m_selection = NSArrayController::alloc().init();
    Complaints m_complaints{};
};

std::string quittingLine(RunningCompanion const& copy, char const* how) {
    return "Quitting Mirror Frame (pid=" + std::to_string(copy.pid()) + ") " + how;
}

TEST_F(RunningCopies, AreNoneWhenNoneRuns) {
    m_controller.setIsRunningPaths_(NSSet::setWithObject_("an entry of before"));
    m_controller.syncIsRunningPaths();
    ASSERT_FALSE(m_controller.isRunningPaths() == nil);
    EXPECT_EQ(m_controller.isRunningPaths().count(), 0U);
    EXPECT_FALSE(m_controller.isRunningWithQuitting_(NO));
    EXPECT_FALSE(m_controller.isRunningWithQuitting_(YES));
}

TEST_F(RunningCopies, AreThoseWhoseBundleHasTheIdentifier) {
    RunningCompanion const willing("willing");
    RunningCompanion const refusing("refusing");
    RunningCompanion const other("other");
    m_controller.syncIsRunningPaths();
    std::vector<std::string> expected{text(willing.bundle()), text(refusing.bundle())};
    std::ranges::sort(expected);
    EXPECT_EQ(runningPaths(), expected) << "the third has another identifier, though the same file name";
    for (id const& entry : m_controller.isRunningPaths().allObjects()) {
        bool const isWilling = entry.valueForKey_("path").isEqual_(willing.bundle());
        NSNumber const psn = KRAProcessSerialNumber_(isWilling ? willing.psn() : refusing.psn());
        EXPECT_TRUE(entry.valueForKey_("psn").isEqual_(psn));
        EXPECT_EQ(as<NSDictionary>(entry).count(), 2U);
    }
}

TEST_F(RunningCopies, AreMarkedInTheirRecords) {
    RunningCompanion const willing("willing");
    m_controller.setIsOnHarddiskPaths_(pathSet({willing.bundle(), m_idle}));
    m_controller.syncIsRunningPaths();
    m_controller.reSync();
    EXPECT_EQ(m_controller.paths().count(), 2U);
    NSDictionary const record = recordOf(m_controller, willing.bundle());
    EXPECT_TRUE(flag(record, "isRunning"));
    EXPECT_TRUE(record.objectForKey_("psn").isEqual_(KRAProcessSerialNumber_(willing.psn())));
    EXPECT_FALSE(flag(recordOf(m_controller, m_idle), "isRunning"));
}

TEST_F(RunningCopies, OfOneBundleAreOneRecord) {
    RunningCompanion const first("willing");
    RunningCompanion const second("willing");
    m_controller.syncIsRunningPaths();
    m_controller.reSync();
    EXPECT_EQ(m_controller.isRunningPaths().count(), 2U);
    EXPECT_EQ(m_controller.paths().count(), 1U);
}

TEST_F(RunningCopies, AreOnlyReportedUnlessTheyAreToQuit) {
    RunningCompanion const willing("willing");
    EXPECT_TRUE(m_controller.isRunningWithQuitting_(NO));
    EXPECT_TRUE(willing.isRunning());
    EXPECT_TRUE(m_complaints.lines.empty());
}

TEST_F(RunningCopies, AreAllAskedToQuitAndNotWaitedFor) {
    RunningCompanion willing("willing");
    RunningCompanion const slow("lingering");
    RunningCompanion refusing("refusing");
    RunningCompanion const other("other");
    EXPECT_TRUE(m_controller.isRunningWithQuitting_(YES));
    EXPECT_TRUE(slow.isRunning());
    EXPECT_TRUE(other.isRunning());
    EXPECT_EQ(willing.process().wait(), 0);
    EXPECT_EQ(refusing.process().readLine(), "asked to quit");
    EXPECT_EQ(m_complaints.lines, (std::vector{quittingLine(willing, "succeeded"), quittingLine(slow, "succeeded"),
                                               quittingLine(refusing, "succeeded")}));
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(RunningCopies, ThatEndInTheMeantimeFailToQuit) {
    RunningCompanion const first("willing");
    RunningCompanion second("willing");
    std::string const number = text(KRAProcessSerialNumber_(second.psn()));
    LogListener const listener([&](NSString const&) {
        if (m_complaints.lines.size() == 1) {
            second.process().sendSignal(SIGKILL);
            second.process().wait();
        }
    });
    EXPECT_TRUE(m_controller.isRunningWithQuitting_(YES));
    EXPECT_EQ(m_complaints.lines,
              (std::vector{quittingLine(first, "succeeded"), "Quitting Mirror Frame (psn=" + number + ") failed"}));
    EXPECT_EQ(m_complaints.beeps, 1);
}

TEST_F(RunningCopies, ThatCrashInsteadOfAReplyFailToQuit) {
    RunningCompanion const first("crashing");
    EXPECT_TRUE(m_controller.isRunningWithQuitting_(YES));
    EXPECT_EQ(m_complaints.lines, std::vector{quittingLine(first, "failed")});
    EXPECT_EQ(m_complaints.beeps, 1);
    m_complaints.lines.clear();
    RunningCompanion const second("crashing");
    select({second.bundle()});
    m_controller.quitAction_(nil);
    EXPECT_EQ(m_complaints.lines, std::vector<std::string>{"Could not quit process."});
    EXPECT_EQ(m_complaints.beeps, 2);
}

TEST_F(RunningCopies, QuitWhenTheOneSelectedIsAskedTo) {
    RunningCompanion willing("willing");
    RunningCompanion const slow("slow");
    m_controller.setIsOnHarddiskPaths_(pathSet({willing.bundle(), slow.bundle()}));
    select({willing.bundle()});
    m_controller.quitAction_(nil);
    EXPECT_FALSE(willing.isRunning());
    EXPECT_EQ(text(m_controller.notice()), "The copy has quit.");
    EXPECT_EQ(willing.process().wait(), 0);
    EXPECT_FALSE(flag(recordOf(m_controller, willing.bundle()), "isRunning"));
    EXPECT_TRUE(flag(recordOf(m_controller, slow.bundle()), "isRunning"));
    EXPECT_TRUE(m_complaints.lines.empty());
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(RunningCopies, AreListedAndQuitThoughTheirBundleGoesWhileTheyRun) {
    RunningCompanion const model("willing");
    std::string const bundle = m_folder.path("A.app");
    std::string const renamed = m_folder.path("B.app");
    std::filesystem::copy(text(model.bundle()), bundle, std::filesystem::copy_options::recursive);
    mac::test::ChildProcess copy({bundle + "/Contents/Linux/Mirror Frame"});
    ASSERT_EQ(copy.readLine(), "ready");
    m_controller.syncIsRunningPaths();
    EXPECT_EQ(std::ranges::count(runningPaths(), bundle), 1);
    ASSERT_EQ(::rename(bundle.c_str(), renamed.c_str()), 0);
    m_controller.syncIsRunningPaths();
    EXPECT_EQ(std::ranges::count(runningPaths(), bundle), 0);
    EXPECT_EQ(std::ranges::count(runningPaths(), renamed), 1);
    std::filesystem::remove_all(renamed);
    NSString const path = NSString::stringWithFileSystemRepresentation_(renamed);
    select({path});
    EXPECT_TRUE(flag(recordOf(m_controller, path), "isRunning"));
    EXPECT_FALSE(flag(recordOf(m_controller, path), "exists"));
    m_controller.quitAction_(nil);
    EXPECT_EQ(copy.wait(), 0);
    EXPECT_EQ(runningPaths(), std::vector<std::string>{text(model.bundle())});
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(RunningCopies, MayTakeTheirTimeToQuit) {
    RunningCompanion slow("lingering");
    int pauses = 0;
    m_controller = adopt<AppController>([&](NSTimeInterval) {
                       if (++pauses < 8) return;
                       slow.process().writeLine("end");
                       slow.process().waitUntilEnded();
                   }).init();
    m_controller.setValue_forKey_(m_selection, "pathsArrayController");
    select({slow.bundle()});
    m_controller.quitAction_(nil);
    EXPECT_EQ(pauses, 8);
    EXPECT_EQ(slow.process().wait(), 0);
    EXPECT_EQ(m_controller.paths().count(), 0U);
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(RunningCopies, WithoutAnEventHandlerAreQuitBySignal) {
    RunningCompanion deaf("deaf");
    select({deaf.bundle()});
    m_controller.quitAction_(nil);
    EXPECT_EQ(deaf.process().wait(), -SIGTERM);
    EXPECT_EQ(m_controller.paths().count(), 0U);
}

TEST_F(RunningCopies, ThatRefuseToQuitAreToldOfWhileNothingElseHappens) {
    std::vector<NSTimeInterval> pauses;
    m_controller = adopt<AppController>([&](NSTimeInterval seconds) { pauses.push_back(seconds); }).init();
    m_controller.setValue_forKey_(m_selection, "pathsArrayController");
    RunningCompanion refusing("refusing");
    select({refusing.bundle()});
    NSMutableSet const records = m_controller.paths();
    bool isCalled = false;
    performOnMainRunLoop([&] { isCalled = true; });
    m_controller.quitAction_(nil);
    EXPECT_EQ(pauses, std::vector<NSTimeInterval>(20, 0.2));
    EXPECT_FALSE(isCalled);
    EXPECT_EQ(refusing.process().readLine(), "asked to quit");
    EXPECT_TRUE(refusing.isRunning());
    EXPECT_EQ(m_complaints.lines, std::vector<std::string>{"Could not quit process."});
    EXPECT_EQ(m_complaints.beeps, 1);
    EXPECT_TRUE(isSame(m_controller.paths(), records)) << "nothing is read anew";
    EXPECT_TRUE(runUntil([&] { return isCalled; }));
}

TEST_F(RunningCopies, CannotBeQuitWhereTheCopyDoesNotRun) {
    m_controller.setIsOnHarddiskPaths_(pathSet({m_idle}));
    select({m_idle});
    m_controller.quitAction_(nil);
    EXPECT_EQ(m_complaints.lines, std::vector<std::string>{"Could not quit process."});
    EXPECT_EQ(m_complaints.beeps, 1);
}

TEST_F(RunningCopies, CannotBeQuitTwice) {
    RunningCompanion willing("willing");
    select({willing.bundle()});
    willing.process().sendSignal(SIGKILL);
    willing.process().wait();
    m_controller.quitAction_(nil);
    EXPECT_EQ(m_complaints.lines, std::vector<std::string>{"Could not quit process."});
    EXPECT_EQ(m_complaints.beeps, 1);
}

TEST_F(RunningCopies, AreLeftAloneUnlessJustOneIsSelected) {
    RunningCompanion const willing("willing");
    RunningCompanion const slow("slow");
    select({});
    m_controller.quitAction_(nil);
    select({willing.bundle(), slow.bundle()});
    m_controller.quitAction_(nil);
    EXPECT_TRUE(willing.isRunning());
    EXPECT_TRUE(slow.isRunning());
    EXPECT_TRUE(m_complaints.lines.empty());
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(RunningCopies, OpenTheActivityMonitor) {
    mac::test::Desktop const desktop;
    std::string const program = desktop.folder.makeFile("bin/monitor", "#!/bin/sh\necho started >>" + desktop.log());
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    desktop.folder.makeFile(
        "data/applications/monitor.desktop",
        "[Desktop Entry]\nType=Application\nName=Monitor\nCategories=System;Monitor;\nExec=" + program + "\n");
    m_controller.openActivityMonitorAction_(nil);
    EXPECT_EQ(desktop.lines(1), std::vector<std::string>{"started"});
    EXPECT_TRUE(m_complaints.lines.empty());
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(RunningCopies, CannotBeLookedAtWithoutAnActivityMonitor) {
    mac::test::Desktop const desktop;
    m_controller.openActivityMonitorAction_(nil);
    EXPECT_EQ(m_complaints.lines, std::vector<std::string>{"Could not launch Activity Monitor."});
    EXPECT_EQ(m_complaints.beeps, 1);
}

INSTANTIATE_TEST_SUITE_P(RunningCopies, PathSources,
                         testing::Values(PathSource{"RunningCopies", "isRunningPaths", "psn",
                                                    &AppController::syncIsRunningPaths}));

TEST(RunningCopiesOfNil, AreNone) {
    AppController const controller = nil;
    controller.syncIsRunningPaths();
    controller.quitAction_(nil);
    controller.openActivityMonitorAction_(nil);
    EXPECT_TRUE(controller.isRunningPaths() == nil);
    EXPECT_FALSE(controller.isRunningWithQuitting_(YES));
}

} // namespace
} // namespace framekeeper::test
