#include "app/CopyDetails.h"
#include "app/Panes.h"
#include "platform/preferences/NSUserDefaults.h"
#include "tests/app/SelectedCopies.h"

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

TEST_F(SelectedDetails, AreNotTheSameAsThemselvesUnderAnotherPath) {
    NSString const path = findCopy("a");
    std::filesystem::create_directory_symlink(m_desktop.folder.path("a"), m_desktop.folder.path("linked"));
    m_controller.isOnHarddiskPaths().addObject_(pathString(m_desktop.folder.path("linked/Mirror Frame.app")));
    select({path});
    m_controller.details().compare_(nil);
    ASSERT_TRUE(isCompared());
    EXPECT_EQ(detailOf(m_controller, "equalCopies"), "No other copy is the same");
}

TEST_F(SelectedDetails, SayWhichCopiesCouldNotBeRead) {
    NSString const path = findCopy("a");
    NSString const gone = findCopy("b");
    select({path});
    std::filesystem::remove_all(text(gone));
    m_controller.details().compare_(nil);
    ASSERT_TRUE(isCompared());
    EXPECT_EQ(detailOf(m_controller, "equalCopies"), "1 copy could not be read");
}

TEST_F(SelectedDetails, ForgetTheComparisonOnceAnIconIsSwappedOrSwappedBack) {
    NSString const path = findCopy("a");
    NSString const same = findCopy("b");
    select({path});
    m_controller.details().compare_(nil);
    ASSERT_TRUE(isCompared());
    ASSERT_EQ(detailOf(m_controller, "equalCopies"), text(same));
    m_controller.swapIconAction_(nil);
    EXPECT_EQ(detailOf(m_controller, "equalCopies"), "Not compared yet");
    m_controller.details().compare_(nil);
    ASSERT_TRUE(isCompared());
    ASSERT_EQ(detailOf(m_controller, "equalCopies"), "No other copy is the same");
    m_controller.undoAction_(nil);
    EXPECT_EQ(detailOf(m_controller, "equalCopies"), "Not compared yet");
}

TEST_F(SelectedDetails, KeepWhatTheDiskToldAndForgetTheComparisonWithANewInventory) {
    NSString const path = findCopy("a");
    NSString const same = findCopy("b");
    m_selection.setIdentityKeyPath("path");
    m_selection.bind_toObject_withKeyPath_options_("contentSet", m_controller, "paths", nil);
    select({path});
    ASSERT_TRUE(runUntil([&] { return detailOf(m_controller, "size").find("item") != std::string::npos; }));
    std::string const size = detailOf(m_controller, "size");
    m_controller.details().compare_(nil);
    ASSERT_TRUE(isCompared());
    ASSERT_EQ(detailOf(m_controller, "equalCopies"), text(same));
    m_controller.reSync();
    EXPECT_EQ(detailOf(m_controller, "equalCopies"), "Not compared yet");
    EXPECT_EQ(detailOf(m_controller, "size"), size);
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
    EXPECT_EQ(m_complaints.beeps, 3);
    EXPECT_EQ(asked(), std::vector<std::string>());
    m_controller.details().revealVolume_(nil);
    EXPECT_EQ(m_complaints.beeps, 3);
    ASSERT_EQ(asked().size(), 1U);
    EXPECT_EQ(asked().front().find("ShowItems file:///"), 0U) << asked().front();
}

} // namespace
} // namespace framekeeper::test
