#include "platform/appkit/interface/InterfaceIcons.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include <QApplication>
#include <QImage>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(DrawnIcon, ReadsAbsoluteAndRelativePaths) {
    EXPECT_EQ(pathFromText("M1 2 L3 4 H5 V6 Z"), pathFromText("m1,2 l2,2 h2 v2 z"));
    EXPECT_EQ(pathFromText("M1 2 3 4"), pathFromText("M1 2L3 4"));
    EXPECT_EQ(pathFromText("M1 2 C1 3 2 4 5 6 Q1 2 3 4"), pathFromText("M1 2 c0 1 1 2 4 4 q-4-4-2-2"));
}

TEST(DrawnIcon, RefusesObjectsOtherThanPaths) {
    for (char const* const text : {"", "wheel", "M1", "M1 2 L", "M1 2 A3 4", "1 2", "M1 2 Z 3"})
        EXPECT_FALSE(pathFromText(text)) << text;
    EXPECT_TRUE(drawnIcon("wheel").isNull());
}

TEST(DrawnIcon, IsDrawnInTheThemesTextColourAndDimmedWhenDisabled) {
    needApplication();
    QIcon const icon = drawnIcon("M0 8 H16");
    QPalette const palette = QApplication::palette();
    auto const middle = [&](QIcon::Mode mode) { return icon.pixmap(32, 32, mode).toImage().pixelColor(16, 16); };
    EXPECT_EQ(middle(QIcon::Normal).rgb(), palette.color(QPalette::Active, QPalette::ButtonText).rgb());
    EXPECT_EQ(middle(QIcon::Disabled).rgb(), palette.color(QPalette::Disabled, QPalette::ButtonText).rgb());
    EXPECT_EQ(icon.pixmap(32, 32).toImage().pixelColor(16, 2).alpha(), 0);
}

} // namespace
} // namespace mac::test
