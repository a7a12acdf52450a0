#include "platform/appkit/workspace/NSColor.h"
#include "platform/appkit/interface/ThemeColors.h"
#include "platform/foundation/objects/Exceptions.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(NSColor, IsEqualToAColourOfTheSameSpaceAndComponents) {
    EXPECT_TRUE(NSColor::blackColor().isEqual_(NSColor::colorWithCalibratedWhite_alpha_(0, 1)));
    EXPECT_EQ(NSColor::blackColor().hash(), NSColor::colorWithCalibratedWhite_alpha_(0, 1).hash());
    EXPECT_FALSE(NSColor::blackColor().isEqual_(NSColor::darkGrayColor()));
    EXPECT_FALSE(NSColor::blackColor().isEqual_(NSColor::colorWithCalibratedRed_green_blue_alpha_(0, 0, 0, 1)));
    EXPECT_FALSE(NSColor::blackColor().isEqual_("black"));
}

TEST(NSColor, TakesAValueOutsideForTheNearerEnd) {
    EXPECT_EQ(NSColor::colorWithCalibratedWhite_alpha_(-1, 7).whiteComponent(), 0);
    EXPECT_EQ(NSColor::colorWithCalibratedWhite_alpha_(-1, 7).alphaComponent(), 1);
}

TEST(NSColor, ChangesItsSpace) {
    NSColor const gray = NSColor::darkGrayColor().colorUsingColorSpaceName_(NSCalibratedRGBColorSpace);
    EXPECT_DOUBLE_EQ(gray.greenComponent(), 1.0 / 3);
    EXPECT_DOUBLE_EQ(gray.colorUsingColorSpaceName_(NSCalibratedWhiteColorSpace).whiteComponent(), 1.0 / 3);
    EXPECT_TRUE(gray.colorUsingColorSpaceName_("NSPatternColorSpace") == nil);
}

TEST(NSColor, RaisesForAComponentOfAnotherSpace) {
    EXPECT_THROW(NSColor::blackColor().redComponent(), NSInvalidArgumentException);
    EXPECT_EQ(NSColor(nil).redComponent(), 0);
}

TEST(NSColor, IsTheSameInCalibratedAndDeviceSpaces) {
    NSColor const color = NSColor::colorWithDeviceRed_green_blue_alpha_(0.1, 0.2, 0.3, 0.4);
    EXPECT_TRUE(color.colorUsingColorSpaceName_(NSCalibratedRGBColorSpace)
                    .isEqual_(NSColor::colorWithCalibratedRed_green_blue_alpha_(0.1, 0.2, 0.3, 0.4)));
    EXPECT_FALSE(color.isEqual_(NSColor::colorWithCalibratedRed_green_blue_alpha_(0.1, 0.2, 0.3, 0.4)));
    EXPECT_EQ(NSColor::colorWithDeviceWhite_alpha_(0.5, 1).description().UTF8String(), "NSDeviceWhiteColorSpace 0.5 1");
}

TEST(NSColor, IsPrintedWithFourInks) {
    NSColor const orange = NSColor::colorWithCalibratedRed_green_blue_alpha_(1, 0.5, 0, 1);
    NSColor const inks = orange.colorUsingColorSpaceName_(NSDeviceCMYKColorSpace);
    EXPECT_EQ(inks.cyanComponent(), 0);
    EXPECT_EQ(inks.magentaComponent(), 0.5);
    EXPECT_EQ(inks.yellowComponent(), 1);
    EXPECT_EQ(inks.blackComponent(), 0);
    EXPECT_TRUE(inks.colorUsingColorSpaceName_(NSCalibratedRGBColorSpace).isEqual_(orange));
    EXPECT_EQ(NSColor::blackColor().colorUsingColorSpaceName_(NSDeviceCMYKColorSpace).blackComponent(), 1);
    EXPECT_THROW(orange.cyanComponent(), NSInvalidArgumentException);
}

TEST(NSColor, HasHueSaturationAndBrightness) {
    NSColor const green = NSColor::colorWithCalibratedHue_saturation_brightness_alpha_(1.0 / 3, 1, 0.5, 1);
    EXPECT_NEAR(green.greenComponent(), 0.5, 1e-9);
    EXPECT_NEAR(green.redComponent(), 0, 1e-9);
    for (double const hue : {0.0, 0.1, 0.25, 0.45, 0.6, 0.75, 0.95}) {
        NSColor const color = NSColor::colorWithCalibratedHue_saturation_brightness_alpha_(hue, 0.4, 0.8, 1);
        EXPECT_NEAR(color.hueComponent(), hue, 1e-9);
        EXPECT_NEAR(color.saturationComponent(), 0.4, 1e-9);
        EXPECT_NEAR(color.brightnessComponent(), 0.8, 1e-9);
    }
    EXPECT_THROW(NSColor::blackColor().hueComponent(), NSInvalidArgumentException);
}

struct Theme {
    char const* name;
    QColor text;
    QColor base;
    QColor alternate;
};

class ThemeColors : public testing::TestWithParam<Theme> {
protected:
    QPalette palette() const {
        QPalette result;
        result.setColor(QPalette::Text, GetParam().text);
        result.setColor(QPalette::Base, GetParam().base);
        result.setColor(QPalette::AlternateBase, GetParam().alternate);
        return result;
    }
};

TEST_P(ThemeColors, CanBeRead) {
    QColor const black = colorInTheme(NSColor::blackColor(), palette());
    QColor const gray = colorInTheme(NSColor::darkGrayColor(), palette());
    EXPECT_EQ(black, palette().color(QPalette::Text));
    for (QColor const& row : {GetParam().base, GetParam().alternate}) {
        EXPECT_GE(contrast(gray, row), 4.5);
        EXPECT_GT(contrast(black, row), contrast(gray, row));
    }
}

INSTANTIATE_TEST_SUITE_P(All, ThemeColors,
                         testing::Values(Theme{"light", Qt::black, Qt::white, QColor(247, 247, 247)},
                                         Theme{"dark", QColor(235, 235, 235), QColor(30, 30, 32), QColor(38, 38, 41)},
                                         Theme{"breeze", QColor(35, 38, 41), QColor(252, 252, 252),
                                               QColor(239, 240, 241)},
                                         Theme{"darkest", Qt::white, Qt::black, QColor(20, 20, 20)}),
                         [](auto const& tested) { return std::string(tested.param.name); });

TEST(ThemeColors, LeaveOtherColoursAsTheyAre) {
    EXPECT_EQ(colorInTheme(NSColor::colorWithCalibratedRed_green_blue_alpha_(1, 0, 0, 1), QPalette()), QColor(Qt::red));
    EXPECT_FALSE(colorInTheme(nil, QPalette()).isValid());
}

} // namespace
} // namespace mac::test
