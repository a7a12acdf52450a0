#include "platform/preferences/NSUserDefaults.h"
#include "platform/system/SystemError.h"
#include "tests/app/InGerman.h"
#include "tests/app/OpenedWindow.h"
#include <QAbstractButton>
#include <QLabel>
#include <cerrno>
#include <filesystem>

// What the program's own window shows beside its table.

namespace framekeeper::test {
namespace {

// How often a widget was hidden while this lives.
class HidesOf : public QObject {
public:
    explicit HidesOf(QWidget* widget) { widget->installEventFilter(this); }
    int count() const { return m_count; }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Hide) ++m_count;
        return QObject::eventFilter(watched, event);
    }

private:
    int m_count{0};
};

TEST_F(Window, ShowsTheDetailsOfTheSelectedCopyBesideTheTable) {
    NSUserDefaults::standardUserDefaults().removeObjectForKey_("ShowsDetails");
    NSString const path = makeCopy(m_folder, "a");
    makeCopy(m_folder, "b");
    open();
    ASSERT_TRUE(gathered());
    auto* const pane = find<QWidget>("detailsPanel");
    EXPECT_FALSE(pane->isVisible());
    trigger("detailsAction");
    EXPECT_TRUE(pane->isVisible());
    EXPECT_TRUE(find<QAction>("detailsAction")->isChecked());
    EXPECT_TRUE(find<QLabel>("noDetails")->isVisible());
    table()->selectRow(0);
    EXPECT_FALSE(find<QLabel>("noDetails")->isVisible());
    EXPECT_EQ(find<QLabel>("pathDetail")->text().toStdString(), text(path));
    EXPECT_EQ(find<QLabel>("versionDetail")->text(), "2.1 (210)");
    EXPECT_FALSE(find<QLabel>("detailsIcon")->pixmap().isNull());
    ASSERT_TRUE(runUntil([&] { return find<QLabel>("sizeDetail")->text().contains("item"); }));
    QTest::mouseClick(find<QAbstractButton>("compareButton"), Qt::LeftButton);
    auto* const equal = find<QLabel>("equalCopiesDetail");
    EXPECT_TRUE(runUntil([&] { return equal->text().toStdString() == m_folder.path("b/Mirror Frame.app"); }));
    // Another start shows them again.
    controller().query().stopQuery();
    open();
    EXPECT_TRUE(find<QWidget>("detailsPanel")->isVisible());
    trigger("detailsAction");
    EXPECT_FALSE(find<QWidget>("detailsPanel")->isVisible());
    EXPECT_FALSE(find<QAction>("detailsAction")->isChecked());
    NSUserDefaults::standardUserDefaults().removeObjectForKey_("ShowsDetails");
}

TEST_F(Window, SaysWhyTheLoginItemsAreNotKnown) {
    mac::test::EnvironmentVariable const config{"XDG_CONFIG_HOME", m_folder.path("config")};
    std::string const folder = m_folder.makeFile("config/autostart", "no folder");
    makeCopy(m_folder, "a");
    open();
    std::string const why = folder + ": " + textOfSystemError(ENOTDIR);
    std::string const line = "The login items could not be read: " + why;
    EXPECT_TRUE(runUntil([&] { return find<QLabel>("logLabel")->accessibleDescription().toStdString() == line; }));
    ASSERT_TRUE(gathered());
    trigger("detailsAction");
    table()->selectRow(0);
    EXPECT_EQ(find<QLabel>("loginItemDetail")->text().toStdString(), "Not known: " + why);
    std::filesystem::remove(folder);
    controller().syncIsAutolaunched();
    EXPECT_EQ(find<QLabel>("loginItemDetail")->text(), "Does not start at login");
    trigger("detailsAction");
}

// A button that is not there takes no room from the text beside it.
TEST_F(Window, ShowsShortDetailsInOneLine) {
    NSUserDefaults::standardUserDefaults().removeObjectForKey_("ShowsDetails");
    makeCopy(m_folder, "a");
    open();
    ASSERT_TRUE(gathered());
    trigger("detailsAction");
    table()->selectRow(0);
    ASSERT_TRUE(runUntil([&] { return find<QWidget>("revealVolumeButton")->isVisible(); }));
    ASSERT_FALSE(find<QWidget>("revealLoginItemButton")->isVisible());
    for (char const* const name : {"processDetail", "loginItemDetail", "placeDetail"}) {
        auto* const label = find<QLabel>(name);
        EXPECT_TRUE(runUntil([&] {
            return label->contentsRect().width() >= label->fontMetrics().horizontalAdvance(label->text());
        })) << name;
    }
    trigger("detailsAction");
    NSUserDefaults::standardUserDefaults().removeObjectForKey_("ShowsDetails");
}

TEST_F(Window, ListsTheFoldersThatCouldNotBeReadWithTheReason) {
    std::string const missing = m_folder.path("missing");
    mac::test::EnvironmentVariable const computer("FRAMEKEEPER_LOCAL_COMPUTER", m_folder.path() + ":" + missing);
    open();
    ASSERT_TRUE(gathered());
    auto* const button = find<QAbstractButton>("unreadableButton");
    auto* const panel = find<QWidget>("unreadablePanel");
    ASSERT_TRUE(button->isVisible());
    EXPECT_FALSE(panel->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_TRUE(button->isChecked());
    QAbstractItemModel const* const folders = find<QTableView>("unreadableTable")->model();
    ASSERT_EQ(folders->rowCount(), 1);
    EXPECT_EQ(folders->index(0, 0).data().toString().toStdString(), missing);
    EXPECT_EQ(folders->index(0, 1).data().toString().toStdString(), textOfSystemError(ENOENT));
    QTest::mouseClick(find<QAbstractButton>("closeUnreadableButton"), Qt::LeftButton);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_FALSE(button->isChecked());
}

TEST_F(Window, SaysWhyAFolderCouldNotBeReadInItsLanguage) {
    InGerman const german;
    std::string const missing = m_folder.path("missing");
    mac::test::EnvironmentVariable const computer("FRAMEKEEPER_LOCAL_COMPUTER", m_folder.path() + ":" + missing);
    open();
    ASSERT_TRUE(gathered());
    QAbstractItemModel const* const folders = find<QTableView>("unreadableTable")->model();
    ASSERT_EQ(folders->rowCount(), 1);
    EXPECT_EQ(folders->index(0, 1).data().toString().toStdString(), "Datei oder Ordner nicht gefunden");
}

TEST_F(Window, KeepsTheListOfFoldersOpenWhileTheyAreSearchedAnew) {
    std::string const missing = m_folder.path("missing");
    mac::test::EnvironmentVariable const computer("FRAMEKEEPER_LOCAL_COMPUTER", m_folder.path() + ":" + missing);
    open();
    ASSERT_TRUE(gathered());
    auto* const panel = find<QWidget>("unreadablePanel");
    QTest::mouseClick(find<QAbstractButton>("unreadableButton"), Qt::LeftButton);
    ASSERT_TRUE(panel->isVisible());
    table()->setFocus();
    HidesOf const hides(panel);
    trigger("scanAction");
    ASSERT_TRUE(gathered());
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(hides.count(), 0) << "it does not come and go";
    EXPECT_TRUE(table()->hasFocus());
    EXPECT_EQ(find<QTableView>("unreadableTable")->model()->rowCount(), 1);
}

TEST_F(Window, ClosesTheListOfFoldersForGoodOnceAllCanBeRead) {
    std::string const missing = m_folder.path("missing");
    mac::test::EnvironmentVariable const computer("FRAMEKEEPER_LOCAL_COMPUTER", m_folder.path() + ":" + missing);
    open();
    ASSERT_TRUE(gathered());
    auto* const panel = find<QWidget>("unreadablePanel");
    QTest::mouseClick(find<QAbstractButton>("unreadableButton"), Qt::LeftButton);
    ASSERT_TRUE(panel->isVisible());
    std::filesystem::create_directory(missing);
    trigger("scanAction");
    ASSERT_TRUE(gathered());
    EXPECT_FALSE(panel->isVisible());
    EXPECT_FALSE(find<QAbstractButton>("unreadableButton")->isVisible());
    // It does not open again by itself.
    std::filesystem::remove(missing);
    trigger("scanAction");
    ASSERT_TRUE(gathered());
    EXPECT_TRUE(find<QAbstractButton>("unreadableButton")->isVisible());
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(Window, SaysHowTheDiskDiffersFromTheScanAndScansAgain) {
    makeCopy(m_folder, "a");
    makeCopy(m_folder, "b");
    open();
    ASSERT_TRUE(gathered());
    auto* const line = find<QLabel>("changesLabel");
    EXPECT_FALSE(line->isVisible());
    std::filesystem::rename(m_folder.path("a/Mirror Frame.app"), m_folder.path("a/Other.app"));
    ASSERT_TRUE(runUntil([&] { return line->isVisible(); }));
    EXPECT_EQ(line->text(), "1 gone since the scan.");
    EXPECT_EQ(table()->model()->rowCount(), 2) << "the inventory stays";
    QTest::mouseClick(find<QAbstractButton>("scanAgainLink"), Qt::LeftButton);
    ASSERT_TRUE(gathered());
    EXPECT_FALSE(line->isVisible());
    EXPECT_EQ(table()->model()->rowCount(), 1);
}

} // namespace
} // namespace framekeeper::test
