#include "platform/foundation/Beep.h"
#include "platform/foundation/Log.h"
#include "tests/app/Controller.h"
#include <gtest/gtest.h>
#include <vector>

namespace framekeeper::test {
namespace {

// A controller whose local computer is one folder.
class SpotlightScan : public testing::Test {
protected:
    void SetUp() override { ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", folder.path().c_str(), 1); }
    void TearDown() override {
        controller.query().stopQuery();
        ::unsetenv("FRAMEKEEPER_LOCAL_COMPUTER");
    }

    bool gathered() const {
        return runUntil([this] { return !controller.query().isGathering(); });
    }

    TemporaryFolder folder;
    AppController controller = makeController();
};

TEST_F(SpotlightScan, FillsTheInventoryWhileItGathers) {
    NSString const first = makeCopy(folder, "Downloads");
    NSString const second = makeCopy(folder, "Applications/Old", "1.9", "99");
    controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    EXPECT_EQ(controller.paths().count(), 2U);
    EXPECT_FALSE(recordOf(controller, first) == nil);
    EXPECT_EQ(text(recordOf(controller, second).objectForKey_("versionString")), "1.9 (99)");
}

TEST_F(SpotlightScan, LeavesOutABundleWithAnotherIdentifier) {
    folder.makeBundle("Mirror Frame.app", mac::test::informationFile("com.example.other", "1", "1"));
    controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    EXPECT_EQ(controller.query().resultCount(), 1U);
    EXPECT_EQ(controller.isOnHarddiskPaths().count(), 0U);
    EXPECT_EQ(controller.paths().count(), 0U);
}

TEST_F(SpotlightScan, LeavesOutAResultThatHasGone) {
    NSString const path = makeCopy(folder, "a");
    controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    controller.query().disableUpdates();
    ::rename(folder.path("a").c_str(), folder.path("b").c_str());
    controller.syncQuery();
    EXPECT_EQ(controller.query().resultCount(), 1U);
    EXPECT_TRUE(recordOf(controller, path) == nil);
}

TEST_F(SpotlightScan, EmptiesTheTableAtOnceButKeepsTheDisksPaths) {
    makeCopy(folder, "a");
    controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    controller.scanAction_(nil);
    EXPECT_TRUE(controller.paths() == nil);
    EXPECT_EQ(controller.isOnHarddiskPaths().count(), 1U);
}

TEST_F(SpotlightScan, OfNothingLeavesTheTableEmpty) {
    controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    ASSERT_FALSE(controller.paths() == nil);
    EXPECT_EQ(controller.paths().count(), 0U);
}

TEST_F(SpotlightScan, StoppedKeepsTheRecordsAlreadyShown) {
    NSString const path = makeCopy(folder, "a");
    controller.scanAction_(nil);
    ASSERT_TRUE(runUntil([this] { return controller.paths().count() == 1; }));
    controller.stopAction_(nil);
    EXPECT_FALSE(recordOf(controller, path) == nil);
    EXPECT_TRUE(controller.query().isStopped());
}

TEST_F(SpotlightScan, IgnoresTheEndOfGatheringAndLiveUpdates) {
    NSNotification const notification =
        NSNotification::notificationWithName_object_userInfo_("n", controller.query(), nil);
    controller.queryDidFinish_(notification);
    controller.queryDidUpdate_(notification);
    EXPECT_TRUE(controller.paths() == nil);
}

TEST_F(SpotlightScan, FollowsTheStartAndTheProgressOfTheQuery) {
    NSNotification const notification =
        NSNotification::notificationWithName_object_userInfo_("n", controller.query(), nil);
    controller.queryDidStart_(notification);
    EXPECT_FALSE(controller.paths() == nil);
    controller.setPaths_(nil);
    controller.queryGatheringProgress_(notification);
    EXPECT_FALSE(controller.paths() == nil);
}

TEST_F(SpotlightScan, SyncsTheDisksPathsWithoutTheInventory) {
    controller.syncIsOnHarddisk();
    EXPECT_FALSE(controller.isOnHarddiskPaths() == nil);
    EXPECT_TRUE(controller.paths() == nil);
}

TEST_F(SpotlightScan, RefusedBeepsAndSaysSo) {
    controller.query().setPredicate_(nil);
    int beeps = 0;
    std::vector<std::string> lines;
    BeepListener const beepListener([&] { ++beeps; });
    LogListener const logListener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    controller.scanAction_(nil);
    EXPECT_EQ(beeps, 1);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0], "ERROR: Could not start Spotlight query.");
    EXPECT_TRUE(controller.paths() == nil);
}

TEST_F(SpotlightScan, ReadsTheOtherThreeSourcesAnew) {
    controller.setIsRunningPaths_(NSSet::setWithObject_(entry("/a", "psn", "1")));
    controller.setIsAutolaunchedPaths_(NSSet::setWithObject_(entry("/a", "autolaunchItem", "1")));
    controller.setIsInToolbarPaths_(NSSet::setWithObject_(entry("/a", "toolbarItem", "1")));
    controller.scanAction_(nil);
    EXPECT_EQ(controller.isRunningPaths().count(), 0U);
    EXPECT_EQ(controller.isAutolaunchedPaths().count(), 0U);
    EXPECT_EQ(controller.isInToolbarPaths().count(), 0U);
}

} // namespace
} // namespace framekeeper::test
