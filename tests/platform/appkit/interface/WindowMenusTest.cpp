#include "platform/appkit/interface/HelpPanels.h"
#include "platform/appkit/views/NSApplication.h"
#include "platform/foundation/running/EventLoop.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/RunUntil.h"
#include <QApplication>
#include <QContextMenuEvent>
#include <QDialog>
#include <QHeaderView>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

// The menu bar, and the commands that the window carries out by itself.

namespace mac::test {
namespace {

void collectCommands(QMenu const* menu, QList<QAction*>& commands) {
    for (QAction* const action : menu->actions()) {
        if (action->menu())
            collectCommands(action->menu(), commands);
        else if (!action->isSeparator())
            commands.append(action);
    }
}

class WindowMenus : public testing::Test {
protected:
    QList<QAction*> commands() const {
        QList<QAction*> all;
        for (QAction* const menu : m_window.find<QMenuBar>("menuBar")->actions())
            collectCommands(menu->menu(), all);
        return all;
    }
    QLineEdit* field() const { return m_window.find<QLineEdit>("filterField"); }
    void press(QWidget* widget, QKeySequence const& keys) const {
        QTest::keyClick(widget, keys[0].key(), keys[0].keyboardModifiers());
    }
    QString keysOf(QString const& command) const {
        for (CommandKeys const& entry : commandKeysOf(m_window.widget())) {
            if (entry.command == command) return entry.keys;
        }
        return "none";
    }

    LoadedWindow const m_window{};
};

TEST_F(WindowMenus, StandInTheBarOfAMainWindow) {
    auto const* const window = qobject_cast<QMainWindow*>(m_window.widget());
    ASSERT_TRUE(window);
    EXPECT_EQ(window->menuWidget(), m_window.find<QMenuBar>("menuBar"));
}

TEST_F(WindowMenus, HaveEveryActionOfTheWindowOnce) {
    QList<QAction*> const found = commands();
    QSet<QAction*> const unique(found.begin(), found.end());
    EXPECT_EQ(unique.size(), found.size());
    int named = 0;
    for (QAction* const action : m_window.widget()->findChildren<QAction*>(Qt::FindDirectChildrenOnly)) {
        if (action->objectName().isEmpty() || action->menu()) continue;
        ++named;
        EXPECT_TRUE(unique.contains(action)) << action->objectName().toStdString();
    }
    EXPECT_GE(named, 25);
}

TEST_F(WindowMenus, ShowTheKeysPeopleKnow) {
    for (auto const& [name, keys] : {std::pair("terminateAction", "Ctrl+Q"),
                                     {"closeAction", "Ctrl+W"},
                                     {"copyPathsAction", "Ctrl+C"},
                                     {"selectAllAction", "Ctrl+A"},
                                     {"focusFilterAction", "Ctrl+F"},
                                     {"scanAction", "F5"},
                                     {"trashAction", "Del"},
                                     {"deleteAction", "Shift+Del"},
                                     {"undoAction", "Ctrl+Z"},
                                     {"shortcutsAction", "F1"}})
        EXPECT_EQ(m_window.action(name)->shortcut(), QKeySequence(keys)) << name;
}

// Where the menu opens that the key opens in the widget; empty without one.
QRect menuOpenedBy(QWidget* widget, std::function<void()> const& key) {
    QRect place;
    QTimer closing;
    QObject::connect(&closing, &QTimer::timeout, [&] {
        QWidget* const menu = QApplication::activePopupWidget();
        if (!menu) return;
        place = menu->geometry();
        menu->close();
    });
    closing.start();
    widget->setFocus();
    key();
    // Some menus are open while their event is handled, others stay open behind it.
    EXPECT_TRUE(runUntil([&] { return !place.isNull(); }));
    return place;
}

TEST_F(WindowMenus, OpenTheTablesBesideTheRowOfTheKeyboardByShiftF10AndByTheMenuKey) {
    m_window.controller().setPaths_(makeRecords({"/a", "/b", "/c", "/d"}));
    m_window.selectRow(2);
    QTableView* const table = m_window.table();
    QRect const row = table->visualRect(table->currentIndex());
    QPoint const top = table->viewport()->mapToGlobal(row.topLeft());
    auto const shiftF10 = [&] { press(table, QKeySequence("Shift+F10")); };
    // The display's own part of the toolkit makes this event of the key, without a place of use.
    auto const menuKey = [&] {
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), table->mapToGlobal(QPoint()));
        QApplication::sendEvent(table, &event);
    };
    for (std::function<void()> const& key : {std::function<void()>(shiftF10), std::function<void()>(menuKey)}) {
        QRect const menu = menuOpenedBy(table, key);
        EXPECT_GE(menu.top(), top.y());
        EXPECT_LE(menu.top(), top.y() + row.height());
    }
}

TEST_F(WindowMenus, OpenThatOfTheFilterByShiftF10) {
    menuOpenedBy(field(), [&] { press(field(), QKeySequence("Shift+F10")); });
}

TEST_F(WindowMenus, CloseTheWindowByItsKey) {
    press(m_window.table(), QKeySequence("Ctrl+W"));
    EXPECT_FALSE(m_window.widget()->isVisible());
}

TEST_F(WindowMenus, EndTheProgramByItsKey) {
    NSApplication const application = NSApplication::sharedApplication();
    bool isEnded = false;
    performOnMainRunLoop([&] {
        press(m_window.table(), QKeySequence("Ctrl+Q"));
        isEnded = isEnding(application);
    });
    application.run();
    EXPECT_TRUE(isEnded);
}

TEST_F(WindowMenus, SelectAllRowsByTheirKeyAndAreDisabledWithoutAny) {
    QAction const* const all = m_window.action("selectAllAction");
    EXPECT_FALSE(all->isEnabled());
    EXPECT_TRUE(all->toolTip().endsWith("No copies are shown"));
    m_window.controller().setPaths_(makeRecords({"/a", "/b"}));
    EXPECT_TRUE(all->isEnabled());
    press(m_window.find<QWidget>("copyToolBar"), QKeySequence("Ctrl+A"));
    EXPECT_EQ(m_window.controller().pathsArrayController().selectedObjects().count(), 2U);
}

TEST_F(WindowMenus, SelectTheTextOfAFieldThatHasTheKeyboard) {
    m_window.controller().setPaths_(makeRecords({"/a", "/b"}));
    field()->setFocus();
    QTest::keyClicks(field(), "a");
    press(field(), QKeySequence("Ctrl+A"));
    EXPECT_EQ(field()->selectedText(), "a");
    EXPECT_EQ(m_window.controller().pathsArrayController().selectedObjects().count(), 0U);
}

TEST_F(WindowMenus, ClearTheFilterByEscapeBeforeItStopsTheSearch) {
    m_window.controller().setPaths_(makeRecords({"/a", "/b"}));
    m_window.controller().query().setIsGathering_(YES);
    m_window.controller().messages().clear();
    QAction const* const clear = m_window.action("clearFilterAction");
    EXPECT_FALSE(clear->isEnabled());
    for (QWidget* const place : {static_cast<QWidget*>(field()), static_cast<QWidget*>(m_window.table())}) {
        field()->setText("b");
        EXPECT_TRUE(clear->isEnabled());
        place->setFocus();
        press(place, QKeySequence("Esc"));
        EXPECT_EQ(field()->text(), "");
        EXPECT_TRUE(m_window.controller().messages().empty());
        EXPECT_FALSE(clear->isEnabled());
    }
    press(m_window.table(), QKeySequence("Esc"));
    EXPECT_EQ(m_window.controller().messages(), std::vector<std::string>{"stopAction:"});
}

TEST_F(WindowMenus, OfferTheOrderOfEachColumn) {
    m_window.controller().setPaths_(makeRecords({"/b", "/a"}));
    QList<QAction*> const orders = m_window.find<QMenu>("sortMenu")->actions();
    ASSERT_EQ(orders.size(), m_window.table()->model()->columnCount());
    EXPECT_TRUE(orders[VersionColumn]->isChecked());
    orders[PathColumn]->trigger();
    EXPECT_EQ(m_window.table()->horizontalHeader()->sortIndicatorSection(), PathColumn);
    EXPECT_TRUE(orders[PathColumn]->isChecked());
    EXPECT_FALSE(orders[VersionColumn]->isChecked());
    EXPECT_EQ(m_window.column(PathColumn), QStringList({"/a", "/b"}));
    orders[PathColumn]->trigger();
    EXPECT_TRUE(orders[PathColumn]->isChecked()) << "the other way round";
    EXPECT_EQ(m_window.column(PathColumn), QStringList({"/b", "/a"}));
}

TEST_F(WindowMenus, ShowThePageOfKeysAsTheActionsHaveThem) {
    EXPECT_EQ(keysOf("Scan"), "F5, Ctrl+R");
    EXPECT_EQ(keysOf("Reveal"), "Ctrl+Return, Return");
    EXPECT_EQ(keysOf("Clear Filter"), "Esc");
    EXPECT_EQ(keysOf("Path"), "Ctrl+2");
    EXPECT_EQ(keysOf("Log Out"), "none");
    m_window.action("scanAction")->setShortcut(QKeySequence("F6"));
    EXPECT_EQ(keysOf("Scan"), "F6");
    for (QAction const* const action : commands()) {
        if (action->shortcut().isEmpty()) continue;
        QString const keys = keysOf(QString(action->text()).remove('&'));
        EXPECT_TRUE(keys.contains(action->shortcut().toString(QKeySequence::NativeText))) << keys.toStdString();
    }
}

TEST_F(WindowMenus, OpenThePageOfKeysOnceAndCloseItByEscape) {
    press(m_window.table(), QKeySequence("F1"));
    auto* panel = m_window.find<QDialog>("shortcutsPanel");
    ASSERT_TRUE(panel);
    EXPECT_FALSE(panel->isModal());
    auto const* const table = panel->findChild<QTableWidget*>("shortcutsTable");
    EXPECT_EQ(table->rowCount(), static_cast<int>(commandKeysOf(m_window.widget()).size()));
    EXPECT_GE(table->rowCount(), 20);
    EXPECT_EQ(table->item(0, 1)->text(), "Scan");
    m_window.action("shortcutsAction")->trigger();
    EXPECT_EQ(m_window.widget()->findChildren<QDialog*>("shortcutsPanel").size(), 1);
    QTest::keyClick(panel, Qt::Key_Escape);
    EXPECT_TRUE(runUntil([&] { return !m_window.find<QDialog>("shortcutsPanel"); }));
}

TEST_F(WindowMenus, SayWhatTheProgramIs) {
    m_window.action("aboutAction")->trigger();
    auto* const panel = m_window.find<QMessageBox>("aboutPanel");
    ASSERT_TRUE(panel);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_FALSE(panel->isModal());
    EXPECT_FALSE(panel->text().isEmpty());
    EXPECT_EQ(panel->textFormat(), Qt::PlainText);
    panel->close();
    EXPECT_TRUE(runUntil([&] { return !m_window.find<QMessageBox>("aboutPanel"); }));
}

TEST(InterfaceFileCommands, AreDisabledAndLoggedWithoutAReceiver) {
    LoggedLines const lines;
    auto const file = loadForm(formWith(stringProperty("controllerClass", "AppController"),
                                        "<action name=\"lost\">" + stringProperty("command", "nobody singLoudly:") +
                                            "</action>" + "<action name=\"unknown\">" +
                                            stringProperty("command", "window singLoudly:") + "</action>"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(lines.contains("\"lost\""));
    EXPECT_FALSE(file->widget()->findChild<QAction*>("lost")->isEnabled());
    EXPECT_FALSE(file->widget()->findChild<QAction*>("unknown")->isEnabled());
}

} // namespace
} // namespace mac::test
