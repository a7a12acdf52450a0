#include "app/ValueTransformers.h"
#include "platform/appkit/workspace/NSColor.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/app/SelectedCopies.h"
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

TEST(BOOLToStringTransformer, RaisesForAnObjectWithoutATruthValue) {
    EXPECT_THROW(adopt<BOOLToStringTransformer>().transformedValue_(NSArray::array()), NSInvalidArgumentException);
    EXPECT_THROW(adopt<BOOLToColorTransformer>().transformedValue_(NSArray::array()), NSInvalidArgumentException);
}

TEST(BOOLToStringTransformer, MakesStringsAndGoesOneWay) {
    EXPECT_TRUE(isSame(BOOLToStringTransformer::transformedValueClass(), classOf<NSString>()));
    EXPECT_FALSE(BOOLToStringTransformer::allowsReverseTransformation());
    Class const cls = NSClassFromString("BOOLToStringTransformer");
    EXPECT_TRUE(isSame(cls.performClassSelector_("transformedValueClass"), classOf<NSString>()));
}

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

using InTrash = SelectedCopies;

bool isInTrash(id const& path) { return as<NSNumber>(adopt<InTrashTransformer>().transformedValue_(path)).boolValue(); }

TEST_F(InTrash, IsToldOfThePathOfACopy) {
    NSString const path = findCopy("a");
    EXPECT_FALSE(isInTrash(path));
    select({path});
    m_controller.trashAction_(nil);
    EXPECT_TRUE(isInTrash(pathInTrash()));
    EXPECT_FALSE(isInTrash(path)) << "it is gone";
}

TEST(InTrashTransformer, AnswersNoForObjectsOtherThanPaths) {
    EXPECT_FALSE(isInTrash(nil));
    EXPECT_FALSE(isInTrash(NSNumber::numberWithInt_(1)));
}

TEST(InTrashTransformer, IsKnownByItsNameAndHasNoWayBack) {
    EXPECT_FALSE(NSValueTransformer::valueTransformerForName_("InTrashTransformer") == nil);
    EXPECT_FALSE(InTrashTransformer::allowsReverseTransformation());
}

} // namespace
} // namespace framekeeper::test
