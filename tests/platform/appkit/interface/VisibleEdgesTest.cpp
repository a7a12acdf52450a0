#include "platform/appkit/interface/VisibleEdges.h"
#include "platform/appkit/interface/InterfaceIcons.h"
#include "platform/appkit/interface/ThemeColors.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/RunUntil.h"
#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleOptionSlider>
#include <gtest/gtest.h>
#include <memory>

namespace mac::test {
namespace {

QPalette paletteOf(QColor const& ground, QColor const& text) {
    QPalette palette(ground);
    using Role = QPalette::ColorRole;
    for (Role const role : {Role::Text, Role::WindowText, Role::ButtonText, Role::PlaceholderText})
        palette.setColor(role, text);
    for (Role const role : {Role::Base, Role::AlternateBase, Role::Window, Role::Button})
        palette.setColor(role, ground);
    return palette;
}

// Gives the application the palette for as long as it lives.
class ApplicationPalette {
public:
    explicit ApplicationPalette(QPalette const& palette) { QApplication::setPalette(palette); }
    ~ApplicationPalette() { QApplication::setPalette(m_before); }
    ApplicationPalette(ApplicationPalette const&) = delete;
    ApplicationPalette& operator=(ApplicationPalette const&) = delete;

private:
    QPalette m_before = QApplication::palette();
};

// The least contrast with the ground that the four edges of the picture have in their middles.
double edgeContrast(QImage const& image, QColor const& ground) {
    // A style may keep a little room around what it draws.
    auto const along = [&](QPoint const& start, QPoint const& step) {
        double strongest = 1;
        for (int distance = 0; distance < 5; ++distance)
            strongest = std::max(strongest, contrast(image.pixelColor(start + distance * step), ground));
        return strongest;
    };
    int const right = image.width() - 1;
    int const bottom = image.height() - 1;
    return std::min({along({right / 2, 0}, {0, 1}), along({right / 2, bottom}, {0, -1}), along({0, bottom / 2}, {1, 0}),
                     along({right, bottom / 2}, {-1, 0})});
}

double edgeContrast(QWidget* widget, QColor const& ground) { return edgeContrast(widget->grab().toImage(), ground); }

// The strongest contrast with the ground in a column of the picture.
double columnContrast(QImage const& image, int column, QColor const& ground) {
    double strongest = 1;
    for (int row = 0; row < image.height(); ++row)
        strongest = std::max(strongest, contrast(image.pixelColor(column, row), ground));
    return strongest;
}

// How the edge of a scroll bar's slider, which the pointer drags, stands out from the ground.
double sliderContrast(QScrollBar* bar, QColor const& ground) {
    QStyleOptionSlider option;
    option.initFrom(bar);
    option.orientation = Qt::Vertical;
    option.maximum = bar->maximum();
    option.pageStep = bar->pageStep();
    QRect const slider = bar->style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, bar);
    return edgeContrast(bar->grab(slider).toImage(), ground);
}

// A palette reaches the widgets in a later event, and so does a style.
bool hasSeenEdge(QWidget* widget) {
    return widget->palette().color(QPalette::Window) == Qt::black && edgeContrast(widget, Qt::black) >= 3;
}

// The style that draws edges stays for good once it was needed, in the program: here it goes after each test.
class VisibleEdges : public testing::Test {
protected:
    VisibleEdges() {
        needApplication();
        m_style = QApplication::style()->name();
    }
    ~VisibleEdges() override {
        // A new one comes with the next window.
        std::unique_ptr<QObject> const watch(qApp->findChild<QObject*>("edgeWatch"));
        QApplication::setStyle(m_style);
    }

private:
    QString m_style;
};

TEST_F(VisibleEdges, AreMissingWhereAllGroundsAreAlikeAndNothingIsDarker) {
    std::unique_ptr<QStyle> const fusion(QStyleFactory::create("Fusion"));
    EXPECT_TRUE(areEdgesSeen(fusion->standardPalette()));
    EXPECT_FALSE(areEdgesSeen(paletteOf(Qt::black, Qt::white)));
    EXPECT_FALSE(areEdgesSeen(paletteOf("#101010", Qt::white)));
    QPalette filled = paletteOf(Qt::black, "#e0e0e0");
    filled.setColor(QPalette::Button, "#303030");
    EXPECT_FALSE(areEdgesSeen(filled)) << "fields have no edge";
    filled.setColor(QPalette::Base, "#303030");
    EXPECT_TRUE(areEdgesSeen(filled));
}

// In a theme of high contrast an edge has to stand out by 3:1, as graphical objects have to by WCAG.
TEST_F(VisibleEdges, HaveToStandOutInThemesOfHighContrast) {
    EXPECT_FALSE(areEdgesSeen(paletteOf(Qt::white, Qt::black))) << "outlines are light grey";
    EXPECT_TRUE(areEdgesSeen(paletteOf(Qt::white, "#202020"))) << "a usual white theme";
    QPalette filled = paletteOf(Qt::black, Qt::white);
    filled.setColor(QPalette::Button, "#303030");
    filled.setColor(QPalette::Base, "#303030");
    EXPECT_FALSE(areEdgesSeen(filled));
    filled.setColor(QPalette::Button, "#808080");
    filled.setColor(QPalette::Base, "#808080");
    EXPECT_TRUE(areEdgesSeen(filled));
}

TEST_F(VisibleEdges, AreDrawnInAWhiteThemeOfHighContrast) {
    LoadedWindow const window;
    auto* const field = window.find<QLineEdit>("filterField");
    window.table()->setFocus();
    ApplicationPalette const white(paletteOf(Qt::white, Qt::black));
    EXPECT_TRUE(runUntil(
        [&] { return field->palette().color(QPalette::Window) == Qt::white && edgeContrast(field, Qt::white) >= 3; }));
}

TEST_F(VisibleEdges, AreDrawnAroundButtonsAndFieldsOnceABlackThemeComes) {
    LoadedWindow const window;
    QPushButton button("Show");
    auto* const field = window.find<QLineEdit>("filterField");
    window.table()->setFocus();
    ApplicationPalette const black(paletteOf(Qt::black, Qt::white));
    EXPECT_TRUE(runUntil([&] { return hasSeenEdge(&button); }));
    EXPECT_TRUE(runUntil([&] { return hasSeenEdge(field); }));
    button.setEnabled(false);
    EXPECT_GE(edgeContrast(&button, Qt::black), 1.5) << "of a button that is disabled, too";
}

TEST_F(VisibleEdges, AreDrawnAroundMenusAndWhatScrollsInABlackTheme) {
    LoadedWindow const window;
    QScrollBar bar(Qt::Vertical);
    bar.setRange(0, 100);
    bar.setPageStep(100);
    bar.resize(16, 200);
    QMenu menu;
    menu.addAction("One");
    menu.addSeparator();
    QAction* const chosen = menu.addAction(drawnIcon("M2 2 H14 V14 H2 Z"), "Two");
    QPalette palette = paletteOf(Qt::black, Qt::white);
    palette.setColor(QPalette::Highlight, Qt::yellow);
    palette.setColor(QPalette::HighlightedText, Qt::black);
    ApplicationPalette const black(palette);
    auto const isBlack = [](QWidget const& widget) { return widget.palette().color(QPalette::Window) == Qt::black; };
    EXPECT_TRUE(runUntil([&] { return isBlack(bar) && sliderContrast(&bar, Qt::black) >= 3; }));
    menu.resize(menu.sizeHint());
    EXPECT_TRUE(runUntil([&] { return isBlack(menu) && edgeContrast(&menu, Qt::black) >= 3; }));
    QImage const lines = menu.grab(menu.actionGeometry(menu.actions().at(1))).toImage();
    EXPECT_GE(columnContrast(lines, lines.width() / 2, Qt::black), 3) << "of the separator";
    menu.setActiveAction(chosen);
    QRect const icon(menu.actionGeometry(chosen).topLeft(), QSize(30, menu.actionGeometry(chosen).height()));
    EXPECT_GE(columnContrast(menu.grab(icon).toImage(), 14, Qt::yellow), 3) << "of the icon on the selection";
}

TEST_F(VisibleEdges, AreLeftToTheStyleInOtherThemes) {
    LoadedWindow const window;
    QPushButton button("Show");
    {
        ApplicationPalette const black(paletteOf(Qt::black, Qt::white));
        ASSERT_TRUE(runUntil([&] { return hasSeenEdge(&button); }));
    }
    QColor const ground = QApplication::palette().color(QPalette::Window);
    ASSERT_TRUE(areEdgesSeen(QApplication::palette()));
    EXPECT_TRUE(runUntil(
        [&] { return button.palette().color(QPalette::Window) == ground && edgeContrast(&button, ground) < 3; }));
}

} // namespace
} // namespace mac::test
