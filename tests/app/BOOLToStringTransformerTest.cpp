#include "app/BOOLToStringTransformer.h"
#include "tests/app/Controller.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

TEST(BOOLToStringTransformer, SaysYesForTrueAndNoOtherwise) {
    BOOLToStringTransformer const transformer = adopt<BOOLToStringTransformer>();
    EXPECT_EQ(text(transformer.transformedValue_(NSNumber::numberWithBool_(YES))), "Yes");
    EXPECT_EQ(text(transformer.transformedValue_(NSNumber::numberWithBool_(NO))), "No");
    EXPECT_EQ(text(transformer.transformedValue_(NSNumber::numberWithInt_(2))), "Yes");
    EXPECT_EQ(text(transformer.transformedValue_("y")), "Yes");
    EXPECT_EQ(text(transformer.transformedValue_(nil)), "No");
}

TEST(BOOLToStringTransformer, MakesStringsAndGoesOneWay) {
    EXPECT_TRUE(isSame(BOOLToStringTransformer::transformedValueClass(), classOf<NSString>()));
    EXPECT_FALSE(BOOLToStringTransformer::allowsReverseTransformation());
    Class const cls = NSClassFromString("BOOLToStringTransformer");
    EXPECT_TRUE(isSame(cls.performClassSelector_("transformedValueClass"), classOf<NSString>()));
}

} // namespace
} // namespace framekeeper::test
