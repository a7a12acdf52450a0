#include "tests/appkit/LoadedWindow.h"
#include <QHeaderView>
#include <QScrollBar>
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
        showAllBut(window, -1);
        table->doItemsLayout();
    }

    int rowHeight() const { return table->verticalHeader()->defaultSectionSize(); }

    LoadedWindow const window;
    QTableView* const table = window.table();
    QScrollBar* const scrollBar = table->verticalScrollBar();
};

TEST_F(TablePlace, StaysWhenTheSelectedRowGoes) {
    scrollBar->setValue(95 * rowHeight() + 5);
    window.selectRow(100);
    int const before = scrollBar->value();
    showAllBut(window, 100);
    EXPECT_EQ(scrollBar->value(), before);
    EXPECT_EQ(currentPath(window), pathOfRow(101));
    EXPECT_FALSE(table->selectionModel()->hasSelection());
}

TEST_F(TablePlace, StaysWhenTheFirstRowInSightGoes) {
    scrollBar->setValue(95 * rowHeight() + 5);
    QModelIndex const second = table->indexAt({20, rowHeight()});
    QString const path = second.siblingAtColumn(PathColumn).data().toString();
    int const place = table->visualRect(second).top();
    showAllBut(window, 95);
    QModelIndex const now = table->indexAt({20, rowHeight()});
    EXPECT_EQ(now.siblingAtColumn(PathColumn).data().toString(), path);
    EXPECT_EQ(table->visualRect(now).top(), place);
}

TEST_F(TablePlace, StaysAtTheTopWhenTheRowOfTheKeyboardGoesOutOfSight) {
    table->selectionModel()->setCurrentIndex(table->model()->index(200, 0), QItemSelectionModel::NoUpdate);
    scrollBar->setValue(0);
    showAllBut(window, 200);
    EXPECT_EQ(scrollBar->value(), 0);
    EXPECT_EQ(currentPath(window), pathOfRow(201));
}

TEST_F(TablePlace, LeavesTheKeyboardToTheRowAboveWhenTheLastOneGoes) {
    window.selectRow(RowCount - 1);
    showAllBut(window, RowCount - 1);
    EXPECT_EQ(currentPath(window), pathOfRow(RowCount - 2));
}

} // namespace
} // namespace mac::test
