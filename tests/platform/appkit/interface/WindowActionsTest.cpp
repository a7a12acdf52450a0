#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Beep.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/RunUntil.h"
#include <QApplication>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QTextDocument>
#include <QToolButton>
#include <gtest/gtest.h>

// How the window sends its actions: what a disabled one says, what happens while one takes its time, and what the
// status line tells afterwards.

namespace mac::test {
namespace {

class WindowActions : public testing::Test {
protected:
    QLabel* status() const { return m_window.find<QLabel>("logLabel"); }
    bool says(QString const& line) const {
        return runUntil([&] { return status()->accessibleDescription() == line; });
    }
    QToolButton* button(char const* action) const {
        for (QToolButton* const button : m_window.widget()->findChildren<QToolButton*>()) {
            if (button->defaultAction() == m_window.action(action)) return button;
        }
        return nullptr;
    }
    // Why the action is disabled, as its button says it; empty for one that is not.
    QString reason(char const* action) const {
        QToolButton const* const shown = button(action);
        QString const reason = shown->accessibleDescription();
        EXPECT_EQ(shown->isEnabled(), reason.isEmpty());
        EXPECT_EQ(shown->toolTip().endsWith(reason), true);
        EXPECT_FALSE(shown->toolTip().startsWith(reason) && !reason.isEmpty()) << "what it does comes first";
        return reason;
    }
    void show(std::initializer_list<char const*> flags) const {
        NSMutableDictionary const record = makeRecord("/a");
        for (char const* const flag : flags)
            record.setValue_forKey_(NSNumber::numberWithBool_(YES), NSString::stringWithUTF8String_(flag));
        m_window.controller().setPaths_(NSSet::setWithObject_(record));
        m_window.selectRow(0);
    }
    std::vector<std::string>& messages() const { return m_window.controller().messages(); }
    bool linkIsShown() const { return m_window.find<QPushButton>("undoLink")->isVisible(); }

    LoadedWindow const m_window{};
};

TEST_F(WindowActions, SayWhyTheyAreDisabled) {
    EXPECT_EQ(reason("quitAction"), "Select one copy");
    EXPECT_EQ(reason("trashAction"), "Select one copy");
    EXPECT_EQ(reason("revealAction"), "Select a copy");
    EXPECT_EQ(reason("undoAction"), "Nothing to undo");
    EXPECT_EQ(reason("stopAction"), "No search is running");
    show({});
    EXPECT_EQ(reason("quitAction"), "Not running");
    EXPECT_EQ(reason("trashAction"), "");
    EXPECT_EQ(reason("revealAction"), "");
    show({"isRunning"});
    EXPECT_EQ(reason("quitAction"), "");
    m_window.controller().query().setIsGathering_(YES);
    EXPECT_EQ(reason("stopAction"), "");
}

// Else a key that is held a little too long deletes the copies below, too.
TEST_F(WindowActions, AreNotDoneAgainByAKeyThatIsHeldDown) {
    show({});
    m_window.table()->setFocus();
    auto const press = [&](bool isRepeated) {
        messages().clear();
        QTest::simulateEvent(m_window.table(), true, Qt::Key_Delete, Qt::NoModifier, QString(), isRepeated);
        return messages();
    };
    EXPECT_EQ(press(false), std::vector<std::string>{"trashAction:"});
    EXPECT_EQ(press(true), std::vector<std::string>{});
    for (QAction const* const action : m_window.widget()->findChildren<QAction*>()) {
        bool const isSent = action->property("action").isValid();
        EXPECT_FALSE(isSent && action->autoRepeat()) << action->objectName().toStdString();
    }
}

TEST_F(WindowActions, AreDisabledForACopyThatIsGone) {
    show({});
    NSMutableDictionary const record = makeRecord("/a");
    record.setValue_forKey_(NSNumber::numberWithBool_(NO), "exists");
    m_window.controller().setPaths_(NSSet::setWithObject_(record));
    EXPECT_EQ(reason("trashAction"), "Not on the disk");
}

TEST_F(WindowActions, FollowTheSelectedRecord) {
    show({"isRunning"});
    EXPECT_EQ(reason("quitAction"), "");
    show({});
    EXPECT_EQ(reason("quitAction"), "Not running");
    m_window.table()->clearSelection();
    EXPECT_EQ(reason("quitAction"), "Select one copy");
}

TEST_F(WindowActions, AreSentByADoubleClickAndTheReturnKey) {
    show({});
    messages().clear();
    QPoint const place = m_window.table()->visualRect(m_window.table()->model()->index(0, 1)).center();
    QTest::mouseClick(m_window.table()->viewport(), Qt::LeftButton, {}, place);
    EXPECT_TRUE(messages().empty()) << "one click selects";
    QTest::mouseDClick(m_window.table()->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(messages(), std::vector<std::string>(1, "revealAction:"));
    QTest::keyClick(m_window.table(), Qt::Key_Return);
    QTest::keyClick(m_window.table(), Qt::Key_Enter);
    EXPECT_EQ(messages(), std::vector<std::string>(3, "revealAction:"));
    m_window.table()->clearSelection();
    QTest::keyClick(m_window.table(), Qt::Key_Return);
    EXPECT_EQ(messages().size(), 3U);
    QTest::keyClick(m_window.find<QLineEdit>("filterField"), Qt::Key_Return);
    EXPECT_EQ(messages().size(), 3U);
}

TEST_F(WindowActions, AreSentByADoubleClickOfTheLeftButtonAlone) {
    show({});
    messages().clear();
    QPoint const place = m_window.table()->visualRect(m_window.table()->model()->index(0, 1)).center();
    for (Qt::MouseButton const button : {Qt::MiddleButton, Qt::RightButton, Qt::BackButton}) {
        QTest::mouseClick(m_window.table()->viewport(), button, {}, place);
        QTest::mouseDClick(m_window.table()->viewport(), button, {}, place);
        EXPECT_TRUE(messages().empty()) << button;
    }
    QTest::mouseClick(m_window.table()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(m_window.table()->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(messages(), std::vector<std::string>(1, "revealAction:"));
}

TEST_F(WindowActions, ShowWhatTheyWaitFor) {
    show({"isRunning"});
    QString line;
    bool isBusy = false;
    m_window.controller().setWhileQuitting([&] {
        line = status()->text();
        isBusy = QGuiApplication::overrideCursor() != nullptr;
    });
    m_window.action("quitAction")->trigger();
    EXPECT_EQ(line, "Waiting for the copy to quit…");
    EXPECT_TRUE(isBusy);
    EXPECT_FALSE(QGuiApplication::overrideCursor());
    EXPECT_TRUE(says("")) << "it went well";
}

TEST_F(WindowActions, AreDroppedWhenTheyWereAskedForWhileAnotherTookItsTime) {
    show({"isRunning"});
    m_window.controller().query().setIsGathering_(YES);
    messages().clear();
    m_window.controller().setWhileQuitting([&] {
        for (char const* const name : {"scanAction", "quitAction", "revealAction", "stopAction"})
            QMetaObject::invokeMethod(m_window.action(name), "trigger", Qt::QueuedConnection);
        QMetaObject::invokeMethod(m_window.find<QPushButton>("emptyScanButton"), "click", Qt::QueuedConnection);
        for (QEvent::Type const type : {QEvent::KeyPress, QEvent::KeyRelease})
            QCoreApplication::postEvent(m_window.find<QLineEdit>("filterField"),
                                        new QKeyEvent(type, Qt::Key_A, Qt::NoModifier, "a"));
    });
    m_window.action("quitAction")->trigger();
    EXPECT_EQ(messages(), (std::vector<std::string>{"quitAction:", "stopAction:"}));
    EXPECT_EQ(m_window.find<QLineEdit>("filterField")->text(), "a") << "typed text is kept";
    m_window.action("scanAction")->trigger();
    EXPECT_EQ(messages().back(), "scanAction:") << "later ones are sent again";
}

TEST_F(WindowActions, LetTheWindowBeClosedWhileAnotherTookItsTime) {
    show({"isRunning"});
    m_window.controller().setWhileQuitting(
        [&] { QMetaObject::invokeMethod(m_window.widget(), "close", Qt::QueuedConnection); });
    m_window.action("quitAction")->trigger();
    EXPECT_FALSE(m_window.widget()->isVisible());
}

TEST_F(WindowActions, TakeAnOldErrorAwayWhenTheySucceed) {
    show({"isRunning"});
    m_window.controller().setWhileQuitting([] {
        NSBeep();
        NSLog("Could not quit process.");
    });
    m_window.action("quitAction")->trigger();
    EXPECT_TRUE(says("Could not quit process."));
    m_window.controller().setWhileQuitting({});
    m_window.action("quitAction")->trigger();
    EXPECT_TRUE(says(""));
}

TEST_F(WindowActions, KeepAnErrorThatTheyCausedThemselves) {
    NSLog("An old line.");
    EXPECT_TRUE(says("An old line."));
    show({"isRunning"});
    m_window.controller().setWhileQuitting([] { NSBeep(); });
    m_window.action("quitAction")->trigger();
    EXPECT_TRUE(says(status()->property("beepText").toString()));
}

TEST_F(WindowActions, OfferAnUndoBesideTheNoticeOfWhatTheyDid) {
    EXPECT_FALSE(linkIsShown());
    m_window.controller().tell("Moved to the trash.", true);
    EXPECT_TRUE(says("Moved to the trash."));
    EXPECT_TRUE(linkIsShown());
    EXPECT_EQ(reason("undoAction"), "");
    messages().clear();
    m_window.find<QPushButton>("undoLink")->click();
    EXPECT_EQ(messages(), std::vector<std::string>(1, "undoAction:"));
    EXPECT_TRUE(says(""));
    EXPECT_FALSE(linkIsShown());
}

TEST_F(WindowActions, OfferNoUndoBesideAnythingElse) {
    m_window.controller().tell("Moved to the trash.", true);
    EXPECT_TRUE(says("Moved to the trash."));
    NSLog("Could not quit process.");
    EXPECT_TRUE(says("Could not quit process."));
    EXPECT_FALSE(linkIsShown());
    m_window.controller().tell("Put back.", false);
    EXPECT_TRUE(says("Put back."));
    EXPECT_FALSE(linkIsShown());
}

TEST_F(WindowActions, ShowTheSameNoticeAgain) {
    m_window.controller().tell("Moved to the trash.", true);
    EXPECT_TRUE(says("Moved to the trash."));
    m_window.action("scanAction")->trigger();
    EXPECT_TRUE(says(""));
    m_window.controller().tell("Moved to the trash.", true);
    EXPECT_TRUE(says("Moved to the trash."));
    EXPECT_TRUE(linkIsShown());
}

TEST_F(WindowActions, AreUndoneByTheKeyUnlessTextIsEdited) {
    m_window.controller().tell("Moved to the trash.", true);
    messages().clear();
    QTest::keyClick(m_window.table(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(messages(), std::vector<std::string>(1, "undoAction:"));
    auto* const field = m_window.find<QLineEdit>("filterField");
    field->setFocus();
    QTest::keyClicks(field, "abc");
    QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(messages().size(), 1U);
    EXPECT_EQ(field->text(), "");
}

TEST_F(WindowActions, StandInMenus) {
    auto* const bar = m_window.find<QMenuBar>("menuBar");
    ASSERT_TRUE(bar);
    QStringList titles;
    QList<QAction*> offered;
    for (QAction* const menu : bar->actions()) {
        titles.append(QString(menu->text()).remove('&'));
        offered.append(menu->menu()->actions());
    }
    EXPECT_EQ(titles, QStringList({"File", "Edit", "Copy", "View", "Help"}));
    for (QAction* const action : m_window.widget()->findChildren<QAction*>()) {
        bool const isMissing = action->property("action").isValid() && !offered.contains(action);
        EXPECT_FALSE(isMissing) << action->objectName().toStdString();
    }
}

TEST_F(WindowActions, SayThatADeletionCannotBeUndone) {
    EXPECT_TRUE(m_window.action("deleteAction")->toolTip().contains("cannot be undone"));
}

TEST(InterfaceFileRequirements, TakeAReasonFromTheValueAndPutItBehindTheToolTip) {
    auto const file = loadForm(formWith(
        stringProperty("controllerClass", "AppController"),
        R"(<widget class="QPushButton" name="button"><property name="toolTip"><string>Scans</string></property>)" +
            stringProperty("action", "scanAction:") + listProperty("enabledWhen", {"!notice=No: %@ &lt;b&gt;"}) +
            "</widget>"));
    ASSERT_TRUE(file);
    auto* const button = file->widget()->findChild<QPushButton*>("button");
    EXPECT_TRUE(button->isEnabled());
    EXPECT_EQ(button->toolTip(), "Scans");
    as<FakeController>(file->controller()).tell("busy", false);
    EXPECT_FALSE(button->isEnabled());
    EXPECT_EQ(button->accessibleDescription(), "No: busy <b>");
    EXPECT_EQ(button->toolTip(), "Scans\nNo: busy <b>");
    EXPECT_FALSE(Qt::mightBeRichText(button->toolTip()));
}

TEST(InterfaceFileRequirements, LogAValueTransformerThatDoesNotExist) {
    LoggedLines const lines;
    auto const file =
        loadForm(formWith(stringProperty("controllerClass", "AppController"),
                          R"(<widget class="QPushButton" name="button">)" + stringProperty("action", "scanAction:") +
                              listProperty("enabledWhen", {"notice|Nothing=Why"}) + "</widget>"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(lines.contains("\"Nothing\""));
    EXPECT_FALSE(file->widget()->findChild<QPushButton*>("button")->isEnabled());
}

} // namespace
} // namespace mac::test
