#include "platform/appkit/views/NSAlert.h"
#include "platform/appkit/views/NSApplication.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/ObjectTexts.h"
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

QDialog& shownAlert() { return *qobject_cast<QDialog*>(QApplication::activeModalWidget()); }

QPushButton* alertButton(QString const& name) {
    for (QPushButton* const button : shownAlert().findChildren<QPushButton*>())
        if (button->accessibleName() == name) return button;
    return nullptr;
}

// Presses a key as the window system would: on what has the keyboard.
void type(Qt::Key key) {
    QWidget* const focused = shownAlert().focusWidget();
    QTest::keyClick(focused ? focused : &shownAlert(), key);
}

NSAlert alertWithButtons(std::initializer_list<char const*> titles) {
    needApplication();
    NSAlert const alert = NSAlert::alloc().init();
    for (char const* const title : titles)
        alert.addButtonWithTitle_(utf8(title));
    return alert;
}

// What the alert answers if a person does this once it is there.
NSInteger answerTo(NSAlert const& alert, std::function<void()> const& person) {
    QTimer::singleShot(0, [&] {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&shownAlert(), 60'000));
        person();
        // Ends a dialog that was not answered, so that the test does not hang.
        if (QDialog* const left = qobject_cast<QDialog*>(QApplication::activeModalWidget())) left->done(0);
    });
    return alert.runModal();
}

TEST(NSAlert, AnswersTheTagOfThePressedButton) {
    NSAlert const alert = alertWithButtons({"One", "Two", "Three", "Four"});
    EXPECT_EQ(answerTo(alert, [] { alertButton("One")->click(); }), NSAlertFirstButtonReturn);
    EXPECT_EQ(answerTo(alert, [] { alertButton("Two")->click(); }), NSAlertSecondButtonReturn);
    EXPECT_EQ(answerTo(alert, [] { alertButton("Three")->click(); }), NSAlertThirdButtonReturn);
    EXPECT_EQ(answerTo(alert, [] { alertButton("Four")->click(); }), 1003);
    as<NSButton>(alert.buttons().objectAtIndex_(1)).setTag_(-7);
    EXPECT_EQ(answerTo(alert, [] { alertButton("Two")->click(); }), -7);
}

TEST(NSAlert, ReturnPressesTheFirstButtonAndEscapeCancel) {
    NSAlert const alert = alertWithButtons({"Go", "Cancel"});
    EXPECT_EQ(answerTo(alert, [] { type(Qt::Key_Return); }), NSAlertFirstButtonReturn);
    EXPECT_EQ(answerTo(alert, [] { type(Qt::Key_Enter); }), NSAlertFirstButtonReturn);
    EXPECT_EQ(answerTo(alert, [] { type(Qt::Key_Escape); }), NSAlertSecondButtonReturn);
}

TEST(NSAlert, WithoutKeyEquivalentsIsAnsweredByNoKeyButSpace) {
    NSAlert const alert = alertWithButtons({"Accept", "Don't Accept"});
    alert.setInformativeText_("Details");
    for (id const& button : alert.buttons())
        as<NSButton>(button).setKeyEquivalent_("");
    NSInteger const answer = answerTo(alert, [] {
        for (Qt::Key const key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape, Qt::Key_Space}) {
            type(key);
            ASSERT_TRUE(QApplication::activeModalWidget()) << key << " before a button was chosen";
        }
        shownAlert().close();
        ASSERT_TRUE(shownAlert().isVisible()) << "closing does nothing";
        for (char const* const name : {"Accept", "Don't Accept"}) {
            type(Qt::Key_Tab);
            ASSERT_EQ(shownAlert().focusWidget(), alertButton(name));
            for (Qt::Key const key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
                type(key);
                ASSERT_TRUE(QApplication::activeModalWidget()) << key << " on a button";
            }
        }
        type(Qt::Key_Space);
    });
    EXPECT_EQ(answer, NSAlertSecondButtonReturn);
}

TEST(NSAlert, ShowsItsTextsAsTheyStand) {
    NSAlert const alert = alertWithButtons({"A & B", "Other"});
    alert.setMessageText_("<b>Title</b>");
    alert.setInformativeText_("line\nline &amp;");
    alert.setAlertStyle_(NSCriticalAlertStyle);
    answerTo(alert, [] {
        std::vector<QString> texts;
        for (QLabel const* const label : shownAlert().findChildren<QLabel*>()) {
            if (!label->text().isEmpty()) texts.push_back(label->text());
            EXPECT_NE(label->textFormat(), Qt::RichText);
        }
        EXPECT_EQ(texts, (std::vector<QString>{"<b>Title</b>", "line\nline &amp;"}));
        EXPECT_EQ(shownAlert().windowTitle(), "<b>Title</b>");
        EXPECT_GT(alertButton("A & B")->x(), alertButton("Other")->x()) << "the first one stands rightmost";
        alertButton("A & B")->click();
    });
    EXPECT_EQ(text(alert.messageText()) + text(alert.informativeText()), "<b>Title</b>line\nline &amp;");
    EXPECT_EQ(alert.alertStyle(), NSCriticalAlertStyle);
}

TEST(NSAlert, WithoutButtonsHasOne) {
    NSAlert const alert = alertWithButtons({});
    EXPECT_EQ(answerTo(alert, [] { alertButton("OK")->click(); }), NSAlertFirstButtonReturn);
    EXPECT_EQ(alert.buttons().count(), 1U);
}

TEST(NSAlert, FitsOnTheScreenWhateverItSays) {
    NSAlert const alert = alertWithButtons({"Go"});
    alert.setInformativeText_(
        NSString("words ").stringByPaddingToLength_withString_startingAtIndex_(60000, "word ", 0));
    answerTo(alert, [] {
        EXPECT_LT(shownAlert().height(), shownAlert().screen()->availableGeometry().height());
        type(Qt::Key_Return);
    });
}

TEST(NSAlert, DoesNotEndTheApplicationWithTheLastWindow) {
    NSAlert const alert = alertWithButtons({"Go"});
    bool isClosed = false;
    QObject connection;
    QObject::connect(qApp, &QGuiApplication::lastWindowClosed, &connection, [&] { isClosed = true; });
    answerTo(alert, [] { type(Qt::Key_Return); });
    QApplication::processEvents();
    EXPECT_FALSE(isClosed);
}

TEST(NSAlert, EndsWithoutAButtonWhenTheApplicationEnds) {
    NSAlert const alert = alertWithButtons({"Go"});
    NSApplication const application = NSApplication::sharedApplication();
    NSInteger answer = 0;
    QTimer::singleShot(0, [&] { answer = answerTo(alert, [&] { application.terminate_(nil); }); });
    application.run();
    EXPECT_EQ(answer, NSRunAbortedResponse);
}

TEST(NSAlertDeathTest, IsNotShownWithoutADisplay) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            for (char const* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
                ::unsetenv(name);
            NSAlert const alert = NSAlert::alloc().init();
            alert.setMessageText_("Attention");
            std::_Exit(alert.runModal() == NSRunAbortedResponse ? 0 : 1);
        },
        testing::ExitedWithCode(0), "The alert \"Attention\" cannot be shown: there is no display");
}

TEST(NSAlert, OfNilIsNotShown) {
    NSAlert const alert(nil);
    EXPECT_TRUE(alert.addButtonWithTitle_("A") == nil);
    EXPECT_TRUE(alert.buttons() == nil);
    alert.setMessageText_("a");
    alert.setAlertStyle_(NSCriticalAlertStyle);
    EXPECT_EQ(alert.alertStyle(), NSWarningAlertStyle);
    EXPECT_EQ(alert.runModal(), NSRunAbortedResponse);
    NSButton(nil).setTag_(3);
    EXPECT_EQ(NSButton(nil).tag(), 0);
    EXPECT_TRUE(NSButton(nil).keyEquivalent() == nil);
}

} // namespace
} // namespace mac::test
