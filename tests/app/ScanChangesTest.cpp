#include "app/ScanChanges.h"
#include "tests/app/Controller.h"
#include "tests/app/OnlyOwnCopies.h"
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

TEST_F(ChangesSinceTheScan, AreNotWhatTheWindowItselfDeletes) {
    std::filesystem::rename(m_folder.path("a/Mirror Frame.app"), m_folder.path("kept"));
    ASSERT_TRUE(says("1 gone since the scan."));
    m_controller.isOnHarddiskPaths().removeObject_(pathString(m_folder.path("a/Mirror Frame.app")));
    m_controller.reSync();
    EXPECT_EQ(text(m_controller.scanChanges().text()), "");
}

} // namespace
} // namespace framekeeper::test
