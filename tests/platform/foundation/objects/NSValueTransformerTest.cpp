#include "platform/foundation/objects/NSValueTransformer.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

class Doubling : public Handle<Doubling, NSValueTransformer> {
public:
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "Doubling", .superclass = classOf<NSValueTransformer>()};
    }
};

class Doubling::Body : public NSValueTransformer::Body {
public:
    id transformedValue(id const& value) const override {
        NSString const text = as<NSString>(value);
        return text.stringByAppendingString_(text);
    }
};

TEST(ValueTransformer, IsFoundByTheNameItWasGiven) {
    Doubling const transformer = adopt<Doubling>();
    NSValueTransformer::setValueTransformer_forName_(transformer, "Twice");
    EXPECT_TRUE(isSame(NSValueTransformer::valueTransformerForName_("Twice"), transformer));
    EXPECT_TRUE(NSValueTransformer::valueTransformerNames().containsObject_("Twice"));
    NSValueTransformer::setValueTransformer_forName_(nil, "Twice");
    EXPECT_TRUE(NSValueTransformer::valueTransformerForName_("Twice") == nil);
}

TEST(ValueTransformer, IsReplacedByALaterOneOfItsName) {
    NSValueTransformer::setValueTransformer_forName_(adopt<Doubling>(), "Twice");
    Doubling const later = adopt<Doubling>();
    NSValueTransformer::setValueTransformer_forName_(later, "Twice");
    EXPECT_TRUE(isSame(NSValueTransformer::valueTransformerForName_("Twice"), later));
}

TEST(ValueTransformer, TransformsByItsSubclassAlsoWhenSentByName) {
    NSValueTransformer const transformer = adopt<Doubling>();
    EXPECT_EQ(transformer.transformedValue_("ab").description().UTF8String(), "abab");
    EXPECT_TRUE(transformer.performSelector_withObject_("transformedValue:", "ab").isEqual_("abab"));
}

class OneWay : public Handle<OneWay, NSValueTransformer> {
public:
    class Body : public NSValueTransformer::Body {};
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "OneWay",
                .superclass = classOf<NSValueTransformer>(),
                .classMethods = {method<&OneWay::transformedValueClass>("transformedValueClass"),
                                 method<&OneWay::allowsReverseTransformation>("allowsReverseTransformation")}};
    }
    static Class transformedValueClass() { return classOf<NSString>(); }
    static bool allowsReverseTransformation() { return false; }
};

TEST(ValueTransformer, TellsByItsClassWhatItAnswersAndWhetherItGoesBack) {
    Class const cls = adopt<OneWay>().class_();
    EXPECT_TRUE(isSame(cls.performClassSelector_("transformedValueClass"), classOf<NSString>()));
    EXPECT_FALSE(as<NSNumber>(cls.performClassSelector_("allowsReverseTransformation")).boolValue());
    Class const& base = classOf<NSValueTransformer>();
    EXPECT_TRUE(as<NSNumber>(base.performClassSelector_("allowsReverseTransformation")).boolValue());
}

TEST(ValueTransformer, GoesBackOnlyWhereItsClassAllowsIt) {
    EXPECT_TRUE(adopt<Doubling>().reverseTransformedValue_("ab").isEqual_("abab"));
    EXPECT_THROW(adopt<OneWay>().reverseTransformedValue_("ab"), NSInvalidArgumentException);
    EXPECT_TRUE(NSValueTransformer(nil).reverseTransformedValue_("ab") == nil);
}

TEST(ValueTransformer, OfNoNameOrNilIsNone) {
    EXPECT_TRUE(NSValueTransformer::valueTransformerForName_(nil) == nil);
    EXPECT_TRUE(NSValueTransformer::valueTransformerForName_("there is none") == nil);
    EXPECT_TRUE(NSValueTransformer(nil).transformedValue_("x") == nil);
    NSValueTransformer::setValueTransformer_forName_(adopt<Doubling>(), nil);
}

} // namespace
} // namespace mac::test
