#include "app/InventorySync.h"
#include "app/AppControllerBody.h"
#include "platform/foundation/running/NSTimer.h"
#include "tests/app/Controller.h"
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

// More results than are taken in at once.
constexpr std::size_t ManyCopies = 7;

class InventorySyncInSteps : public OnlyOwnCopies {
protected:
    void SetUp() override {
        OnlyOwnCopies::SetUp();
        ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", m_folder.path().c_str(), 1);
        for (std::size_t index = 1; index <= ManyCopies; ++index)
            m_last = makeCopy(m_folder, std::to_string(index));
        m_controller.scanAction_(nil);
        ASSERT_TRUE(gathered());
        ASSERT_TRUE(runUntil([this] { return m_controller.paths().count() == ManyCopies; }));
        m_controller.setPaths_(NSMutableSet::set());
    }

    void TearDown() override {
        m_controller.query().stopQuery();
        ::unsetenv("FRAMEKEEPER_LOCAL_COMPUTER");
    }

    bool gathered() const {
        return runUntil([this] { return !m_controller.query().isGathering(); });
    }
    void tellProgress() const {
        m_controller.queryGatheringProgress_(
            NSNotification::notificationWithName_object_userInfo_("n", m_controller.query(), nil));
    }
    bool runUntilListed(NSUInteger count) const {
        return runUntil([this, count] { return m_controller.paths().count() == count; });
    }

    TemporaryFolder m_folder;
    // Takes in three results in a step.
    AppController m_controller = adopt<AppController>(sleepForInterval, SyncStep{.paths = 3}).init();
    NSString m_last;
};

TEST_F(InventorySyncInSteps, AreTakenInWhileTheUserIsAnswered) {
    tellProgress();
    EXPECT_EQ(m_controller.paths().count(), 0U);
    m_controller.stopAction_(nil);
    EXPECT_TRUE(m_controller.query().isStopped());
    ASSERT_TRUE(runUntilListed(ManyCopies));
    EXPECT_EQ(text(recordOf(m_controller, m_last).objectForKey_("versionString")), "2.1 (210)");
}

TEST_F(InventorySyncInSteps, AreTakenInAnewWhenAnActionChangedTheDisk) {
    tellProgress();
    ASSERT_TRUE(runUntil([this] { return m_controller.isOnHarddiskPaths().count() == ManyCopies; }));
    m_controller.query().disableUpdates();
    ::rename(m_folder.path(std::to_string(ManyCopies)).c_str(), m_folder.path("gone").c_str());
    m_controller.reSync();
    ASSERT_TRUE(runUntilListed(ManyCopies - 1));
    EXPECT_TRUE(recordOf(m_controller, m_last) == nil);
}

TEST_F(InventorySyncInSteps, TakenInAnewKeepWhatAnActionPutOnTheDisk) {
    m_controller.query().disableUpdates();
    tellProgress();
    std::string const moved = m_folder.path("moved");
    ASSERT_EQ(::rename(m_folder.path(std::to_string(ManyCopies)).c_str(), moved.c_str()), 0);
    NSString const movedPath = pathString(moved + "/Mirror Frame.app/");
    m_controller.isOnHarddiskPaths().removeObject_(m_last);
    m_controller.isOnHarddiskPaths().addObject_(movedPath);
    m_controller.reSync();
    NSMutableSet const before = m_controller.isOnHarddiskPaths();
    ASSERT_TRUE(runUntil([&] { return !isSame(m_controller.isOnHarddiskPaths(), before); }));
    EXPECT_TRUE(m_controller.isOnHarddiskPaths().containsObject_(movedPath));
    EXPECT_FALSE(m_controller.isOnHarddiskPaths().containsObject_(m_last));
    NSMutableSet const listed = m_controller.paths();
    ASSERT_TRUE(runUntil([&] { return !isSame(m_controller.paths(), listed); }));
    EXPECT_EQ(m_controller.paths().count(), ManyCopies);
    EXPECT_FALSE(recordOf(m_controller, movedPath) == nil);
}

TEST_F(InventorySyncInSteps, HoldKeptPathsOnceAndOnlyThoseOfCopies) {
    NSArray const results = m_controller.query().results();
    NSArray const kept = NSArray::arrayWithObjects_(
        {m_last, m_last.stringByAppendingString_("/"), pathString(m_folder.path("none")), pathString(m_folder.path())});
    InventorySync(results, kept).setDiskPaths(m_controller);
    EXPECT_EQ(m_controller.isOnHarddiskPaths().count(), ManyCopies);
    InventorySync(nil, kept).setDiskPaths(m_controller);
    EXPECT_EQ(m_controller.isOnHarddiskPaths().count(), 1U);
}

TEST_F(InventorySyncInSteps, AreForgottenWhenAnotherScanBegins) {
    tellProgress();
    m_controller.scanAction_(nil);
    m_controller.stopAction_(nil);
    NSTimer const later = NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(
        0, m_controller, "stopAction:", nil, NO);
    ASSERT_TRUE(runUntil([&] { return !later.isValid(); }));
    EXPECT_TRUE(m_controller.paths() == nil);
}

TEST_F(InventorySyncInSteps, ToldTwiceAreTakenInTwice) {
    tellProgress();
    tellProgress();
    ASSERT_TRUE(runUntilListed(ManyCopies));
    NSMutableSet const first = m_controller.paths();
    ASSERT_TRUE(runUntil([&] { return !isSame(m_controller.paths(), first); }));
    EXPECT_EQ(m_controller.paths().count(), ManyCopies);
}

TEST_F(InventorySyncInSteps, AreAtOnceTheInventoryWhenThatIsAskedFor) {
    tellProgress();
    m_controller.syncQuery();
    EXPECT_EQ(m_controller.paths().count(), ManyCopies);
}

TEST_F(InventorySyncInSteps, ChangesNothingBeforeAllResultsWereLookedAt) {
    NSMutableSet const before = m_controller.isOnHarddiskPaths();
    InventorySync sync(m_controller.query().results());
    EXPECT_TRUE(sync.advance(m_controller, {.paths = ManyCopies - 1}));
    EXPECT_TRUE(isSame(m_controller.isOnHarddiskPaths(), before));
    EXPECT_TRUE(sync.advance(m_controller, {.paths = 2}));
    EXPECT_FALSE(isSame(m_controller.isOnHarddiskPaths(), before));
    EXPECT_EQ(m_controller.paths().count(), 0U);
    EXPECT_FALSE(sync.advance(m_controller, {.paths = ManyCopies}));
    EXPECT_EQ(m_controller.paths().count(), ManyCopies);
}

} // namespace
} // namespace framekeeper::test
