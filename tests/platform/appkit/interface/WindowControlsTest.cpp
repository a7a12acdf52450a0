#include "tests/platform/appkit/interface/LoadedWindow.h"
#include <QCoreApplication>
#include <QImage>
#include <QSet>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

bool showsSomething(QIcon const& icon) {
    QImage const image = icon.pixmap(16, 16).toImage();
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y).alpha() > 0) return true;
        }
    }
    return false;
}

TEST(WindowControls, OffersEveryActionAsAButtonWithTextIconAndToolTipAndInTheContextMenu) {
    LoadedWindow const window;
    QList<QAction*> onButtons;
    for (QToolButton* const button : window.widget()->findChildren<QToolButton*>()) {
        if (button->defaultAction()) onButtons.append(button->defaultAction());
    }
    int count = 0;
    for (QAction* const action : window.widget()->findChildren<QAction*>()) {
        // What shows and hides a pane stands in the menu of the view alone.
        if (!action->property("action").isValid() || action->isCheckable()) continue;
        SCOPED_TRACE(action->objectName().toStdString());
        ++count;
        EXPECT_TRUE(onButtons.contains(action));
        EXPECT_TRUE(window.table()->actions().contains(action));
        EXPECT_FALSE(action->text().isEmpty());
        EXPECT_NE(action->toolTip(), action->text());
        EXPECT_TRUE(showsSomething(action->icon()));
        bool const isWithoutShortcut =
            action->objectName() == "logOutAction" || action->objectName() == "quitFinderAction";
        EXPECT_EQ(action->shortcut().isEmpty(), isWithoutShortcut);
        EXPECT_FALSE(isWithoutShortcut && action->text().contains('&'));
    }
    EXPECT_EQ(count, 16);
    EXPECT_EQ(window.table()->contextMenuPolicy(), Qt::ActionsContextMenu);
}

TEST(WindowControls, HandsTheKeyboardToTheMoreActionsOfABarBehindItsButtons) {
    LoadedWindow const window;
    for (QToolBar* const bar : window.widget()->findChildren<QToolBar*>()) {
        auto const* const more = bar->findChild<QToolButton*>("qt_toolbar_ext_button");
        QWidget const* const last = bar->widgetForAction(bar->actions().last());
        EXPECT_EQ(more->previousInFocusChain(), last) << bar->objectName().toStdString();
    }
}

TEST(WindowControls, GivesNoKeyToTwoActions) {
    LoadedWindow const window;
    QStringList keys;
    for (QAction const* const action : window.widget()->findChildren<QAction*>()) {
        for (QKeySequence const& key : action->shortcuts())
            keys.append(key.toString());
        QKeySequence const mnemonic = QKeySequence::mnemonic(action->text());
        if (!mnemonic.isEmpty()) keys.append(mnemonic.toString());
    }
    EXPECT_GE(keys.size(), 12) << "the keys of the actions that have some";
    QStringList unique = keys;
    unique.removeDuplicates();
    EXPECT_EQ(unique, keys);
}

TEST(WindowControls, NamesEveryControlForAssistiveTechnology) {
    LoadedWindow const window;
    int count = 0;
    for (QWidget* const widget : window.widget()->findChildren<QWidget*>()) {
        if (widget->focusPolicy() == Qt::NoFocus || widget->objectName().startsWith("qt_")) continue;
        ++count;
        auto* const button = qobject_cast<QAbstractButton*>(widget);
        bool const isNamed = !widget->accessibleName().isEmpty() || (button && !button->text().isEmpty());
        EXPECT_TRUE(isNamed) << widget->metaObject()->className() << " " << widget->objectName().toStdString();
    }
    EXPECT_GT(count, 14) << "more than the actions' buttons";
}

TEST(WindowControls, ReachesEveryButtonByTab) {
    LoadedWindow const window;
    QSet<QWidget*> reached;
    for (QWidget* widget = window.table(); !reached.contains(widget); widget = widget->nextInFocusChain())
        reached.insert(widget);
    int count = 0;
    for (QToolButton* const button : window.widget()->findChildren<QToolButton*>()) {
        bool const isAction = button->defaultAction() && button->defaultAction()->property("action").isValid();
        if (!isAction) continue;
        ++count;
        EXPECT_TRUE(reached.contains(button));
        EXPECT_TRUE(button->focusPolicy() & Qt::TabFocus) << button->text().toStdString();
    }
    EXPECT_EQ(count, 16);
    // The panel over an empty table comes a moment later, and takes the keyboard.
    bool const isCovered = window.find<QWidget>("emptyPanel")->isVisible();
    EXPECT_TRUE(window.find<QWidget>(isCovered ? "emptyScanButton" : "pathsTable")->hasFocus());
}

TEST(WindowControls, KeepsActionsThatFindNoRoomWithinReach) {
    LoadedWindow const window;
    window.widget()->resize(window.widget()->minimumSize());
    QCoreApplication::processEvents();
    QList<QToolButton*> const overflows = window.widget()->findChildren<QToolButton*>("qt_toolbar_ext_button");
    EXPECT_EQ(overflows.size(), 2);
    for (QToolButton const* const overflow : overflows) {
        EXPECT_TRUE(overflow->isVisible());
        EXPECT_TRUE(overflow->focusPolicy() & Qt::TabFocus);
        EXPECT_TRUE(showsSomething(overflow->icon()));
        EXPECT_EQ(overflow->accessibleName(), "More actions");
    }
}

} // namespace
} // namespace mac::test
