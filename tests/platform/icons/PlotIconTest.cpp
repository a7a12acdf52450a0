#include "platform/icons/PlotIcon.h"
#include "platform/icons/IconFamilies.h"
#include "tests/platform/icons/IconBytes.h"
#include <gtest/gtest.h>
#include <limits>

namespace mac::test {
namespace {

class PlotIcon : public testing::Test {
protected:
    PlotIcon() {
        std::string const family = coloredFamily(0x00AA00);
        EXPECT_EQ(GetIconRefFromIconFamilyPtr(family.data(), family.size(), &m_icon), noErr);
    }
    ~PlotIcon() override { ReleaseIconRef(m_icon); }

    OSStatus plot(CGContext& context, CGRect const& rect) const {
        return PlotIconRefInContext(&context, &rect, kAlignNone, kTransformNone, nullptr, kPlotIconRefNormalFlags,
                                    m_icon);
    }

    IconRef m_icon{};
};

constexpr std::uint32_t Green = 0xFF00AA00;

TEST_F(PlotIcon, FillsTheRectangle) {
    CGContext context{emptyPicture(20, 10)};
    ASSERT_EQ(plot(context, NSMakeRect(0, 0, 10, 10)), noErr);
    EXPECT_EQ(context.picture.pixels[0], Green);
    EXPECT_EQ(context.picture.pixels[9], Green);
    EXPECT_EQ(context.picture.pixels[10], 0U);
    EXPECT_EQ(context.picture.pixels.size(), 200U);
}

TEST_F(PlotIcon, CountsPointsFromTheLowerLeft) {
    CGContext context{emptyPicture(20, 20)};
    context.picture.size = NSMakeSize(10, 10);
    ASSERT_EQ(plot(context, NSMakeRect(5, 0, 5, 5)), noErr);
    EXPECT_EQ(context.picture.pixels[std::size_t{19} * 20 + 19], Green);
    EXPECT_EQ(context.picture.pixels[std::size_t{10} * 20 + 10], Green);
    EXPECT_EQ(context.picture.pixels[std::size_t{9} * 20 + 10], 0U);
    EXPECT_EQ(context.picture.pixels[std::size_t{10} * 20 + 9], 0U);
}

TEST_F(PlotIcon, FailsForWhatCannotBeDrawn) {
    CGContext context{emptyPicture(4, 4)};
    CGContext none;
    float const infinite = std::numeric_limits<float>::infinity();
    float const nothing = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(plot(none, NSMakeRect(0, 0, 4, 4)), paramErr);
    EXPECT_EQ(plot(context, NSMakeRect(0, 0, 0, 4)), paramErr);
    EXPECT_EQ(plot(context, NSMakeRect(0, 0, infinite, 4)), paramErr);
    EXPECT_EQ(plot(context, NSMakeRect(nothing, 0, 4, 4)), paramErr);
    EXPECT_EQ(plot(context, NSMakeRect(0, 0, 4, nothing)), paramErr);
    CGRect const rect = NSMakeRect(0, 0, 4, 4);
    RGBColor const label{1, 2, 3};
    EXPECT_EQ(PlotIconRefInContext(&context, &rect, 0, 0, nullptr, 0, nullptr), invalidIconRefErr);
    EXPECT_EQ(PlotIconRefInContext(nullptr, &rect, 0, 0, nullptr, 0, m_icon), paramErr);
    EXPECT_EQ(PlotIconRefInContext(&context, nullptr, 0, 0, nullptr, 0, m_icon), paramErr);
    EXPECT_EQ(PlotIconRefInContext(&context, &rect, 5, 0, nullptr, 0, m_icon), paramErr);
    EXPECT_EQ(PlotIconRefInContext(&context, &rect, 0, 1, nullptr, 0, m_icon), paramErr);
    EXPECT_EQ(PlotIconRefInContext(&context, &rect, 0, 0, &label, 0, m_icon), paramErr);
    EXPECT_EQ(PlotIconRefInContext(&context, &rect, 0, 0, nullptr, 2, m_icon), paramErr);
    EXPECT_EQ(context.picture, emptyPicture(4, 4));
}

} // namespace
} // namespace mac::test
