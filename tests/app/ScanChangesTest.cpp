#include "app/ScanChanges.h"
#include "app/InventorySync.h"
#include "tests/app/Controller.h"
#include "tests/support/Companion.h"
#include "tests/support/Environment.h"
#include <filesystem>
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

// A window's worth of live updates on a disk of its own.
class ChangesSinceTheScan : public OnlyOwnCopies {
protected:
    void SetUp() override {
        OnlyOwnCopies::SetUp();
        makeCopy(m_folder, "a");
        makeCopy(m_folder, "b");
        static_cast<void>(m_controller.scanChanges());
        m_controller.scanAction_(nil);
        ASSERT_TRUE(runUntil([&] { return !m_controller.query().isGathering(); }));
    }
    void TearDown() override { m_controller.query().stopQuery(); }

    bool says(std::string const& line) const {
        bool const isSaid = runUntil([&] { return text(m_controller.scanChanges().text()) == line; });
        EXPECT_TRUE(isSaid) << text(m_controller.scanChanges().text());
        return isSaid;
    }

    TemporaryFolder m_folder;
    mac::test::EnvironmentVariable m_narrowed{"FRAMEKEEPER_LOCAL_COMPUTER", m_folder.path()};
    AppController m_controller = makeController();
};

TEST_F(ChangesSinceTheScan, AreCountedAndTakenBackByTheNextScan) {
    EXPECT_FALSE(m_controller.scanChanges().isAny());
    std::filesystem::create_directory(m_folder.path("a/old"));
    std::filesystem::rename(m_folder.path("a/Mirror Frame.app"), m_folder.path("kept"));
    ASSERT_TRUE(says("1 gone since the scan."));
    std::filesystem::rename(m_folder.path("kept"), m_folder.path("a/Mirror Frame.app"));
    ASSERT_TRUE(says(""));
    std::filesystem::rename(m_folder.path("b/Mirror Frame.app"), m_folder.path("kept"));
    ASSERT_TRUE(says("1 gone since the scan."));
    // The inventory stays as the scan found it.
    EXPECT_EQ(m_controller.isOnHarddiskPaths().count(), 2U);
    m_controller.scanAction_(nil);
    EXPECT_TRUE(says(""));
}

TEST_F(ChangesSinceTheScan, CountNewCopies) {
    m_folder.makeBundle("c/Mirror Frame.app", mac::test::informationFile("com.tidelark.other", "2.1", "210"));
    m_controller.scanAction_(nil);
    ASSERT_TRUE(runUntil([&] { return !m_controller.query().isGathering(); }));
    std::filesystem::rename(m_folder.path("c/Mirror Frame.app"), m_folder.path("other"));
    std::filesystem::rename(m_folder.path("a/Mirror Frame.app"), m_folder.path("kept"));
    ASSERT_TRUE(says("1 gone since the scan."));
    std::filesystem::rename(m_folder.path("kept"), m_folder.path("c/Mirror Frame.app"));
    ASSERT_TRUE(says("1 new, 1 gone since the scan."));
    std::filesystem::rename(m_folder.path("c/Mirror Frame.app"), m_folder.path("a/Mirror Frame.app"));
    ASSERT_TRUE(says(""));
}

TEST_F(ChangesSinceTheScan, AreCountedInTurnsIfTheyAreVeryMany) {
    NSMutableSet const known = NSMutableSet::setWithSet_(m_controller.isOnHarddiskPaths());
    for (int index = 0; index < 600; ++index)
        known.addObject_(pathString(m_folder.path("gone/" + std::to_string(index))));
    m_controller.setIsOnHarddiskPaths_(known);
    m_controller.scanChanges().resultsChanged_(nil);
    EXPECT_EQ(text(m_controller.scanChanges().text()), "");
    EXPECT_TRUE(says("600 gone since the scan."));
}

TEST_F(ChangesSinceTheScan, AreNotToldWhileTheInventoryIsTakenIn) {
    std::filesystem::rename(m_folder.path("a/Mirror Frame.app"), m_folder.path("kept"));
    ASSERT_TRUE(says("1 gone since the scan."));
    std::filesystem::rename(m_folder.path("kept"), m_folder.path("a/Mirror Frame.app"));
    ASSERT_TRUE(says(""));
    std::shared_ptr<InventorySync>& sync = bodyOf(m_controller)->_sync;
    sync = std::make_shared<InventorySync>(m_controller.query().results());
    m_controller.isOnHarddiskPaths().removeObject_(pathString(m_folder.path("a/Mirror Frame.app")));
    m_controller.scanChanges().resultsChanged_(nil);
    EXPECT_EQ(text(m_controller.scanChanges().text()), "");
    sync.reset();
    m_controller.setPaths_(m_controller.paths());
    EXPECT_EQ(text(m_controller.scanChanges().text()), "1 new since the scan.");
}

TEST_F(ChangesSinceTheScan, AreNotWhatTheWindowItselfDeletes) {
    std::filesystem::rename(m_folder.path("a/Mirror Frame.app"), m_folder.path("kept"));
    ASSERT_TRUE(says("1 gone since the scan."));
    m_controller.isOnHarddiskPaths().removeObject_(pathString(m_folder.path("a/Mirror Frame.app")));
    m_controller.reSync();
    EXPECT_EQ(text(m_controller.scanChanges().text()), "");
}

} // namespace
} // namespace framekeeper::test
