#include "tests/platform/appkit/interface/LoadedWindow.h"
#include <QHeaderView>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

// What the user looks at, and the row of the keyboard, while rows go.

namespace mac::test {
namespace {

constexpr int RowCount = 300;

QString pathOfRow(int row) { return QString("/copies/%1").arg(row, 4, 10, QChar('0')); }

// The row of each path is its number, less those left out before it.
void showAllBut(LoadedWindow const& window, int leftOut) {
    NSMutableSet const records = NSMutableSet::set();
    for (int row = 0; row < RowCount; ++row) {
        if (row != leftOut)
            records.addObject_(makeRecord(NSString::stringWithUTF8String_(pathOfRow(row).toStdString())));
    }
    window.controller().setPaths_(records);
}

QString currentPath(LoadedWindow const& window) {
    return window.table()->currentIndex().siblingAtColumn(PathColumn).data().toString();
}

class TablePlace : public testing::Test {
protected:
    TablePlace() {
        showAllBut(m_window, -1);
        m_table->doItemsLayout();
    }

    int rowHeight() const { return m_table->verticalHeader()->defaultSectionSize(); }

    LoadedWindow const m_window;
    QTableView* const m_table = m_window.table();
    QScrollBar* const m_scrollBar = m_table->verticalScrollBar();
};

TEST_F(TablePlace, StaysWhenTheSelectedRowGoes) {
    m_scrollBar->setValue(95 * rowHeight() + 5);
    m_window.selectRow(100);
    int const before = m_scrollBar->value();
    showAllBut(m_window, 100);
    EXPECT_EQ(m_scrollBar->value(), before);
    EXPECT_EQ(currentPath(m_window), pathOfRow(101));
    EXPECT_FALSE(m_table->selectionModel()->hasSelection());
}

TEST_F(TablePlace, StaysWhenTheFirstRowInSightGoes) {
    m_scrollBar->setValue(95 * rowHeight() + 5);
    QModelIndex const second = m_table->indexAt({20, rowHeight()});
    QString const path = second.siblingAtColumn(PathColumn).data().toString();
    int const place = m_table->visualRect(second).top();
    showAllBut(m_window, 95);
    QModelIndex const now = m_table->indexAt({20, rowHeight()});
    EXPECT_EQ(now.siblingAtColumn(PathColumn).data().toString(), path);
    EXPECT_EQ(m_table->visualRect(now).top(), place);
}

TEST_F(TablePlace, StaysAtTheTopWhenTheRowOfTheKeyboardGoesOutOfSight) {
    m_table->selectionModel()->setCurrentIndex(m_table->model()->index(200, 0), QItemSelectionModel::NoUpdate);
    m_scrollBar->setValue(0);
    showAllBut(m_window, 200);
    EXPECT_EQ(m_scrollBar->value(), 0);
    EXPECT_EQ(currentPath(m_window), pathOfRow(201));
}

TEST_F(TablePlace, LeavesTheKeyboardToTheRowAboveWhenTheLastOneGoes) {
    m_window.selectRow(RowCount - 1);
    showAllBut(m_window, RowCount - 1);
    EXPECT_EQ(currentPath(m_window), pathOfRow(RowCount - 2));
}

// The view marks the first row when it gets the keyboard, while others may come above it.
TEST_F(TablePlace, LeavesTheKeyboardOnTheFirstRowUntilTheUserChoosesOne) {
    showAllBut(m_window, 0);
    m_table->selectionModel()->setCurrentIndex(m_table->model()->index(0, 0), QItemSelectionModel::NoUpdate);
    showAllBut(m_window, -1);
    EXPECT_EQ(currentPath(m_window), pathOfRow(0));
}

TEST_F(TablePlace, KeepsTheKeyboardOnTheRowThatTheUserChose) {
    showAllBut(m_window, 0);
    m_window.selectRow(0);
    showAllBut(m_window, -1);
    EXPECT_EQ(currentPath(m_window), pathOfRow(1)) << "it is selected";
    m_table->clearSelection();
    showAllBut(m_window, 0);
    m_table->selectionModel()->setCurrentIndex(m_table->model()->index(4, 0), QItemSelectionModel::NoUpdate);
    showAllBut(m_window, -1);
    EXPECT_EQ(currentPath(m_window), pathOfRow(5)) << "arrow keys went there";
}

TEST_F(TablePlace, GoesToTheFirstAndTheLastRowByHomeAndEnd) {
    m_window.selectRow(100);
    QTest::keyClick(m_table, Qt::Key_End);
    EXPECT_EQ(currentPath(m_window), pathOfRow(RowCount - 1));
    EXPECT_EQ(m_table->selectionModel()->selectedRows().size(), 1);
    QTest::keyClick(m_table, Qt::Key_Home);
    EXPECT_EQ(currentPath(m_window), pathOfRow(0));
    EXPECT_TRUE(m_table->selectionModel()->isRowSelected(0));
    QTest::keyClick(m_table, Qt::Key_Down);
    QTest::keyClick(m_table, Qt::Key_Down);
    QTest::keyClick(m_table, Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(m_table->selectionModel()->selectedRows().size(), 3);
}

} // namespace
} // namespace mac::test
