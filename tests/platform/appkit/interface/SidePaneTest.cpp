#include "platform/appkit/interface/SidePane.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/RunUntil.h"
#include <QCoreApplication>
#include <QHeaderView>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

class SidePanes : public testing::Test {
protected:
    SidePanes() {
        m_window.controller().setPaths_(makeRecords({
            "/home/someone/Downloads/Old Versions/1.9/Mirror Frame.app",
            "/home/someone/.local/share/Trash/files/Mirror Frame.app",
            "/home/someone/Applications/Mirror Frame.app",
            "/home/someone/Documents/For Anna/Mirror Frame.app",
        }));
        pane()->show();
    }

    QScrollArea* pane() const { return m_window.find<QScrollArea>("detailsPanel"); }
    void resize(QSize const& size) const {
        m_window.widget()->resize(size);
        // What a change of width asks for comes with the next turns of the event loop.
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
        EXPECT_EQ(m_window.widget()->size(), size);
    }
    QRect place(QWidget const* widget) const { return {widget->mapTo(m_window.widget(), QPoint()), widget->size()}; }
    bool isBeside() const { return place(pane()).left() >= place(m_window.table()).right(); }
    bool isBelow() const { return place(pane()).top() >= place(m_window.table()).bottom(); }

    LoadedWindow const m_window{};
};

TEST_F(SidePanes, LeaveAllColumnsInSightInWindowsOfAnyUsualSize) {
    for (QSize const& size : {QSize(1000, 620), QSize(800, 573), QSize(1280, 700), QSize(1000, 620)}) {
        resize(size);
        EXPECT_LE(m_window.table()->horizontalHeader()->length(), m_window.table()->viewport()->width())
            << size.width();
        EXPECT_EQ(m_window.table()->horizontalScrollBar()->maximum(), 0) << size.width();
        EXPECT_NE(isBeside(), isBelow()) << size.width();
    }
}

TEST_F(SidePanes, StandBesideTheTableWhileThereIsRoomAndBelowItElse) {
    resize({1400, 700});
    EXPECT_TRUE(isBeside());
    int const width = pane()->width();
    resize(m_window.widget()->minimumSize());
    EXPECT_TRUE(isBelow());
    EXPECT_EQ(place(pane()).width(), place(m_window.table()).width());
    EXPECT_GT(m_window.table()->viewport()->height(), 2 * m_window.table()->rowHeight(0));
    EXPECT_GT(pane()->height(), 50);
    resize({1400, 700});
    EXPECT_TRUE(isBeside());
    EXPECT_EQ(pane()->width(), width);
}

TEST_F(SidePanes, MakeRoomForColumnsThatGrow) {
    resize({1400, 700});
    ASSERT_TRUE(isBeside());
    std::string const deep = "/home/someone/" + std::string(90, 'n') + "/Mirror Frame.app";
    m_window.controller().setPaths_(makeRecords({deep.c_str(), "/home/someone/b/Mirror Frame.app"}));
    EXPECT_TRUE(runUntil([&] { return isBelow(); }));
    EXPECT_EQ(m_window.table()->horizontalScrollBar()->maximum(), 0);
}

TEST_F(SidePanes, StandOnTheOtherSideWhereTextGoesRightToLeft) {
    m_window.widget()->setLayoutDirection(Qt::RightToLeft);
    resize({1400, 700});
    EXPECT_LE(place(pane()).right(), place(m_window.table()).left());
    resize({800, 573});
    EXPECT_TRUE(isBelow());
}

TEST(InterfaceFileSidePanes, LogATableThatDoesNotExist) {
    LoggedLines const lines;
    auto const file = loadForm(
        formWith(stringProperty("controllerClass", "AppController"),
                 R"(<widget class="QScrollArea" name="pane">)" + stringProperty("beside", "nowhere") + "</widget>"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(lines.contains("\"nowhere\""));
}

} // namespace
} // namespace mac::test
