#include "platform/appkit/interface/ApplicationInstance.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/Environment.h"
#include <QApplication>
#include <QDialog>
#include <QMainWindow>
#include <QTest>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(RaiseWindows, BringsMinimizedOnesBack) {
    needApplication();
    QMainWindow window;
    window.showMinimized();
    ASSERT_TRUE(window.isMinimized());
    EXPECT_TRUE(raiseWindows());
    EXPECT_FALSE(window.isMinimized());
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window, 60'000));
}

TEST(RaiseWindows, AnswersWhetherThereIsAWindow) {
    needApplication();
    EXPECT_FALSE(raiseWindows());
    QMainWindow const hidden;
    EXPECT_FALSE(raiseWindows());
    EXPECT_FALSE(hidden.isVisible());
    QWidget tip(nullptr, Qt::ToolTip);
    tip.show();
    EXPECT_FALSE(raiseWindows()) << "a tool tip is no window to work with";
}

TEST(RaiseWindows, ActivatesTheModalOneLast) {
    needApplication();
    QMainWindow window;
    QDialog question;
    question.setModal(true);
    question.show();
    window.show();
    EXPECT_TRUE(raiseWindows());
    EXPECT_TRUE(QTest::qWaitForWindowActive(&question, 60'000));
}

TEST(RaiseWindows, LeavesTheTokenToNoProgramThatIsStartedLater) {
    needApplication();
    EnvironmentVariable const none("XDG_ACTIVATION_TOKEN", std::nullopt);
    QMainWindow window;
    window.show();
    EXPECT_TRUE(raiseWindows({.activation = "token-7"}));
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

} // namespace
} // namespace mac::test
