#include "platform/appkit/views/NSBox.h"
#include "platform/appkit/views/ViewBody.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/ObjectTexts.h"
#include <QGroupBox>
#include <QPushButton>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

NSView viewWithFrame(float x, float y, float width, float height) {
    return NSView::alloc().initWithFrame_(NSMakeRect(x, y, width, height));
}

// The frame of a subview at (10, 20), 30 wide and 40 high, after its superview has grown from 100 to 200 both ways.
NSRect frameAfterGrowth(NSUInteger mask) {
    NSView const above = viewWithFrame(5, 5, 100, 100);
    NSView const view = viewWithFrame(10, 20, 30, 40);
    view.setAutoresizingMask_(mask);
    above.addSubview_(view);
    above.setFrame_(NSMakeRect(0, 0, 200, 200));
    return view.frame();
}

TEST(NSView, IsResizedWithItsSuperviewAsItsMaskSays) {
    EXPECT_EQ(frameAfterGrowth(NSViewNotSizable), NSMakeRect(10, 20, 30, 40));
    EXPECT_EQ(frameAfterGrowth(NSViewWidthSizable | NSViewHeightSizable), NSMakeRect(10, 20, 130, 140));
    EXPECT_EQ(frameAfterGrowth(NSViewMinXMargin | NSViewMinYMargin), NSMakeRect(110, 120, 30, 40));
    EXPECT_EQ(frameAfterGrowth(NSViewMaxXMargin | NSViewMaxYMargin), NSMakeRect(10, 20, 30, 40));
    EXPECT_EQ(frameAfterGrowth(NSViewMinXMargin | NSViewWidthSizable | NSViewMaxXMargin), NSMakeRect(20, 20, 60, 40));
}

TEST(NSView, LiesInOneSuperview) {
    NSView const first = viewWithFrame(0, 0, 10, 10);
    NSView const second = viewWithFrame(0, 0, 10, 10);
    NSView const view = viewWithFrame(0, 0, 1, 1);
    first.addSubview_(view);
    EXPECT_TRUE(isSame(view.superview(), first));
    second.addSubview_(view);
    EXPECT_TRUE(isSame(view.superview(), second));
    EXPECT_EQ(first.subviews().count(), 0U);
    EXPECT_EQ(second.subviews().count(), 1U);
    view.removeFromSuperview();
    EXPECT_TRUE(view.superview() == nil);
    EXPECT_EQ(second.subviews().count(), 0U);
}

TEST(NSView, OfNilHasNothing) {
    NSView const view(nil);
    view.setFrame_(NSMakeRect(1, 1, 1, 1));
    view.setAutoresizingMask_(3);
    view.addSubview_(viewWithFrame(0, 0, 1, 1));
    view.removeFromSuperview();
    viewWithFrame(0, 0, 1, 1).addSubview_(nil);
    EXPECT_EQ(view.frame(), NSZeroRect);
    EXPECT_EQ(view.autoresizingMask(), 0U);
    EXPECT_TRUE(view.subviews() == nil);
    EXPECT_TRUE(view.superview() == nil);
}

// Widgets are made after the application.
class WithApplication : public testing::Test {
protected:
    WithApplication() { needApplication(); }
};

// A group of widgets as an interface file makes it, with a button in it.
class ShownBox : public WithApplication {
protected:
    ShownBox() {
        m_window.resize(400, 300);
        m_group = new QGroupBox("Options", &m_window);
        m_group->setGeometry(20, 50, 200, 100);
        m_button = new QPushButton("Go", m_group);
        m_button->setGeometry(10, 60, 80, 30);
        m_box = as<NSBox>(viewOfWidget(m_group));
    }

    QWidget m_window{};
    QGroupBox* m_group{};
    QPushButton* m_button{};
    NSBox m_box{};
};

TEST_F(ShownBox, IsPlacedFromTheLowerEdge) {
    EXPECT_EQ(m_box.frame(), NSMakeRect(20, 150, 200, 100));
    m_box.setFrame_(NSMakeRect(20, 163, 200, 87));
    EXPECT_EQ(m_group->geometry(), QRect(20, 50, 200, 87));
    EXPECT_EQ(m_button->geometry(), QRect(10, 47, 80, 30)) << "as far from the lower edge as before";
    EXPECT_EQ(m_box.frame(), NSMakeRect(20, 163, 200, 87));
}

TEST_F(ShownBox, HoldsAViewForEachWidget) {
    NSArray const views = m_box.subviews();
    ASSERT_EQ(views.count(), 1U);
    NSView const button = as<NSView>(views.objectAtIndex_(0));
    EXPECT_EQ(button.frame(), NSMakeRect(10, 10, 80, 30));
    EXPECT_TRUE(isSame(button, m_box.subviews().objectAtIndex_(0))) << "for good";
    button.setAutoresizingMask_(NSViewHeightSizable);
    m_box.setFrame_(NSMakeRect(20, 150, 200, 120));
    EXPECT_EQ(m_button->geometry(), QRect(10, 60, 80, 50));
}

TEST_F(ShownBox, ShowsItsTitleUnlessItHasNoPlace) {
    EXPECT_EQ(text(m_box.title()), "Options");
    EXPECT_EQ(m_box.titlePosition(), NSAtTop);
    m_box.setTitlePosition_(NSNoTitle);
    EXPECT_EQ(m_group->title(), "");
    m_box.setTitle_("Choices");
    EXPECT_EQ(m_group->title(), "");
    m_box.setTitlePosition_(NSAtTop);
    EXPECT_EQ(m_group->title(), "Choices");
    m_box.setTitle_(nil);
    EXPECT_EQ(m_group->title(), "");
}

TEST_F(ShownBox, OutlivesItsWidget) {
    m_box.setFrame_(NSMakeRect(1, 2, 30, 40));
    delete m_group;
    EXPECT_EQ(m_box.frame(), NSMakeRect(1, 2, 30, 40));
    m_box.setTitle_("a");
    m_box.setFrame_(NSMakeRect(1, 2, 3, 4));
    EXPECT_EQ(m_box.frame(), NSMakeRect(1, 2, 3, 4));
}

TEST(NSBox, OfNilHasNothing) {
    NSBox const box(nil);
    box.setTitle_("a");
    box.setTitlePosition_(NSAtTop);
    EXPECT_TRUE(box.title() == nil);
    EXPECT_EQ(box.titlePosition(), NSNoTitle);
    EXPECT_EQ(text(NSBox::alloc().initWithFrame_(NSZeroRect).title()), "Title");
}

} // namespace
} // namespace mac::test
