#include "app/Undo.h"
#include "platform/foundation/running/EventLoop.h"
#include "tests/app/SelectedCopies.h"
#include <QEventLoop>
#include <QTimer>

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
    std::vector<std::string> selectedPaths() const {
        std::vector<std::string> paths;
        for (id const& record : m_selection.selectedObjects())
            paths.push_back(text(record.valueForKey_("path")));
        return paths;
    }
    // The contents of the files in the autostart folder.
    std::string loginItems() const {
        std::string contents;
        std::error_code none;
        for (auto const& entry : std::filesystem::directory_iterator(m_desktop.folder.path("config/autostart"), none))
            contents += contentsOf(entry.path());
        return contents;
    }
};

TEST_F(Undo, HasNothingToTakeBackAtFirst) {
    EXPECT_FALSE(m_controller.canUndo());
    EXPECT_TRUE(m_controller.notice() == nil);
    m_controller.undoAction_(nil);
    EXPECT_EQ(m_complaints.beeps, 1);
    EXPECT_TRUE(m_complaints.lines.empty());
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
    EXPECT_EQ(m_complaints.beeps, 0);
    EXPECT_TRUE(m_complaints.lines.empty());
}

TEST_F(Undo, SelectsTheCopyThatIsBackUnlessTheUserHasSelectedAnother) {
    NSString const path = findCopy("a");
    NSString const other = findCopy("b");
    m_selection.setIdentityKeyPath("path");
    m_selection.bind_toObject_withKeyPath_options_("contentSet", m_controller, "paths", nil);
    auto const trashSelected = [&] {
        m_controller.reSync();
        m_selection.setSelectedObjects_(NSArray::arrayWithObject_(recordOf(m_controller, path)));
        m_controller.trashAction_(nil);
        ASSERT_FALSE(exists(path));
        EXPECT_TRUE(selectedPaths().empty());
    };
    trashSelected();
    m_controller.undoAction_(nil);
    EXPECT_EQ(selectedPaths(), std::vector{text(path)});
    trashSelected();
    m_selection.setSelectedObjects_(NSArray::arrayWithObject_(recordOf(m_controller, other)));
    m_controller.undoAction_(nil);
    EXPECT_EQ(selectedPaths(), std::vector{text(other)});
    trashSelected();
    m_selection.setSelectedObjects_(NSArray::arrayWithObject_(recordOf(m_controller, pathInTrash())));
    m_controller.putBackAction_(nil);
    EXPECT_EQ(selectedPaths(), std::vector{text(path)});
}

// So many are arranged in steps, between the events of the window.
TEST_F(Undo, SelectsTheCopyThatIsBackAmongVeryMany) {
    NSString const path = findCopy("a");
    constexpr NSUInteger others = 10'001;
    for (NSUInteger number = 0; number < others; ++number)
        m_controller.isOnHarddiskPaths().addObject_(NSString::stringWithFormat_("/none/%u/Mirror Frame.app", number));
    m_selection.setIdentityKeyPath("path");
    m_selection.bind_toObject_withKeyPath_options_("contentSet", m_controller, "paths", nil);
    m_controller.reSync();
    m_selection.setSelectedObjects_(NSArray::arrayWithObject_(recordOf(m_controller, path)));
    auto const isShown = [&] { return isSame(m_selection.content(), m_controller.paths()); };
    requireEventLoop();
    auto const inEvent = [](std::function<void()> const& work) {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [&] {
            work();
            loop.quit();
        });
        loop.exec();
    };
    inEvent([&] { m_controller.trashAction_(nil); });
    ASSERT_TRUE(runUntil([&] { return !exists(path) && isShown(); }));
    EXPECT_TRUE(selectedPaths().empty());
    inEvent([&] {
        m_controller.undoAction_(nil);
        EXPECT_FALSE(isShown());
    });
    ASSERT_TRUE(runUntil([&] { return exists(path) && isShown(); }));
    EXPECT_EQ(selectedPaths(), std::vector{text(path)});
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
    EXPECT_EQ(m_complaints.beeps, 1);
    EXPECT_TRUE(m_complaints.lines.empty()) << "it is told in the window alone";
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
    EXPECT_EQ(m_complaints.beeps, 1);
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
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(Undo, LeavesAnIconThatWasChangedSince) {
    NSString const path = findCopy("a");
    select({path});
    m_controller.swapIconAction_(nil);
    std::string const other = plist("mirrorframe1");
    m_desktop.folder.makeFile("a/Mirror Frame.app/Contents/Info.plist", other);
    m_controller.undoAction_(nil);
    EXPECT_EQ(contentsOf(informationFileOf(path)), other);
    EXPECT_EQ(m_complaints.beeps, 1);
    EXPECT_TRUE(m_complaints.lines.empty());
    EXPECT_FALSE(m_controller.canUndo());
}

TEST_F(Undo, RemovesALoginItemThatWasAddedAndBringsTheFormerOneBack) {
    NSString const first = findCopy("a");
    NSString const second = findCopy("b");
    m_controller.syncIsAutolaunched();
    select({first});
    m_controller.addToAutoLaunchAction_(nil);
    std::string const before = loginItems();
    EXPECT_NE(before, "");
    select({second});
    m_controller.addToAutoLaunchAction_(nil);
    EXPECT_EQ(notice(), "Added to the login items.");
    EXPECT_NE(loginItems(), before);
    m_controller.undoAction_(nil);
    EXPECT_EQ(loginItems(), before);
    EXPECT_TRUE(flag(recordOf(m_controller, first), "isAutolaunched"));
    EXPECT_FALSE(flag(recordOf(m_controller, second), "isAutolaunched"));
    m_controller.undoAction_(nil);
    EXPECT_EQ(loginItems(), "");
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(Undo, LeavesWhatOthersDidToTheLoginItemsMeanwhile) {
    NSString const path = findCopy("a");
    m_controller.syncIsAutolaunched();
    select({path});
    m_controller.addToAutoLaunchAction_(nil);
    select({path});
    m_controller.unAutoLaunchAction_(nil);
    EXPECT_EQ(notice(), "Removed from the login items.");
    std::string const other = "[Desktop Entry]\nType=Application\nName=Other\nExec=/bin/true\n";
    m_desktop.folder.makeFile("config/autostart/other.desktop", other);
    m_controller.undoAction_(nil);
    EXPECT_EQ(contentsOf(m_desktop.folder.path("config/autostart/other.desktop")), other);
    EXPECT_TRUE(flag(recordOf(m_controller, path), "isAutolaunched"));
    m_controller.undoAction_(nil);
    EXPECT_EQ(loginItems(), other) << "our item alone goes";
}

// What cannot be read is not empty: the entry would stay.
TEST_F(Undo, OfALoginItemWaitsUntilTheItemsCanBeRead) {
    NSString const path = findCopy("a");
    m_controller.syncIsAutolaunched();
    select({path});
    m_controller.addToAutoLaunchAction_(nil);
    std::string const folder = m_desktop.folder.path("config/autostart");
    std::filesystem::rename(folder, folder + " away");
    m_desktop.folder.makeFile("config/autostart", "no folder");
    m_controller.undoAction_(nil);
    EXPECT_EQ(notice(), "That could not be undone: " + folder + ": Not a directory");
    EXPECT_EQ(m_complaints.beeps, 1);
    EXPECT_TRUE(m_complaints.lines.empty());
    EXPECT_TRUE(m_controller.canUndo());
    std::filesystem::remove(folder);
    std::filesystem::rename(folder + " away", folder);
    EXPECT_NE(loginItems(), "");
    m_controller.undoAction_(nil);
    EXPECT_EQ(notice(), "The login items are as before.");
    EXPECT_EQ(loginItems(), "");
    EXPECT_FALSE(m_controller.canUndo());
}

TEST_F(Undo, PutsAPlaceBackWhereItStood) {
    NSString const path = findCopy("a");
    std::string const place = "file://" + m_desktop.folder.path("a/Mirror%20Frame.app") + " A copy\n";
    std::string const before = "file:///etc\n" + place + "file:///usr Programs\n" + place;
    std::string const bookmarks = m_desktop.folder.makeFile("config/gtk-3.0/bookmarks", before);
    m_controller.syncIsInToolbar();
    select({path});
    m_controller.unToolbarAction_(nil);
    EXPECT_EQ(notice(), "Removed from the places.");
    EXPECT_NE(contentsOf(bookmarks), before);
    m_controller.undoAction_(nil);
    EXPECT_EQ(contentsOf(bookmarks), before) << "one of two equal entries comes back";
    EXPECT_EQ(notice(), "Back in the places.");
    EXPECT_TRUE(flag(recordOf(m_controller, path), "isInToolbar"));
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
