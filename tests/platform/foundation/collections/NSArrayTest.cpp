#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/NSNull.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

// An object that empties an array when it is described.
class Emptier : public Handle<Emptier, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        explicit Body(NSMutableArray const& array) : m_array(array) {}
        NSString description() const override {
            m_array.removeAllObjects();
            return "emptied";
        }

        NSMutableArray m_array;
    };
    using Handle::Handle;

    static ClassDescription describeClass() { return {.name = "Emptier", .superclass = classOf<NSObject>()}; }
    static Emptier emptierOf(NSMutableArray const& array) { return adopt<Emptier>(array); }
};

} // namespace

TEST(NSArray, HoldsWhatItWasMadeOf) {
    EXPECT_EQ(NSArray::array().count(), 0U);
    EXPECT_EQ(joined(NSArray::arrayWithObject_("a")), "a");
    EXPECT_EQ(joined(NSArray::arrayWithObjects_({"a", "b", "a"})), "a b a");
    EXPECT_EQ(joined(NSArray::arrayWithArray_(words({"a", "b"}))), "a b");
    EXPECT_EQ(joined(NSArray::arrayWithVector({"a", "b"})), "a b");
}

TEST(NSArray, TakesObjectsUpToTheFirstNil) {
    EXPECT_EQ(joined(NSArray::arrayWithObjects_({"a", nil, "b"})), "a");
    EXPECT_EQ(NSArray::arrayWithObjects_({}).count(), 0U);
    EXPECT_EQ(NSArray::arrayWithObjects_({nil}).count(), 0U);
}

TEST(NSArray, OfAnotherOneThatIsNilIsEmpty) {
    NSArray const array = NSArray::arrayWithArray_(nil);
    ASSERT_TRUE(array != nil);
    EXPECT_EQ(array.count(), 0U);
}

TEST(NSArray, HoldsNoNil) {
    EXPECT_THROW(NSArray::arrayWithObject_(nil), NSInvalidArgumentException);
    EXPECT_THROW(NSArray::arrayWithVector({"a", nil}), NSInvalidArgumentException);
    EXPECT_THROW(NSArray::array().arrayByAddingObject_(nil), NSInvalidArgumentException);
}

TEST(NSArray, AnswersObjectsByIndex) {
    NSArray const array = words({"a", "b", "c"});
    EXPECT_EQ(text(array.objectAtIndex_(0)), "a");
    EXPECT_EQ(text(array.objectAtIndex_(2)), "c");
    EXPECT_EQ(text(array.lastObject()), "c");
    EXPECT_TRUE(NSArray::array().lastObject() == nil);
}

TEST(NSArray, AnIndexPastTheEndRaises) {
    EXPECT_THROW(words({"a", "b"}).objectAtIndex_(2), NSRangeException);
    EXPECT_THROW(words({"a", "b"}).objectAtIndex_(NSNotFound), NSRangeException);
    EXPECT_THROW(words({"a", "b"}).objectAtIndex_(0xFFFFFFFF), NSRangeException);
    EXPECT_THROW(NSArray::array().objectAtIndex_(0), NSRangeException);
}

TEST(NSArray, NilAnswersNothing) {
    NSArray const none;
    EXPECT_EQ(none.count(), 0U);
    EXPECT_TRUE(none.objectAtIndex_(3) == nil);
    EXPECT_TRUE(none.lastObject() == nil);
    EXPECT_FALSE(none.containsObject_("a"));
    EXPECT_FALSE(none.containsObject_(nil));
    EXPECT_EQ(none.indexOfObject_("a"), 0U);
    EXPECT_EQ(none.indexOfObjectIdenticalTo_("a"), 0U);
    EXPECT_TRUE(none.arrayByAddingObject_("a") == nil);
    EXPECT_TRUE(none.arrayByAddingObject_(nil) == nil);
    EXPECT_TRUE(none.arrayByAddingObjectsFromArray_(words({"a"})) == nil);
    EXPECT_TRUE(none.subarrayWithRange_({5, 5}) == nil);
    EXPECT_TRUE(none.componentsJoinedByString_(" ") == nil);
    EXPECT_FALSE(none.isEqualToArray_(nil));
    EXPECT_FALSE(none.isEqualToArray_(NSArray::array()));
    EXPECT_TRUE(none.objectEnumerator() == nil);
    EXPECT_TRUE(none.reverseObjectEnumerator() == nil);
    EXPECT_TRUE(none.objects().empty());
    EXPECT_TRUE(none.begin() == none.end());
}

TEST(NSArray, FindsEqualObjects) {
    NSArray const array = words({"a", "b", "a"});
    EXPECT_TRUE(array.containsObject_("b"));
    EXPECT_FALSE(array.containsObject_("c"));
    EXPECT_FALSE(array.containsObject_(nil));
    EXPECT_EQ(array.indexOfObject_("a"), 0U);
    EXPECT_EQ(array.indexOfObject_("b"), 1U);
    EXPECT_EQ(array.indexOfObject_("c"), NSNotFound);
    EXPECT_EQ(array.indexOfObject_(nil), NSNotFound);
}

TEST(NSArray, FindsTheVerySameObject) {
    id const first = NSMutableArray::array();
    id const second = NSMutableArray::array();
    NSArray const array = NSArray::arrayWithObjects_({first, second});
    EXPECT_EQ(array.indexOfObject_(second), 0U);
    EXPECT_EQ(array.indexOfObjectIdenticalTo_(second), 1U);
    EXPECT_EQ(array.indexOfObjectIdenticalTo_(NSMutableArray::array()), NSNotFound);
    EXPECT_EQ(array.indexOfObjectIdenticalTo_(nil), NSNotFound);
}

TEST(NSArray, GrowsIntoNewArrays) {
    NSArray const array = words({"a"});
    EXPECT_EQ(joined(array.arrayByAddingObject_("b")), "a b");
    EXPECT_EQ(joined(array.arrayByAddingObjectsFromArray_(words({"b", "c"}))), "a b c");
    EXPECT_EQ(joined(array.arrayByAddingObjectsFromArray_(array)), "a a");
    EXPECT_EQ(joined(array.arrayByAddingObjectsFromArray_(nil)), "a");
    EXPECT_EQ(joined(array), "a");
}

struct RangeCase {
    NSRange range;
    char const* result; // null where it raises
};

TEST(NSArray, CutsRanges) {
    RangeCase const cases[]{
        {{0, 3}, "a b c"},
        {{1, 1}, "b"},
        {{0, 0}, ""},
        {{3, 0}, ""},
        {{4, 0}, nullptr},
        {{3, 1}, nullptr},
        {{0, 4}, nullptr},
        {{1, 0xFFFFFFFF}, nullptr},
        {{0xFFFFFFFF, 1}, nullptr},
        {{NSNotFound, 0}, nullptr},
    };
    NSArray const array = words({"a", "b", "c"});
    for (RangeCase const& one : cases) {
        SCOPED_TRACE(std::to_string(one.range.location) + ", " + std::to_string(one.range.length));
        if (one.result)
            EXPECT_EQ(joined(array.subarrayWithRange_(one.range)), one.result);
        else
            EXPECT_THROW(array.subarrayWithRange_(one.range), NSRangeException);
    }
}

TEST(NSArray, JoinsTheDescriptionsOfItsObjects) {
    NSArray const array = NSArray::arrayWithObjects_({"a", NSNumber::numberWithInt_(2), NSNull::null()});
    EXPECT_EQ(array.componentsJoinedByString_(", ").UTF8String(), "a, 2, <null>");
    EXPECT_EQ(array.componentsJoinedByString_("").UTF8String(), "a2<null>");
    EXPECT_EQ(array.componentsJoinedByString_(nil).UTF8String(), "a2<null>");
    EXPECT_EQ(NSArray::array().componentsJoinedByString_(", ").UTF8String(), "");
}

TEST(NSArray, EqualsAnotherOfEqualObjectsInTheSameOrder) {
    NSArray const array = words({"a", "b"});
    EXPECT_TRUE(array.isEqualToArray_(words({"a", "b"})));
    EXPECT_TRUE(array.isEqual_(array.mutableCopy()));
    EXPECT_TRUE(as<NSArray>(array.mutableCopy()).isEqualToArray_(array));
    EXPECT_FALSE(array.isEqualToArray_(words({"b", "a"})));
    EXPECT_FALSE(array.isEqualToArray_(words({"a"})));
    EXPECT_FALSE(array.isEqualToArray_(words({"a", "b", "c"})));
    EXPECT_FALSE(array.isEqualToArray_(nil));
    EXPECT_FALSE(array.isEqual_("(a, b)"));
    EXPECT_FALSE(array.isEqual_(NSSet::setWithArray_(array)));
    EXPECT_TRUE(NSArray::array().isEqual_(NSMutableArray::array()));
}

TEST(NSArray, HashesByItsObjectsAndTheirOrder) {
    EXPECT_EQ(words({"a", "b"}).hash(), words({"a", "b"}).mutableCopy().hash());
    EXPECT_NE(words({"a", "b"}).hash(), words({"b", "a"}).hash());
    EXPECT_NE(words({"a"}).hash(), words({"a", "a"}).hash());
}

TEST(NSArray, CopiesToItselfAndMutableCopiesToAnother) {
    NSArray const array = words({"a"});
    EXPECT_TRUE(isSame(array.copy(), array));
    NSMutableArray const changed = as<NSMutableArray>(array.mutableCopy());
    changed.addObject_("b");
    EXPECT_EQ(joined(array), "a");
    EXPECT_EQ(joined(changed), "a b");
}

TEST(NSArray, GivesItsObjectsToALoop) {
    std::string all;
    for (id const& object : words({"a", "b", "c"}))
        all += text(object);
    EXPECT_EQ(all, "abc");
}

TEST(NSArray, UnderstandsMessagesByName) {
    id const array = words({"a", "b"});
    EXPECT_EQ(text(array.performSelector_("count")), "2");
    EXPECT_EQ(text(array.performSelector_("lastObject")), "b");
    EXPECT_EQ(text(array.performSelector_withObject_("objectAtIndex:", NSNumber::numberWithInt_(0))), "a");
    EXPECT_EQ(text(array.performSelector_withObject_("componentsJoinedByString:", "-")), "a-b");
    EXPECT_THROW(array.performSelector_withObject_("addObject:", "c"), NSInvalidArgumentException);
}

TEST(NSArray, DescribesItselfAsNestedLists) {
    EXPECT_EQ(text(NSArray::array()), "(\n)");
    EXPECT_EQ(text(words({"a", "b c", "say \"hi\"", ""})),
              "(\n    a,\n    \"b c\",\n    \"say \\\"hi\\\"\",\n    \"\"\n)");
    NSArray const nested = NSArray::arrayWithObjects_(
        {words({"a"}), NSDictionary::dictionaryWithObjectsAndKeys_({NSNumber::numberWithInt_(2), "z", "one", "b"}),
         NSSet::setWithObject_("x")});
    EXPECT_EQ(text(nested), "(\n"
                            "    (\n"
                            "        a\n"
                            "    ),\n"
                            "    {\n"
                            "        b = one;\n"
                            "        z = 2;\n"
                            "    },\n"
                            "    {(\n"
                            "        x\n"
                            "    )}\n"
                            ")");
}

// Hashing, comparing and describing end also where a collection holds itself.
TEST(NSArray, MayHoldItself) {
    NSMutableArray const first = NSMutableArray::array();
    NSMutableArray const second = NSMutableArray::array();
    for (NSMutableArray const& array : {first, second}) {
        array.addObject_(array);
        array.addObject_(array);
    }
    EXPECT_EQ(first.hash(), second.hash());
    EXPECT_TRUE(first.isEqual_(first));
    EXPECT_FALSE(first.isEqual_(second));
    EXPECT_EQ(text(first), "(\n    ...,\n    ...\n)");
    EXPECT_EQ(first.indexOfObject_(first), 0U);
    first.removeAllObjects();
    second.removeAllObjects();
}

TEST(NSArray, MayHoldASetAndADictionaryThatHoldIt) {
    NSMutableArray const array = NSMutableArray::array();
    NSMutableSet const set = NSMutableSet::set();
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    array.addObject_(set);
    array.addObject_(dictionary);
    dictionary.setObject_forKey_(array, "array");
    set.addObject_(array);
    EXPECT_EQ(array.hash(), id(array).hash());
    EXPECT_FALSE(text(array).empty());
    EXPECT_FALSE(text(dictionary).empty());
    array.removeAllObjects();
}

TEST(NSArray, OfDeepArraysIsComparedAndHashed) {
    NSArray first = words({"a"});
    NSArray second = words({"a"});
    NSArray other = words({"b"});
    for (int depth = 0; depth < 500; ++depth) {
        first = NSArray::arrayWithObject_(first);
        second = NSArray::arrayWithObject_(second);
        other = NSArray::arrayWithObject_(other);
    }
    EXPECT_TRUE(first.isEqual_(second));
    EXPECT_FALSE(first.isEqual_(other));
    EXPECT_EQ(first.hash(), second.hash());
    EXPECT_NE(text(first).find("..."), std::string::npos);
}

// A list of two that are the same list of two, and so on, would be 2^60 lines.
TEST(NSArray, OfSharedArraysIsDescribedInBounds) {
    NSArray array = words({"a"});
    for (int depth = 0; depth < 60; ++depth)
        array = NSArray::arrayWithObjects_({array, array});
    EXPECT_LT(array.description().length(), 20'000'000U);
    EXPECT_EQ(array.hash(), id(array).hash());
}

TEST(NSArray, LooksOnWhileAComparisonChangesIt) {
    Peg const first = Peg::pegWithNumber_hash_(1, 1);
    Peg const second = Peg::pegWithNumber_hash_(2, 2);
    NSMutableArray const array = NSMutableArray::array();
    array.addObject_(first);
    array.addObject_(second);
    bodyOf(first)->m_whenCompared = [&] { array.removeAllObjects(); };
    EXPECT_EQ(array.indexOfObject_(Peg::pegWithNumber_hash_(2, 2)), NSNotFound);
    EXPECT_EQ(array.count(), 0U);
}

TEST(NSArray, JoinsWhatItHeldWhileDescriptionsChangeIt) {
    NSMutableArray const array = NSMutableArray::array();
    array.addObject_(Emptier::emptierOf(array));
    array.addObject_("b");
    EXPECT_EQ(array.componentsJoinedByString_("-").UTF8String(), "emptied-b");
    EXPECT_EQ(array.count(), 0U);
}

} // namespace mac::test
