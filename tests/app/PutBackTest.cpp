#include "tests/app/InGerman.h"
#include "tests/app/SelectedCopies.h"

namespace framekeeper::test {
namespace {

class PutBack : public SelectedCopies {
protected:
    // Trashes the copy and selects it where it lies then.
    NSString trashAndSelect(NSString const& path) const {
        select({path});
        m_controller.trashAction_(nil);
        NSString const trashed = pathInTrash();
        select({trashed});
        return trashed;
    }
};

TEST_F(PutBack, MovesTheSelectedCopyOutOfTheTrash) {
    NSString const path = findCopy("a");
    NSString const trashed = trashAndSelect(path);
    m_controller.putBackAction_(nil);
    EXPECT_TRUE(exists(path));
    EXPECT_FALSE(exists(trashed));
    EXPECT_EQ(onHarddisk(), std::vector{text(path)});
    EXPECT_EQ(notice(), "Put back.");
    EXPECT_FALSE(m_controller.canUndo()) << "the move to the trash is taken back already";
    EXPECT_EQ(m_complaints.beeps, 0);
    EXPECT_TRUE(m_complaints.lines.empty());
}

TEST_F(PutBack, TellsInTheWindowThatThePlaceIsTaken) {
    NSString const path = findCopy("a");
    NSString const trashed = trashAndSelect(path);
    m_desktop.folder.makeFile("a/Mirror Frame.app", "somebody's");
    m_controller.putBackAction_(nil);
    EXPECT_EQ(contentsOf(text(path)), "somebody's");
    EXPECT_TRUE(exists(trashed));
    EXPECT_NE(notice(), "");
    EXPECT_EQ(m_complaints.beeps, 1);
    EXPECT_TRUE(m_complaints.lines.empty());
}

TEST_F(PutBack, SaysWhyNotInTheLanguageOfTheWindow) {
    InGerman const german;
    NSString const path = findCopy("a");
    NSString const trashed = trashAndSelect(path);
    std::string const there = m_desktop.folder.makeFile("a/Mirror Frame.app", "somebody's");
    std::string const why = "Das Objekt kann nicht zurückgelegt werden: Dort liegt schon etwas anderes: ";
    m_controller.putBackAction_(nil);
    EXPECT_EQ(notice(), why + there);
    // What it offers to undo is told alike.
    m_controller.undoAction_(nil);
    EXPECT_EQ(notice(), why + there);
    select({findCopy("b")});
    m_controller.putBackAction_(nil);
    EXPECT_EQ(notice(), "Das Objekt kann nicht zurückgelegt werden: Es liegt nicht im Papierkorb");
}

TEST_F(PutBack, SaysInTheLanguageOfTheWindowWhatTheSystemRefused) {
    InGerman const german;
    NSString const path = findCopy("a");
    trashAndSelect(path);
    std::filesystem::remove(m_desktop.folder.path("a"));
    m_controller.putBackAction_(nil);
    EXPECT_TRUE(notice().starts_with("Das Objekt kann nicht zurückgelegt werden: Datei oder Ordner nicht gefunden"))
        << notice();
}

TEST_F(PutBack, RefusesForACopyThatLiesInNoTrash) {
    NSString const path = findCopy("a");
    select({path});
    m_controller.putBackAction_(nil);
    EXPECT_TRUE(exists(path));
    EXPECT_EQ(m_complaints.beeps, 1);
    EXPECT_EQ(onHarddisk(), std::vector{text(path)});
}

} // namespace
} // namespace framekeeper::test
