#include "platform/appkit/interface/ThemeColors.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Beep.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/RunUntil.h"
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextDocument>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

NSSet versions(std::initializer_list<std::pair<char const*, char const*>> pathsAndVersions) {
    NSMutableSet const records = NSMutableSet::set();
    for (auto const& [path, version] : pathsAndVersions) {
        NSString const text = NSString::stringWithUTF8String_(version);
        records.addObject_(makeRecord(NSString::stringWithUTF8String_(path), text, text));
    }
    return records;
}

std::string orderOf(NSArray const& descriptors) {
    std::string result;
    for (id const& object : descriptors) {
        NSSortDescriptor const descriptor = as<NSSortDescriptor>(object);
        result += (descriptor.ascending() ? "+" : "-") + descriptor.key().UTF8String() + " ";
    }
    return result;
}

TEST(MainWindow, ConnectsTheOutletsThenSendsAwakeFromNib) {
    LoadedWindow const window;
    FakeController const controller = window.controller();
    EXPECT_TRUE(controller.window().isVisible());
    EXPECT_FALSE(controller.pathsArrayController() == nil);
    EXPECT_FALSE(controller.pathsTableView() == nil);
    EXPECT_EQ(controller.messages(), std::vector<std::string>{"awakeFromNib"});
    EXPECT_EQ(orderOf(controller.pathsTableView().sortDescriptors()), "-version +displayPath ");
}

TEST(MainWindow, ShowsRowsOnlyBecausePathsIsObserved) {
    LoadedWindow const window;
    EXPECT_EQ(window.table()->model()->rowCount(), 0);
    window.controller().setValue_forKey_(makeRecords({"/b", "/a"}), "paths");
    EXPECT_EQ(window.column(PathColumn), QStringList({"/a", "/b"}));
    EXPECT_EQ(window.column(VersionColumn), QStringList({"2.1 (210)", "2.1 (210)"}));
}

TEST(MainWindow, SortsByVersionAsTextThenByPath) {
    LoadedWindow const window;
    window.controller().setPaths_(versions({{"/b", "210"}, {"/a", "210"}, {"/c", "99"}}));
    EXPECT_EQ(window.column(PathColumn), QStringList({"/c", "/a", "/b"}));
}

TEST(MainWindow, SortsByClickingAndKeepsOlderCriteriaBehind) {
    LoadedWindow const window;
    window.controller().setPaths_(versions({{"/b", "1"}, {"/a", "2"}, {"/c", "2"}}));
    window.clickHeader(PathColumn);
    EXPECT_EQ(window.column(PathColumn), QStringList({"/a", "/b", "/c"}));
    EXPECT_EQ(orderOf(window.controller().pathsTableView().sortDescriptors()), "+displayPath -version ");
    window.clickHeader(PathColumn);
    EXPECT_EQ(window.column(PathColumn), QStringList({"/c", "/b", "/a"}));
    window.clickHeader(VersionColumn);
    EXPECT_EQ(orderOf(window.controller().pathsTableView().sortDescriptors()), "-versionString -displayPath ");
    EXPECT_EQ(window.column(PathColumn), QStringList({"/c", "/a", "/b"}));
    EXPECT_EQ(window.table()->horizontalHeader()->sortIndicatorSection(), VersionColumn);
    EXPECT_EQ(window.table()->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
}

TEST(MainWindow, SortsByKeyboard) {
    LoadedWindow const window;
    window.controller().setPaths_(versions({{"/b", "1"}, {"/a", "1"}, {"/c", "2"}}));
    QTest::keyClick(window.table(), Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(window.column(PathColumn), QStringList({"/a", "/b", "/c"}));
}

TEST(MainWindow, ShowsTextAndColourOfTheYesAndNoColumns) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/a"}));
    QAbstractItemModel const& model = *window.table()->model();
    EXPECT_EQ(model.index(0, ExistsColumn).data().toString(), "Yes");
    EXPECT_EQ(model.index(0, RunningColumn).data().toString(), "No");
    QPalette const palette = window.table()->palette();
    EXPECT_EQ(model.index(0, ExistsColumn).data(Qt::ForegroundRole).value<QColor>(), palette.color(QPalette::Text));
    EXPECT_EQ(model.index(0, RunningColumn).data(Qt::ForegroundRole).value<QColor>(), dimmedText(palette));
}

TEST(MainWindow, KeepsTheSelectionByPathWhileRowsArrive) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/m", "/z"}));
    window.selectRow(0);
    window.controller().setPaths_(makeRecords({"/a", "/m", "/b", "/z"}));
    QModelIndexList const rows = window.table()->selectionModel()->selectedRows(PathColumn);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0].data().toString(), "/m");
    EXPECT_EQ(window.table()->currentIndex().row(), rows[0].row());
    EXPECT_EQ(window.controller().pathsArrayController().selectionIndex(), 2U);
}

TEST(MainWindow, KeepsTheSelectionOverARescan) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/a", "/b"}));
    window.selectRow(1);
    window.controller().setPaths_(nil);
    EXPECT_TRUE(window.table()->selectionModel()->selectedRows().isEmpty());
    window.controller().setPaths_(makeRecords({"/a"}));
    window.controller().setPaths_(makeRecords({"/a", "/b"}));
    QModelIndexList const rows = window.table()->selectionModel()->selectedRows(PathColumn);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0].data().toString(), "/b");
}

TEST(MainWindow, TellsTheArrayControllerWhatTheUserSelects) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/a", "/b", "/c"}));
    window.table()->selectAll();
    EXPECT_EQ(window.controller().pathsArrayController().selectedObjects().count(), 3U);
    window.table()->clearSelection();
    EXPECT_EQ(window.controller().pathsArrayController().selectedObjects().count(), 0U);
}

TEST(MainWindow, ShowsWhatTheArrayControllerSelects) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/a", "/b", "/c"}));
    NSArrayController const rows = window.controller().pathsArrayController();
    rows.setSelectedObjects_(rows.arrangedObjects().subarrayWithRange_({1, 2}));
    EXPECT_EQ(window.table()->selectionModel()->selectedRows().size(), 2);
}

NSSet manyRecords(int first, int count) {
    NSMutableSet const records = NSMutableSet::set();
    for (int i = first; i < first + count; ++i)
        records.addObject_(makeRecord(NSString::stringWithFormat_("/path/%04d", i)));
    return records;
}

TEST(MainWindow, DoesNotJumpWhileRowsArriveAboveWhatIsSeen) {
    LoadedWindow const window;
    QTableView* const table = window.table();
    window.controller().setPaths_(manyRecords(500, 300));
    table->doItemsLayout();
    table->verticalScrollBar()->setValue(100 * table->verticalHeader()->defaultSectionSize() + 5);
    QModelIndex const seen = table->indexAt({20, 40});
    QString const path = seen.siblingAtColumn(PathColumn).data().toString();
    int const place = table->visualRect(seen).top();
    window.controller().setPaths_(manyRecords(400, 400));
    QModelIndex const now = table->indexAt({20, 40});
    EXPECT_EQ(now.siblingAtColumn(PathColumn).data().toString(), path);
    EXPECT_EQ(table->visualRect(now).top(), place);
}

TEST(MainWindow, KeepsTheSelectedRowInItsPlaceWhileRowsArriveAbove) {
    LoadedWindow const window;
    QTableView* const table = window.table();
    window.controller().setPaths_(manyRecords(500, 300));
    window.selectRow(3);
    int const place = table->visualRect(table->currentIndex()).top();
    window.controller().setPaths_(manyRecords(400, 400));
    EXPECT_EQ(table->visualRect(table->currentIndex()).top(), place);
}

TEST(MainWindow, StaysAtTheTopWhileNothingIsSelected) {
    LoadedWindow const window;
    window.controller().setPaths_(manyRecords(500, 300));
    window.controller().setPaths_(manyRecords(400, 400));
    EXPECT_EQ(window.table()->verticalScrollBar()->value(), 0);
}

TEST(MainWindow, FiltersByPathAndVersionWhateverTheCase) {
    LoadedWindow const window;
    window.controller().setPaths_(versions({{"/Downloads/x", "1.9"}, {"/opt/x", "2.1"}}));
    auto* const field = window.find<QLineEdit>("filterField");
    field->setText("DOWN");
    EXPECT_EQ(window.column(PathColumn), QStringList("/Downloads/x"));
    field->setText("2.1");
    EXPECT_EQ(window.column(PathColumn), QStringList("/opt/x"));
    field->setText("%@ 'quoted\\");
    EXPECT_EQ(window.column(PathColumn), QStringList());
    EXPECT_TRUE(window.find<QWidget>("filteredPanel")->isVisible());
    QTest::mouseClick(window.find<QAbstractButton>("clearFilterButton"), Qt::LeftButton);
    EXPECT_EQ(window.column(PathColumn).size(), 2);
    EXPECT_FALSE(window.find<QWidget>("filteredPanel")->isVisible());
}

TEST(MainWindow, DisablesActionsThatTheControllerDoesNotKnow) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/a"}));
    window.selectRow(0);
    EXPECT_TRUE(window.action("scanAction")->isEnabled());
    EXPECT_FALSE(window.action("logOutAction")->isEnabled());
    EXPECT_FALSE(window.action("swapIconAction")->isEnabled());
    EXPECT_FALSE(window.action("logOutAction")->toolTip().isEmpty());
}

TEST(MainWindow, EnablesActionsOnOneCopyForExactlyOne) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/a", "/b"}));
    QAction const* const trash = window.action("trashAction");
    EXPECT_FALSE(trash->isEnabled());
    window.selectRow(0);
    EXPECT_TRUE(trash->isEnabled());
    window.table()->selectAll();
    EXPECT_FALSE(trash->isEnabled());
}

TEST(MainWindow, SendsActionsFromButtonsAndKeys) {
    LoadedWindow const window;
    window.controller().messages().clear();
    window.action("scanAction")->trigger();
    QTest::keyClick(window.table(), Qt::Key_F5);
    QTest::keyClick(window.table(), Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(window.controller().messages(), std::vector<std::string>(3, "scanAction:"));
    window.controller().query().setIsGathering_(YES);
    QTest::keyClick(window.table(), Qt::Key_Escape);
    EXPECT_EQ(window.controller().messages().back(), "stopAction:");
}

TEST(MainWindow, DeletesTextAndNoCopyWithTheDeleteKeyInTheFilter) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/a"}));
    window.selectRow(0);
    window.controller().messages().clear();
    auto* const field = window.find<QLineEdit>("filterField");
    QTest::keyClick(window.table(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(field->hasFocus());
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClick(field, Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_TRUE(window.controller().messages().empty());
}

TEST(MainWindow, LogsAnExceptionInAnActionAndContinues) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/a"}));
    window.selectRow(0);
    LoggedLines const lines;
    QTest::keyClick(window.table(), Qt::Key_Delete);
    EXPECT_EQ(window.controller().messages().back(), "trashAction:");
    EXPECT_TRUE(lines.contains("NSRangeException"));
    EXPECT_EQ(window.column(PathColumn), QStringList("/a"));
}

TEST(MainWindow, ShowsThatItSearchesAndWhatCouldNotBeRead) {
    LoadedWindow const window;
    auto* const busy = window.find<QWidget>("busyIndicator");
    auto* const unreadable = window.find<QPushButton>("unreadableButton");
    EXPECT_FALSE(busy->isVisible());
    EXPECT_FALSE(unreadable->isVisible());
    window.controller().query().setIsGathering_(YES);
    window.controller().query().setUnreadableFolderCount_(2);
    EXPECT_TRUE(busy->isVisible());
    EXPECT_EQ(unreadable->text(), "2 folders could not be read");
    EXPECT_TRUE(unreadable->isVisible());
    window.controller().query().setUnreadableFolderCount_(1);
    EXPECT_EQ(unreadable->text(), "1 folder could not be read");
    window.controller().query().setIsGathering_(NO);
    EXPECT_FALSE(busy->isVisible());
}

TEST(MainWindow, CountsTheCopies) {
    LoadedWindow const window;
    auto* const label = window.find<QLabel>("countLabel");
    EXPECT_EQ(label->text(), "No copies");
    window.controller().setPaths_(makeRecords({"/a"}));
    EXPECT_EQ(label->text(), "1 copy");
    window.controller().setPaths_(makeRecords({"/a", "/b"}));
    EXPECT_EQ(label->text(), "2 copies");
}

TEST(MainWindow, SaysWhatWasSearchedWhenNothingWasFound) {
    LoadedWindow const window;
    window.controller().setPaths_(NSSet::set());
    auto* const panel = window.find<QWidget>("emptyPanel");
    EXPECT_TRUE(runUntil([&] { return panel->isVisible(); }));
    window.controller().query().setIsGathering_(YES);
    EXPECT_FALSE(panel->isVisible());
    window.controller().query().setIsGathering_(NO);
    window.controller().setPaths_(makeRecords({"/a"}));
    EXPECT_FALSE(panel->isVisible());
}

TEST(MainWindow, ShowsTheLastLineOfTheLogAsPlainText) {
    LoadedWindow const window;
    auto* const label = window.find<QLabel>("logLabel");
    NSLog("Could not <b>move</b> to trash.");
    EXPECT_TRUE(runUntil([&] { return label->text() == "Could not <b>move</b> to trash."; }));
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
}

TEST(MainWindow, MakesABeepVisible) {
    LoadedWindow const window;
    auto* const label = window.find<QLabel>("logLabel");
    QColor const before = label->palette().color(QPalette::Window);
    NSBeep();
    EXPECT_TRUE(runUntil([&] { return label->palette().color(QPalette::Window) != before; }));
    EXPECT_TRUE(runUntil([&] { return label->text() == label->property("beepText").toString(); }));
    EXPECT_TRUE(runUntil([&] { return label->palette().color(QPalette::Window) == before; }));
}

TEST(MainWindow, ShowsHostileNamesAsPlainText) {
    LoadedWindow const window;
    NSMutableSet const records = NSMutableSet::set();
    std::string const rightToLeftOverride{'\xE2', '\x80', '\xAE'};
    std::string const path = "/caf\xE9/<b>x</b>\n\x1b[31m" + rightToLeftOverride;
    records.addObject_(makeRecord(NSString::stringWithFileSystemRepresentation_(path.c_str())));
    window.controller().setPaths_(records);
    QModelIndex const cell = window.table()->model()->index(0, PathColumn);
    QString const shown = QStringLiteral(u"/caf\uFFFD/<b>x</b>\uFFFD\uFFFD[31m\uFFFD");
    EXPECT_EQ(cell.data().toString(), shown);
    QTextDocument tip;
    tip.setHtml(cell.data(Qt::ToolTipRole).toString());
    EXPECT_EQ(tip.toPlainText(), shown);
}

TEST(MainWindow, WidensTheVersionColumnForALongVersion) {
    LoadedWindow const window;
    QHeaderView const* const header = window.table()->horizontalHeader();
    QString const text = "2010.12.31-beta (20101231)";
    window.controller().setPaths_(versions({{"/a", text.toUtf8().constData()}}));
    EXPECT_GT(header->sectionSize(VersionColumn), header->fontMetrics().horizontalAdvance(text));
    EXPECT_EQ(header->length(), window.table()->viewport()->width());
}

TEST(MainWindow, KeepsThePathReadableInASmallWindow) {
    LoadedWindow const window;
    window.widget()->resize(window.widget()->minimumSize());
    QCoreApplication::processEvents();
    QHeaderView const* const header = window.table()->horizontalHeader();
    EXPECT_GT(header->sectionSize(PathColumn), 20 * header->fontMetrics().averageCharWidth());
}

} // namespace
} // namespace mac::test
