#include "app/Panes.h"
#include "app/CopyDetails.h"
#include "app/ScanChanges.h"
#include "platform/foundation/LocalizedValues.h"
#include "platform/preferences/NSUserDefaults.h"
#include "tests/app/OnlyOwnCopies.h"
#include "tests/app/SelectedCopies.h"
#include "tests/support/Environment.h"

// What the window shows beside the table, as values.

namespace framekeeper::test {
namespace {

std::string detailOf(AppController const& controller, char const* key) {
    return text(controller.details().values().objectForKey_(NSString::stringWithUTF8String_(key)));
}

bool detailFlag(AppController const& controller, char const* key) {
    return flag(controller.details().values(), NSString::stringWithUTF8String_(key));
}

class SelectedDetails : public SelectedCopies {
protected:
    void SetUp() override {
        SelectedCopies::SetUp();
        NSUserDefaults::standardUserDefaults().removeObjectForKey_("ShowsDetails");
        m_controller.panes().toggleDetails_(nil);
    }
    void TearDown() override { NSUserDefaults::standardUserDefaults().removeObjectForKey_("ShowsDetails"); }

    bool isCompared() const {
        return runUntil([&] { return !detailFlag(m_controller, "isComparing"); });
    }
};

TEST(Panes, RemembersWhetherTheDetailsAreShown) {
    NSUserDefaults const defaults = NSUserDefaults::standardUserDefaults();
    defaults.removeObjectForKey_("ShowsDetails");
    Panes const panes = makeController().panes();
    EXPECT_FALSE(panes.showsDetails());
    panes.toggleDetails_(nil);
    EXPECT_TRUE(panes.showsDetails());
    EXPECT_TRUE(makeController().panes().showsDetails());
    panes.toggleDetails_(nil);
    EXPECT_FALSE(makeController().panes().showsDetails());
    EXPECT_FALSE(panes.showsUnreadableFolders());
    panes.toggleUnreadableFolders_(nil);
    EXPECT_TRUE(panes.showsUnreadableFolders());
    EXPECT_FALSE(makeController().panes().showsUnreadableFolders());
    defaults.removeObjectForKey_("ShowsDetails");
}

TEST(Panes, AnswerNothingForNil) {
    EXPECT_FALSE(Panes().showsDetails());
    Panes().toggleDetails_(nil);
    Panes().toggleUnreadableFolders_(nil);
    EXPECT_TRUE(AppController().panes() == nil);
    EXPECT_TRUE(AppController().details() == nil);
    EXPECT_TRUE(AppController().scanChanges() == nil);
    EXPECT_TRUE(CopyDetails().values() == nil);
    CopyDetails().compare_(nil);
    CopyDetails().stopComparing_(nil);
    EXPECT_EQ(text(ScanChanges().text()), "");
}

TEST_F(SelectedDetails, TellWhatIsKnownOfTheOneSelectedCopy) {
    NSString const path = findCopy("a");
    std::filesystem::create_hard_link(informationFileOf(path), text(path) + "/Contents/Linked");
    findCopy("b");
    select({});
    EXPECT_FALSE(detailFlag(m_controller, "hasCopy"));
    select({path});
    EXPECT_TRUE(detailFlag(m_controller, "hasCopy"));
    EXPECT_EQ(detailOf(m_controller, "path"), text(path));
    EXPECT_EQ(detailOf(m_controller, "process"), "Not running");
    EXPECT_EQ(detailOf(m_controller, "loginItem"), "Does not start at login");
    EXPECT_EQ(detailOf(m_controller, "place"), "Not in the places");
    ASSERT_TRUE(runUntil([&] { return detailOf(m_controller, "size").find("item") != std::string::npos; }));
    // The bundle, its Contents and two names of one file.
    EXPECT_NE(detailOf(m_controller, "size").find("(4 items)"), std::string::npos) << detailOf(m_controller, "size");
    EXPECT_NE(detailOf(m_controller, "modified"), "–");
    EXPECT_TRUE(detailFlag(m_controller, "hasVolume"));
    EXPECT_FALSE(detailFlag(m_controller, "hasProcess"));
    select({path, pathString(m_desktop.folder.path("b/Mirror Frame.app"))});
    EXPECT_FALSE(detailFlag(m_controller, "hasCopy"));
}

TEST_F(SelectedDetails, TellNothingWhileTheyAreNotShown) {
    NSString const path = findCopy("a");
    m_controller.panes().toggleDetails_(nil);
    select({path});
    EXPECT_FALSE(detailFlag(m_controller, "hasCopy"));
    m_controller.panes().toggleDetails_(nil);
    EXPECT_TRUE(detailFlag(m_controller, "hasCopy"));
}

TEST_F(SelectedDetails, FindTheCopiesThatAreTheSameByteForByte) {
    NSString const path = findCopy("a");
    NSString const same = findCopy("b");
    NSString const other = findCopy("c", "mirrorframe2");
    select({path});
    EXPECT_EQ(detailOf(m_controller, "equalCopies"), "Not compared yet");
    m_controller.details().compare_(nil);
    ASSERT_TRUE(isCompared());
    EXPECT_EQ(detailOf(m_controller, "equalCopies"), text(same));
    select({other});
    m_controller.details().compare_(nil);
    ASSERT_TRUE(isCompared());
    EXPECT_EQ(detailOf(m_controller, "equalCopies"), "No other copy is the same");
}

TEST_F(SelectedDetails, StopComparing) {
    NSString const path = findCopy("a");
    findCopy("b");
    select({path});
    m_controller.details().compare_(nil);
    EXPECT_TRUE(detailFlag(m_controller, "isComparing"));
    EXPECT_FALSE(detailFlag(m_controller, "canCompare"));
    m_controller.details().stopComparing_(nil);
    EXPECT_EQ(detailOf(m_controller, "equalCopies"), "Stopped after 0 of 1");
    EXPECT_TRUE(detailFlag(m_controller, "canCompare"));
}

TEST_F(SelectedDetails, ShowTheVolumeInTheFileBrowserAndBeepWithoutAThingToShow) {
    NSString const path = findCopy("a");
    select({path});
    ASSERT_TRUE(runUntil([&] { return detailFlag(m_controller, "hasVolume"); }));
    m_controller.details().revealProcess_(nil);
    m_controller.details().revealLoginItem_(nil);
    m_controller.details().revealPlace_(nil);
    EXPECT_EQ(m_beeps, 3);
}

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
