#include "tests/app/InGerman.h"
#include "tests/app/SelectedCopies.h"

namespace framekeeper::test {
namespace {

class ItemActions : public SelectedCopies {};

TEST_F(ItemActions, RevealAllSelectedCopiesTogether) {
    NSString const first = findCopy("a");
    NSString const second = findCopy("b");
    select({first, second});
    m_controller.revealAction_(nil);
    std::vector<std::string> lines = asked();
    std::ranges::sort(lines);
    EXPECT_EQ(lines, (std::vector{shown(first), shown(second)}));
    EXPECT_EQ(m_complaints.beeps, 0);
    EXPECT_TRUE(m_complaints.lines.empty());
}

TEST_F(ItemActions, BeepWithoutALineWhenNothingCouldBeRevealed) {
    select({});
    m_controller.revealAction_(nil);
    expectFailure("");
}

TEST_F(ItemActions, BeepWithoutALineWhenTheFileBrowserShowsNothing) {
    select({findCopy("a"), findCopy("b")});
    m_desktop.install("/nonexistent/browser");
    m_desktop.folder.makeFile("data/dbus-1/services/browser.service", "");
    m_controller.revealAction_(nil);
    expectFailure("");
}

TEST_F(ItemActions, MoveTheSelectedCopyToTheTrashWhereItStaysListed) {
    NSString const path = findCopy("a");
    NSMutableSet const set = m_controller.isOnHarddiskPaths();
    select({path});
    m_controller.trashAction_(nil);
    EXPECT_FALSE(exists(path));
    ASSERT_FALSE(pathInTrash() == nil);
    EXPECT_TRUE(exists(pathInTrash()));
    EXPECT_EQ(onHarddisk().size(), 1U);
    EXPECT_TRUE(isSame(m_controller.isOnHarddiskPaths(), set)) << "it is changed in place";
    EXPECT_TRUE(recordOf(m_controller, path) == nil);
    EXPECT_TRUE(flag(recordOf(m_controller, pathInTrash()), "exists"));
    EXPECT_TRUE(m_complaints.lines.empty());
    EXPECT_EQ(m_complaints.beeps, 0);
}

// The path is the script's answer as it stands.
TEST_F(ItemActions, ListATrashedCopyByThePathThatTheScriptTells) {
    select({findCopy("a")});
    m_controller.trashAction_(nil);
    ASSERT_EQ(onHarddisk().size(), 1U);
    EXPECT_TRUE(onHarddisk().front().ends_with("/")) << onHarddisk().front();
    EXPECT_TRUE(flag(recordOf(m_controller, pathInTrash()), "exists"));
    select({pathInTrash()});
    m_controller.deleteAction_(nil);
    EXPECT_TRUE(onHarddisk().empty());
}

TEST_F(ItemActions, FailForARecordWithoutAPath) {
    NSMutableDictionary const record = NSMutableDictionary::dictionary();
    m_selection.setContent_(NSSet::setWithObject_(record));
    ASSERT_TRUE(m_selection.setSelectedObjects_(NSArray::arrayWithObject_(record)));
    m_controller.trashAction_(nil);
    EXPECT_EQ(m_complaints.lines, std::vector<std::string>{"Could not move to trash."});
    m_controller.swapIconAction_(nil);
    EXPECT_EQ(m_complaints.lines.back(), "Could not read plist.");
    EXPECT_EQ(m_complaints.beeps, 2);
}

TEST_F(ItemActions, SayThatACopyCouldNotBeMovedToTheTrash) {
    NSString const path = findCopy("a");
    select({path});
    std::filesystem::remove_all(text(path));
    m_controller.trashAction_(nil);
    expectFailure("Could not move to trash.");
    EXPECT_EQ(onHarddisk(), std::vector{text(path)});
    EXPECT_FALSE(m_controller.canUndo());
}

TEST_F(ItemActions, ListATrashedCopyThatRunsTwice) {
    NSString const path = findCopy("a");
    m_controller.setIsRunningPaths_(NSSet::setWithObject_(entry(path, "psn", NSNumber::numberWithInt_(7))));
    select({path});
    m_controller.trashAction_(nil);
    EXPECT_EQ(m_controller.paths().count(), 2U);
    NSDictionary const former = recordOf(m_controller, path);
    EXPECT_TRUE(flag(former, "isRunning"));
    EXPECT_FALSE(flag(former, "exists"));
    EXPECT_FALSE(flag(recordOf(m_controller, pathInTrash()), "isRunning"));
}

TEST_F(ItemActions, ListTheTrashPathOfACopyThatOnlyALoginItemNames) {
    NSString const path = makeCopy(m_desktop.folder, "a");
    m_controller.setIsAutolaunchedPaths_(NSSet::setWithObject_(entry(path, "autolaunchItem", "an item")));
    select({path});
    m_controller.trashAction_(nil);
    EXPECT_FALSE(pathInTrash() == nil);
    EXPECT_EQ(m_controller.paths().count(), 2U);
    EXPECT_TRUE(flag(recordOf(m_controller, path), "isAutolaunched"));
}

TEST_F(ItemActions, DeleteTheSelectedCopyForGood) {
    NSString const path = findCopy("a");
    NSString const other = findCopy("b");
    select({path});
    m_controller.deleteAction_(nil);
    EXPECT_FALSE(exists(path));
    EXPECT_TRUE(exists(other));
    EXPECT_EQ(onHarddisk(), std::vector{text(other)});
    EXPECT_EQ(m_controller.paths().count(), 1U);
    EXPECT_FALSE(m_controller.canUndo());
    EXPECT_EQ(notice(), "Deleted for good.");
    EXPECT_FALSE(m_controller.noticeOffersUndo());
    EXPECT_EQ(m_complaints.beeps, 0);
    EXPECT_TRUE(m_complaints.lines.empty());
}

TEST_F(ItemActions, KeepTheRecordOfADeletedCopyThatAnotherSourceNames) {
    NSString const path = makeCopy(m_desktop.folder, "a");
    NSString const other = findCopy("b");
    m_controller.setIsInToolbarPaths_(NSSet::setWithObject_(entry(path, "toolbarItem", "an item")));
    select({path});
    m_controller.deleteAction_(nil);
    EXPECT_EQ(onHarddisk(), std::vector{text(other)});
    EXPECT_FALSE(flag(recordOf(m_controller, path), "exists"));
}

TEST_F(ItemActions, LogWhyACopyCouldNotBeDeletedWithTheMessageAsTheFormat) {
    NSString const path = pathString(m_desktop.folder.path("100%@"));
    m_controller.isOnHarddiskPaths().addObject_(path);
    select({path});
    m_controller.deleteAction_(nil);
    EXPECT_EQ(m_complaints.beeps, 1);
    ASSERT_EQ(m_complaints.lines.size(), 1U);
    EXPECT_NE(m_complaints.lines.front().find("100(null)"), std::string::npos) << m_complaints.lines.front();
    EXPECT_TRUE(notice().starts_with("The copy could not be deleted: ")) << notice();
    EXPECT_NE(notice().find("100%@"), std::string::npos) << notice();
    EXPECT_EQ(onHarddisk(), std::vector{text(path)});
}

// For people in their language, in the log as ever.
TEST_F(ItemActions, TellWhyACopyCouldNotBeDeletedInTheLanguageOfTheWindow) {
    InGerman const german;
    NSString const path = findCopy("a");
    select({path});
    std::filesystem::remove_all(text(path));
    m_controller.deleteAction_(nil);
    expectFailure("\"Mirror Frame.app\": No such file or directory");
    EXPECT_EQ(notice(), "Die Kopie ließ sich nicht löschen: \"Mirror Frame.app\": Datei oder Ordner nicht gefunden");
}

TEST_F(ItemActions, DoNothingUnlessExactlyOneCopyIsSelected) {
    NSString const first = findCopy("a");
    NSString const second = findCopy("b");
    for (std::vector<NSString> const& selection : {std::vector<NSString>(), std::vector{first, second}}) {
        select(selection);
        m_controller.trashAction_(nil);
        m_controller.deleteAction_(nil);
        m_controller.swapIconAction_(nil);
        m_controller.putBackAction_(nil);
    }
    EXPECT_TRUE(exists(first) && exists(second));
    EXPECT_EQ(contentsOf(informationFileOf(first)), plist("mirrorframe1"));
    EXPECT_TRUE(asked().empty());
    EXPECT_TRUE(m_complaints.lines.empty());
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(ItemActions, DoNothingForANilController) {
    AppController const none;
    none.revealAction_(nil);
    none.trashAction_(nil);
    none.deleteAction_(nil);
    none.swapIconAction_(nil);
    none.putBackAction_(nil);
    none.undoAction_(nil);
    EXPECT_FALSE(none.canUndo());
    EXPECT_FALSE(none.noticeOffersUndo());
    EXPECT_TRUE(none.notice() == nil);
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(ItemActions, SwapTheIconAndShowTheCopy) {
    NSString const path = findCopy("a");
    select({path});
    m_controller.swapIconAction_(nil);
    EXPECT_NE(contentsOf(informationFileOf(path)).find("mirrorframe2"), std::string::npos);
    EXPECT_EQ(asked(), std::vector{shown(path)});
    EXPECT_TRUE(m_complaints.lines.empty());
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(ItemActions, SayThatACopyWithASwappedIconCouldNotBeShown) {
    NSString const path = findCopy(".hidden");
    select({path});
    m_desktop.install("/nonexistent/browser");
    m_desktop.folder.makeFile("data/dbus-1/services/browser.service", "");
    m_controller.swapIconAction_(nil);
    expectFailure("Could not reveal in Finder.");
    EXPECT_NE(contentsOf(informationFileOf(path)).find("mirrorframe2"), std::string::npos);
    EXPECT_TRUE(m_controller.canUndo());
}

TEST_F(ItemActions, SayThatAnIconCannotBeSwapped) {
    NSString const path = findCopy("a", "mirrorframe1.icns");
    select({path});
    m_controller.swapIconAction_(nil);
    expectFailure("Not supported with this version of Mirror Frame.");
    EXPECT_FALSE(m_controller.canUndo());
    EXPECT_TRUE(asked().empty());
}

} // namespace
} // namespace framekeeper::test
