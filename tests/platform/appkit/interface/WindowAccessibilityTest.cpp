#include "platform/foundation/running/Log.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/RunUntil.h"
#include <QAccessible>
#include <QAccessibleTableCellInterface>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

// What assistive technology learns of the window, and where the keyboard is.

namespace mac::test {
namespace {

class WindowAccessibility : public testing::Test {
protected:
    static QAccessibleInterface* accessible(QObject* object) { return QAccessible::queryAccessibleInterface(object); }
    QString nameOf(char const* widget) const {
        return accessible(m_window.find<QWidget>(widget))->text(QAccessible::Name);
    }
    QWidget* keyboard() const { return m_window.widget()->focusWidget(); }
    bool isShown(char const* panel) const {
        return runUntil([&] { return m_window.find<QWidget>(panel)->isVisible(); });
    }

    LoadedWindow const m_window{};
};

TEST_F(WindowAccessibility, TellsThatItIsAWindow) {
    EXPECT_EQ(accessible(m_window.widget())->role(), QAccessible::Window);
    EXPECT_EQ(accessible(m_window.widget())->text(QAccessible::Name), "Framekeeper");
}

TEST_F(WindowAccessibility, TellsTheTextOfEveryLabel) {
    m_window.controller().setPaths_(makeRecords({"/a", "/b"}));
    m_window.controller().query().setUnreadableFolderCount_(3);
    EXPECT_EQ(nameOf("countLabel"), "2 copies");
    int count = 0;
    for (QLabel* const label : m_window.widget()->findChildren<QLabel*>()) {
        if (label->text().isEmpty() || label->objectName() == "logLabel") continue;
        ++count;
        EXPECT_EQ(accessible(label)->text(QAccessible::Name), label->text()) << label->objectName().toStdString();
    }
    EXPECT_GE(count, 7);
}

TEST_F(WindowAccessibility, TellsTheStatusAsItChanges) {
    auto* const line = m_window.find<QLabel>("logLabel");
    EXPECT_EQ(accessible(line)->role(), QAccessible::StatusBar);
    // What was logged while the window was made goes with the next action.
    m_window.action("scanAction")->trigger();
    EXPECT_TRUE(runUntil([&] { return nameOf("logLabel") == "Last message"; }));
    QString const text = "Could not move " + QString("very ").repeated(100) + "long";
    NSLog(NSString::stringWithUTF8String_(text.toStdString()));
    EXPECT_TRUE(runUntil([&] { return nameOf("logLabel") == text; })) << "whole, though it is cut on the screen";
}

TEST_F(WindowAccessibility, TellsRowColumnAndStateOfEachCell) {
    m_window.controller().setPaths_(makeRecords({"/a", "/b"}));
    m_window.selectRow(1);
    QAccessibleTableInterface* const table = accessible(m_window.table())->tableInterface();
    ASSERT_TRUE(table);
    EXPECT_EQ(table->rowCount(), 2);
    EXPECT_EQ(table->columnDescription(ExistsColumn), "Exists");
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            QAccessibleInterface* const cell = table->cellAt(row, column);
            ASSERT_TRUE(cell);
            EXPECT_EQ(cell->tableCellInterface()->rowIndex(), row);
            EXPECT_EQ(cell->tableCellInterface()->columnIndex(), column);
            EXPECT_EQ(cell->state().selected != 0, row == 1);
            EXPECT_EQ(cell->text(QAccessible::Name), m_window.table()->model()->index(row, column).data().toString());
        }
    }
}

TEST_F(WindowAccessibility, KeepsTheKeyboardOffRowsThatAreCovered) {
    m_window.controller().setPaths_(NSSet::set());
    ASSERT_TRUE(isShown("emptyPanel"));
    EXPECT_EQ(keyboard(), m_window.find<QWidget>("emptyScanButton"));
    EXPECT_EQ(m_window.table()->focusPolicy(), Qt::NoFocus);
    m_window.controller().query().setIsGathering_(YES);
    ASSERT_TRUE(isShown("searchingPanel"));
    EXPECT_EQ(keyboard(), m_window.find<QWidget>("searchingPanel"));
    m_window.controller().setPaths_(makeRecords({"/a"}));
    EXPECT_EQ(keyboard(), m_window.table());
    EXPECT_EQ(m_window.table()->focusPolicy(), Qt::StrongFocus);
}

TEST_F(WindowAccessibility, LeavesTheKeyboardInTheFilterWhenItMatchesNothing) {
    m_window.controller().setPaths_(makeRecords({"/a"}));
    auto* const field = m_window.find<QLineEdit>("filterField");
    field->setFocus();
    QTest::keyClicks(field, "nothing");
    ASSERT_TRUE(isShown("filteredPanel"));
    EXPECT_EQ(keyboard(), field);
    QTest::keyClick(field, Qt::Key_Tab);
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_NE(keyboard(), m_window.table());
    m_window.find<QPushButton>("clearFilterButton")->setFocus();
    QTest::keyClick(keyboard(), Qt::Key_Space);
    EXPECT_EQ(keyboard(), field) << "the button gives it back to the field that it empties";
    EXPECT_EQ(m_window.column(PathColumn).size(), 1);
}

TEST_F(WindowAccessibility, NeverPutsTheKeyboardOnWhatIsHiddenOrCovered) {
    m_window.controller().setPaths_(NSSet::set());
    ASSERT_TRUE(isShown("emptyPanel"));
    QSet<QWidget*> reached;
    while (!reached.contains(keyboard())) {
        reached.insert(keyboard());
        EXPECT_TRUE(keyboard()->isVisible());
        EXPECT_NE(keyboard(), m_window.table());
        QTest::keyClick(keyboard(), Qt::Key_Tab);
    }
    EXPECT_GE(reached.size(), 4) << "the scan, the filter, the panel's button and others that are enabled";
}

} // namespace
} // namespace mac::test
