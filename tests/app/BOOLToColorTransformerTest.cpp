#include "app/BOOLToColorTransformer.h"
#include "platform/appkit/workspace/NSColor.h"
#include "tests/app/Controller.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

TEST(BOOLToColorTransformer, IsBlackForTrueAndDarkGrayOtherwise) {
    BOOLToColorTransformer const transformer = adopt<BOOLToColorTransformer>();
    EXPECT_TRUE(transformer.transformedValue_(NSNumber::numberWithBool_(YES)).isEqual_(NSColor::blackColor()));
    EXPECT_TRUE(transformer.transformedValue_(NSNumber::numberWithBool_(NO)).isEqual_(NSColor::darkGrayColor()));
    EXPECT_TRUE(transformer.transformedValue_(nil).isEqual_(NSColor::darkGrayColor()));
}

TEST(BOOLToColorTransformer, MakesColorsAndGoesOneWay) {
    EXPECT_TRUE(isSame(BOOLToColorTransformer::transformedValueClass(), classOf<NSColor>()));
    EXPECT_FALSE(BOOLToColorTransformer::allowsReverseTransformation());
}

} // namespace
} // namespace framekeeper::test
