#include "platform/appkit/interface/RememberedSize.h"
#include "platform/appkit/interface/TableViewBody.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/preferences/NSUserDefaults.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/Environment.h"
#include "tests/support/RunUntil.h"
#include "tests/support/TemporaryFolder.h"
#include <QGuiApplication>
#include <QHeaderView>
#include <QScreen>
#include <gtest/gtest.h>
#include <memory>

// What the window keeps from one start to the next.

namespace mac::test {
namespace {

class WindowMemory : public testing::Test {
protected:
    WindowMemory() {
        needApplication();
        forget();
    }
    ~WindowMemory() override { forget(); }

    static NSUserDefaults defaults() { return NSUserDefaults::standardUserDefaults(); }
    static void forget() {
        defaults().removeObjectForKey_(FrameKey);
        defaults().removeObjectForKey_(ZoomedKey);
        defaults().removeObjectForKey_(ColumnsKey);
    }
    static std::unique_ptr<LoadedWindow> open() {
        auto window = std::make_unique<LoadedWindow>(LoadedWindow::Settings::Kept);
        QCoreApplication::processEvents();
        return window;
    }
    static int width(LoadedWindow const& window, int section) {
        return window.table()->horizontalHeader()->sectionSize(section);
    }
};

TEST_F(WindowMemory, GivesTheNextWindowTheSize) {
    QSize const wanted(700, 500);
    {
        auto const window = open();
        EXPECT_NE(window->widget()->size(), wanted);
        window->widget()->resize(wanted);
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(open()->widget()->size(), wanted);
}

TEST_F(WindowMemory, OpensTheNextWindowMaximizedAndKeepsItsOrdinarySize) {
    QSize const wanted(700, 500);
    {
        auto const window = open();
        window->widget()->resize(wanted);
        ASSERT_TRUE(runUntil([] { return defaults().objectForKey_(FrameKey) != nil; }));
        window->widget()->showMaximized();
        QCoreApplication::processEvents();
        ASSERT_NE(window->widget()->size(), wanted);
    }
    EXPECT_TRUE(open()->widget()->isMaximized());
    EXPECT_TRUE(open()->widget()->isMaximized()) << "it stays so";
    defaults().removeObjectForKey_(ZoomedKey);
    EXPECT_EQ(open()->widget()->size(), wanted);
}

TEST_F(WindowMemory, ForgetsThatTheWindowWasMaximizedWhenItNoLongerIs) {
    defaults().setBool_forKey_(YES, ZoomedKey);
    auto const window = open();
    ASSERT_TRUE(window->widget()->isMaximized());
    window->widget()->showNormal();
    QCoreApplication::processEvents();
    EXPECT_FALSE(defaults().boolForKey_(ZoomedKey));
    EXPECT_FALSE(open()->widget()->isMaximized());
}

// As window managers do that send the new size first.
TEST_F(WindowMemory, TakesNoSizeOfAMaximizedWindowForItsOwn) {
    {
        auto const window = open();
        window->widget()->resize(window->widget()->screen()->availableGeometry().size());
        QCoreApplication::processEvents();
        window->widget()->setWindowState(Qt::WindowMaximized);
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(defaults().objectForKey_(FrameKey) == nil);
    EXPECT_TRUE(defaults().boolForKey_(ZoomedKey));
}

TEST_F(WindowMemory, KeepsASizeThatLastsWhileTheWindowIsOpen) {
    auto const window = open();
    window->widget()->resize(700, 500);
    EXPECT_TRUE(runUntil([] { return defaults().objectForKey_(FrameKey) != nil; }));
}

TEST_F(WindowMemory, FitsTheWindowIntoTheScreenThatIsLeftWhenItsOwnGoesAway) {
    auto const window = open();
    QSize const screen = window->widget()->screen()->availableGeometry().size();
    window->widget()->resize(screen.width() + 200, screen.height() + 200);
    ASSERT_GT(window->widget()->width(), screen.width());
    Q_EMIT qGuiApp->screenRemoved(window->widget()->screen());
    EXPECT_TRUE(runUntil([&] { return window->widget()->width() <= screen.width(); }));
    EXPECT_LE(window->widget()->height(), screen.height());
    // A maximised one is the window manager's.
    window->widget()->showMaximized();
    QCoreApplication::processEvents();
    QSize const maximized = window->widget()->size();
    Q_EMIT qGuiApp->screenRemoved(window->widget()->screen());
    QCoreApplication::processEvents();
    EXPECT_TRUE(window->widget()->isMaximized());
    EXPECT_EQ(window->widget()->size(), maximized);
}

TEST_F(WindowMemory, KeepsNothingThatTheUserDidNotChange) {
    open();
    EXPECT_TRUE(defaults().objectForKey_(ZoomedKey) == nil);
    EXPECT_TRUE(defaults().objectForKey_(FrameKey) == nil);
    EXPECT_TRUE(defaults().objectForKey_(ColumnsKey) == nil);
}

TEST_F(WindowMemory, KeepsAWindowWithinItsScreen) {
    defaults().setObject_forKey_("0 0 9000 9000 0 0 10000 10000 ", FrameKey);
    auto const window = open();
    QSize const screen = window->widget()->screen()->availableGeometry().size();
    EXPECT_LE(window->widget()->width(), screen.width());
    EXPECT_LE(window->widget()->height(), screen.height());
}

TEST_F(WindowMemory, LeavesRoomForATitleBarOnTheScreen) {
    EXPECT_EQ(sizeWithin({1000, 620}, {800, 600}, 20), QSize(800, 580));
    EXPECT_EQ(sizeWithin({700, 500}, {800, 600}, 20), QSize(700, 500));
    EXPECT_EQ(sizeWithin({700, 500}, {}, 20), QSize(700, 500)) << "without a screen";
}

TEST_F(WindowMemory, LeavesOutAnInvalidSize) {
    QSize const usual = open()->widget()->size();
    for (char const* const damaged :
         {"", "nonsense", "1 2", "0 0 -5 300", "0 0 0 0", "0 0 1e9 300", "0 0 99999999999 300", "0 0 500 999999"}) {
        defaults().setObject_forKey_(NSString::stringWithUTF8String_(damaged), FrameKey);
        EXPECT_EQ(open()->widget()->size(), usual) << damaged;
    }
    defaults().setObject_forKey_(NSArray::arrayWithObject_("0 0 700 500"), FrameKey);
    EXPECT_EQ(open()->widget()->size(), usual);
}

TEST_F(WindowMemory, GivesTheNextWindowTheWidthsThatTheUserChose) {
    int wanted = 0;
    {
        auto const window = open();
        wanted = width(*window, VersionColumn) + 33;
        window->table()->horizontalHeader()->resizeSection(VersionColumn, wanted);
        window->table()->horizontalHeader()->resizeSection(PathColumn, 321);
    }
    auto const next = open();
    EXPECT_EQ(width(*next, VersionColumn), wanted);
    EXPECT_EQ(width(*next, PathColumn), 321);
    next->action("resetColumnsAction")->trigger();
    EXPECT_NE(width(*next, VersionColumn), wanted);
    EXPECT_TRUE(defaults().objectForKey_(ColumnsKey) == nil);
}

TEST_F(WindowMemory, KeepsANarrowerWidthThatTheUserChoseWhenTheOrderChanges) {
    auto const window = open();
    int const usual = width(*window, VersionColumn);
    window->table()->horizontalHeader()->resizeSection(VersionColumn, 5);
    int const chosen = width(*window, VersionColumn);
    ASSERT_LT(chosen, usual);
    window->clickHeader(PathColumn);
    EXPECT_EQ(width(*window, VersionColumn), chosen);
}

TEST_F(WindowMemory, NeedsTheWidthThatTheUserChoseForThePaths) {
    auto const window = open();
    QTableView const* const table = window->table();
    table->horizontalHeader()->resizeSection(PathColumn, 2'000);
    int const frame = table->width() - table->viewport()->width();
    NSTableView const view = window->controller().pathsTableView();
    EXPECT_EQ(bodyOf(view)->widthNeeded(), table->horizontalHeader()->length() + frame);
    int const chosen = bodyOf(view)->widthNeeded();
    window->action("resetColumnsAction")->trigger();
    EXPECT_LT(bodyOf(view)->widthNeeded(), chosen);
}

TEST_F(WindowMemory, LeavesOutInvalidWidths) {
    int const usual = width(*open(), VersionColumn);
    auto const expectUsual = [&](id const& damaged) {
        defaults().setObject_forKey_(damaged, ColumnsKey);
        EXPECT_EQ(width(*open(), VersionColumn), usual);
    };
    expectUsual("nonsense");
    expectUsual(NSArray::arrayWithObject_(NSNumber::numberWithInt_(300)));
    expectUsual(NSDictionary::dictionaryWithObject_forKey_("wide", "version"));
    expectUsual(NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithInt_(-300), "version"));
    expectUsual(NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithDouble_(1e300), "version"));
    expectUsual(NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithInt_(300), "a column of another time"));
}

TEST_F(WindowMemory, MakesNoColumnTooNarrowForItsTitle) {
    defaults().setObject_forKey_(NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithInt_(2), "running"),
                                 ColumnsKey);
    auto const window = open();
    QHeaderView const* const header = window->table()->horizontalHeader();
    QString const title = window->table()->model()->headerData(RunningColumn, Qt::Horizontal).toString();
    EXPECT_GT(width(*window, RunningColumn), header->fontMetrics().horizontalAdvance(title));
}

TEST_F(WindowMemory, OpensTheWindowWhereSettingsCannotBeKept) {
    QSize const usual = open()->widget()->size();
    TemporaryFolder const folder;
    {
        EnvironmentVariable const config("XDG_CONFIG_HOME", folder.makeFile("no folder", ""));
        NSUserDefaults::resetStandardUserDefaults();
        auto const window = open();
        EXPECT_EQ(window->widget()->size(), usual);
        window->widget()->resize(700, 500);
        window->table()->horizontalHeader()->resizeSection(PathColumn, 321);
        QCoreApplication::processEvents();
        EXPECT_EQ(width(*window, PathColumn), 321);
        forget();
    }
    NSUserDefaults::resetStandardUserDefaults();
}

} // namespace
} // namespace mac::test
