#include "app/Undo.h"
#include "tests/app/SelectedCopies.h"

namespace framekeeper::test {
namespace {

class Undo : public SelectedCopies {
protected:
    // Trashes the copy by its action.
    void trash(NSString const& path) const {
        select({path});
        m_controller.trashAction_(nil);
        ASSERT_FALSE(exists(path));
    }
};

TEST_F(Undo, HasNothingToTakeBackAtFirst) {
    EXPECT_FALSE(m_controller.canUndo());
    EXPECT_TRUE(m_controller.notice() == nil);
    m_controller.undoAction_(nil);
    EXPECT_EQ(m_beeps, 1);
    EXPECT_TRUE(m_log.empty());
}

TEST_F(Undo, PutsATrashedCopyBackIntoItsPlace) {
    NSString const path = findCopy("a");
    trash(path);
    NSString const former = pathInTrash();
    EXPECT_EQ(notice(), "Moved to the trash.");
    EXPECT_TRUE(m_controller.noticeOffersUndo());
    EXPECT_TRUE(m_controller.canUndo());
    m_controller.undoAction_(nil);
    EXPECT_TRUE(exists(path));
    EXPECT_FALSE(exists(former));
    EXPECT_EQ(onHarddisk(), std::vector{text(path)});
    EXPECT_TRUE(flag(recordOf(m_controller, path), "exists"));
    EXPECT_EQ(m_controller.paths().count(), 1U);
    EXPECT_EQ(notice(), "Put back.");
    EXPECT_FALSE(m_controller.noticeOffersUndo());
    EXPECT_FALSE(m_controller.canUndo());
    EXPECT_EQ(m_beeps, 0);
    EXPECT_TRUE(m_log.empty());
}

TEST_F(Undo, ListsTheOldPathOnlyIfItWasListed) {
    NSString const path = makeCopy(m_desktop.folder, "a");
    m_controller.setIsAutolaunchedPaths_(NSSet::setWithObject_(entry(path, "autolaunchItem", "an item")));
    trash(path);
    m_controller.undoAction_(nil);
    EXPECT_TRUE(exists(path));
    EXPECT_TRUE(onHarddisk().empty());
    EXPECT_EQ(m_controller.paths().count(), 1U);
}

TEST_F(Undo, RefusesWhenThePlaceIsTakenAndMayBeTriedAgain) {
    NSString const path = findCopy("a");
    trash(path);
    m_desktop.folder.makeFile("a/Mirror Frame.app", "somebody's");
    m_controller.undoAction_(nil);
    EXPECT_EQ(contentsOf(text(path)), "somebody's");
    EXPECT_FALSE(pathInTrash() == nil);
    EXPECT_NE(notice(), "");
    EXPECT_NE(notice(), "Put back.");
    EXPECT_EQ(m_beeps, 1);
    EXPECT_TRUE(m_log.empty()) << "it is told in the window alone";
    EXPECT_TRUE(m_controller.canUndo());
    std::filesystem::remove(text(path));
    m_controller.undoAction_(nil);
    EXPECT_TRUE(std::filesystem::is_directory(text(path)));
    EXPECT_FALSE(m_controller.canUndo());
}

TEST_F(Undo, RefusesWhenAnotherItemLiesInTheTrashByThen) {
    NSString const path = findCopy("a");
    trash(path);
    std::string const place = text(pathInTrash());
    std::filesystem::remove_all(place);
    std::filesystem::create_directory(place);
    m_controller.undoAction_(nil);
    EXPECT_FALSE(exists(path));
    EXPECT_TRUE(std::filesystem::is_directory(place));
    EXPECT_EQ(m_beeps, 1);
}

TEST_F(Undo, TakesBackTheLastChangeFirst) {
    NSString const first = findCopy("a");
    NSString const second = findCopy("b");
    trash(first);
    trash(second);
    m_controller.undoAction_(nil);
    EXPECT_TRUE(exists(second));
    EXPECT_FALSE(exists(first));
    m_controller.undoAction_(nil);
    EXPECT_TRUE(exists(first));
    EXPECT_FALSE(m_controller.canUndo());
}

TEST_F(Undo, HoldsAHundredSteps) {
    for (int step = 0; step < 200; ++step)
        remember(m_controller, SwappedIcon{"/none", "mirrorframe1", "mirrorframe2"});
    int taken = 0;
    for (; m_controller.canUndo(); ++taken)
        m_controller.undoAction_(nil);
    EXPECT_EQ(taken, 100);
}

TEST_F(Undo, GivesACopyItsFormerIcon) {
    NSString const path = findCopy("a");
    select({path});
    m_controller.swapIconAction_(nil);
    EXPECT_EQ(notice(), "Icon swapped.");
    std::size_t const revealed = asked().size();
    m_controller.undoAction_(nil);
    EXPECT_NE(contentsOf(informationFileOf(path)).find("mirrorframe1"), std::string::npos);
    EXPECT_EQ(asked().size(), revealed) << "undoing opens no window";
    EXPECT_EQ(m_beeps, 0);
}

TEST_F(Undo, LeavesAnIconThatWasChangedSince) {
    NSString const path = findCopy("a");
    select({path});
    m_controller.swapIconAction_(nil);
    std::string const other = plist("mirrorframe1");
    m_desktop.folder.makeFile("a/Mirror Frame.app/Contents/Info.plist", other);
    m_controller.undoAction_(nil);
    EXPECT_EQ(contentsOf(informationFileOf(path)), other);
    EXPECT_EQ(m_beeps, 1);
    EXPECT_TRUE(m_log.empty());
    EXPECT_FALSE(m_controller.canUndo());
}

TEST_F(Undo, IsNotOfferedForADeletedCopy) {
    NSString const path = findCopy("a");
    select({path});
    m_controller.deleteAction_(nil);
    EXPECT_FALSE(m_controller.canUndo());
    EXPECT_FALSE(m_controller.noticeOffersUndo());
}

} // namespace
} // namespace framekeeper::test
