#include "coreutils/Collections.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>
#include <vector>

namespace mac::test {
namespace {

NSMutableArray letters(char const* text) {
    NSMutableArray const made = NSMutableArray::array();
    for (char const* letter = text; *letter != '\0'; ++letter)
        made.addObject_(NSString::stringWithUTF8String_(std::string(1, *letter)));
    return made;
}

NSIndexSet at(std::vector<NSUInteger> const& indexes) {
    NSMutableIndexSet const set = NSMutableIndexSet::indexSet();
    for (NSUInteger const index : indexes)
        set.addIndex_(index);
    return set;
}

NSDictionary record(id const& path, id const& version) {
    NSMutableDictionary const made = NSMutableDictionary::dictionary();
    made.setValue_forKey_(path, "path");
    made.setValue_forKey_(version, "version");
    return made;
}

TEST(PxIndexSetWithNumbers, OfAnArrayHoldsItsValuesEachOnce) {
    NSIndexSet const set = pxIndexSetWithNumbers(NSArray::arrayWithObjects_({number(7), number(2), number(7)}));
    EXPECT_TRUE(set.isEqual_(at({2, 7})));
    EXPECT_EQ(set.count(), 2U);
    EXPECT_EQ(pxIndexSetWithNumbers(NSArray::array()).count(), 0U);
}

TEST(PxIndexSetWithNumbers, IsNewAndMutable) {
    NSArray const numbers = NSArray::arrayWithObject_(number(7));
    for (NSMutableIndexSet const& set :
         {pxIndexSetWithNumbers(numbers), pxIndexSetWithNumbers(NSSet::setWithArray_(numbers)),
          pxIndexSetWithNumbers(numbers.objectEnumerator())}) {
        EXPECT_TRUE(as<NSMutableIndexSet>(id(set)) != nil);
        set.addIndex_(9);
        EXPECT_TRUE(set.isEqual_(at({7, 9})));
    }
}

TEST(PxIndexSetWithNumbers, OfASetIsTheSame) {
    EXPECT_TRUE(pxIndexSetWithNumbers(NSSet::setWithObjects_({number(1), number(3)})).isEqual_(at({1, 3})));
}

TEST(PxIndexSetWithNumbers, OfAnEnumeratorTakesTheRemainingNumbers) {
    NSEnumerator const numbers = NSArray::arrayWithObjects_({number(1), number(2), number(3)}).objectEnumerator();
    numbers.nextObject();
    EXPECT_TRUE(pxIndexSetWithNumbers(numbers).isEqual_(at({2, 3})));
    EXPECT_TRUE(numbers.nextObject() == nil);
}

TEST(PxIndexSetWithNumbers, ReadsTextAsTheNumberItBeginsWith) {
    EXPECT_TRUE(pxIndexSetWithNumbers(NSArray::arrayWithObjects_({"text", "12 months"})).isEqual_(at({0, 12})));
}

TEST(PxIndexSetWithNumbers, RaisesForNumbersThatAreNoIndexes) {
    for (id const& value : std::vector<id>{number(-1), NSNumber::numberWithLongLong_(0x80000000),
                                           NSNumber::numberWithLongLong_(NSNotFound), "-1"})
        EXPECT_THROW(pxIndexSetWithNumbers(NSArray::arrayWithObject_(value)), NSRangeException)
            << value.description().UTF8String();
    EXPECT_TRUE(pxIndexSetWithNumbers(NSArray::arrayWithObject_(NSNumber::numberWithLongLong_(NSNotFound - 1)))
                    .containsIndex_(NSNotFound - 1));
    EXPECT_THROW(pxIndexSetWithNumbers(NSArray::arrayWithObject_(NSNull::null())), NSInvalidArgumentException);
}

TEST(PxIndexSetWithNumbers, OfNilIsNil) {
    EXPECT_TRUE(pxIndexSetWithNumbers(NSArray()) == nil);
    EXPECT_TRUE(pxIndexSetWithNumbers(NSSet()) == nil);
    EXPECT_TRUE(pxIndexSetWithNumbers(NSEnumerator()) == nil);
}

TEST(PxArrayWithIndexes, AnswersNumbersInAscendingOrder) {
    NSArray const numbers = pxArrayWithIndexes(at({9, 0, 4, 5}));
    EXPECT_EQ(joined(numbers, ","), "0,4,5,9");
    EXPECT_TRUE(as<NSMutableArray>(numbers) == nil);
    EXPECT_TRUE(numbers.objectAtIndex_(1).isEqual_(number(4)));
    EXPECT_EQ(joined(pxArrayWithIndexes(at({NSNotFound - 1})), ","), "2147483646");
    EXPECT_EQ(pxArrayWithIndexes(NSIndexSet::indexSet()).count(), 0U);
    EXPECT_TRUE(pxArrayWithIndexes(nil) == nil);
}

TEST(PxArrayWithIndexes, IsTheWayBack) {
    NSIndexSet const set = at({1, 2, 3, 1000000});
    EXPECT_TRUE(pxIndexSetWithNumbers(pxArrayWithIndexes(set)).isEqual_(set));
}

TEST(PxStringValues, AsksEachElementInOrder) {
    NSArray const values = pxStringValues(NSArray::arrayWithObjects_({number(3), NSNumber::numberWithDouble_(1.5)}));
    EXPECT_EQ(joined(values, ","), "3,1.5");
    EXPECT_TRUE(as<NSMutableArray>(values) == nil);
    EXPECT_EQ(pxStringValues(NSArray::array()).count(), 0U);
    EXPECT_THROW(pxStringValues(NSArray::arrayWithObject_(NSNull::null())), NSInvalidArgumentException);
    EXPECT_TRUE(pxStringValues(nil) == nil);
}

TEST(PxFlattenedMutableArrayOfArrays, JoinsTheElementsWithTheirDuplicates) {
    NSArray const arrays = NSArray::arrayWithObjects_({letters("ab"), letters(""), letters("bc")});
    NSMutableArray const flat = pxFlattenedMutableArrayOfArrays(arrays);
    EXPECT_EQ(joined(flat, ""), "abbc");
    flat.addObject_("x");
    EXPECT_EQ(joined(as<NSArray>(arrays.objectAtIndex_(2)), ""), "bc");
    EXPECT_EQ(joined(pxFlattenedMutableArrayOfArrays(NSArray::array()), ""), "");
    EXPECT_THROW(pxFlattenedMutableArrayOfArrays(letters("a")), NSInvalidArgumentException);
    EXPECT_TRUE(pxFlattenedMutableArrayOfArrays(nil) == nil);
}

TEST(PxFlattenedMutableSetOfSets, UnitesTheElements) {
    NSSet const first = NSSet::setWithArray_(letters("ab"));
    NSArray const sets = NSArray::arrayWithObjects_({first, NSSet::setWithArray_(letters("bc"))});
    NSMutableSet const united = pxFlattenedMutableSetOfSets(sets);
    EXPECT_TRUE(united.isEqual_(NSSet::setWithArray_(letters("abc"))));
    EXPECT_EQ(first.count(), 2U);
    EXPECT_EQ(pxFlattenedMutableSetOfSets(NSArray::array()).count(), 0U);
    EXPECT_THROW(pxFlattenedMutableSetOfSets(letters("a")), NSInvalidArgumentException);
    EXPECT_TRUE(pxFlattenedMutableSetOfSets(nil) == nil);
}

// By design: the argument grows, not the receiver.
TEST(PxUnionWithSet, AddsTheReceiverToTheArgument) {
    NSMutableSet const receiver = NSMutableSet::setWithArray_(letters("ab"));
    NSMutableSet const argument = NSMutableSet::setWithArray_(letters("bc"));
    pxUnionWithSet_(receiver, argument);
    EXPECT_EQ(receiver.count(), 2U);
    EXPECT_TRUE(argument.isEqual_(NSSet::setWithArray_(letters("abc"))));
    pxUnionWithSet_(receiver, receiver);
    pxUnionWithSet_(receiver, nil);
    pxUnionWithSet_(nil, argument);
    EXPECT_EQ(receiver.count(), 2U);
    EXPECT_EQ(argument.count(), 3U);
}

TEST(PxMutableArrayWithTrimmedObjectsForKeys, KeepsTheGivenKeysAlone) {
    NSArray const records = NSArray::arrayWithObjects_({record("/a", "1"), record("/b", nil)});
    NSMutableArray const trimmed =
        pxMutableArrayWithTrimmedObjectsForKeys_(records, NSArray::arrayWithObjects_({"version", "colour"}));
    ASSERT_EQ(trimmed.count(), 2U);
    NSMutableDictionary const first = as<NSMutableDictionary>(trimmed.objectAtIndex_(0));
    EXPECT_EQ(joined(first.allKeys(), ","), "version");
    EXPECT_EQ(as<NSDictionary>(trimmed.objectAtIndex_(1)).count(), 0U);
    first.setObject_forKey_("2", "version");
    EXPECT_TRUE(records.objectAtIndex_(0).valueForKey_("version").isEqual_("1"));
    EXPECT_EQ(as<NSDictionary>(pxMutableArrayWithTrimmedObjectsForKeys_(records, nil).objectAtIndex_(0)).count(), 0U);
    EXPECT_THROW(pxMutableArrayWithTrimmedObjectsForKeys_(letters("a"), letters("x")), NSUndefinedKeyException);
    EXPECT_TRUE(pxMutableArrayWithTrimmedObjectsForKeys_(nil, letters("x")) == nil);
}

TEST(PxDictionaryWithDictionary, TakesTheGivenKeys) {
    NSMutableDictionary const taken =
        pxDictionaryWithDictionary_forKeys_(record("/a", "1"), NSArray::arrayWithObjects_({"path", "colour"}));
    EXPECT_EQ(joined(taken.allKeys(), ","), "path");
    EXPECT_TRUE(taken.objectForKey_("path").isEqual_("/a"));
    EXPECT_EQ(pxDictionaryWithDictionary_forKeys_(nil, letters("a")).count(), 0U);
    EXPECT_EQ(pxDictionaryWithDictionary_forKeys_(record("/a", "1"), nil).count(), 0U);
}

TEST(PxUniqueCopyNameForName, CountsFromOneUntilANameIsFree) {
    struct Row {
        std::vector<id> taken;
        char const* expected;
    };
    for (Row const& row : {Row{{}, "X"}, Row{{"x", "X 1"}, "X"}, Row{{"X"}, "X 1"}, Row{{"X", "X 1"}, "X 2"},
                           Row{{"X", "X 1", "X 3"}, "X 2"}, Row{{"X", "X 01"}, "X 1"}})
        EXPECT_EQ(pxUniqueCopyNameForName_(NSArray::arrayWithVector(row.taken), "X").UTF8String(), row.expected);
    EXPECT_EQ(pxUniqueCopyNameForName_(NSArray::arrayWithObjects_({"X 1"}), "X 1").UTF8String(), "X 1 1");
    EXPECT_EQ(pxUniqueCopyNameForName_(NSArray::arrayWithObject_("%@"), "%@").UTF8String(), "%@ 1");
    EXPECT_TRUE(pxUniqueCopyNameForName_(NSArray::array(), nil) == nil);
    EXPECT_TRUE(pxUniqueCopyNameForName_(nil, "X") == nil);
}

TEST(PxUniqueCopyNameForName, PassesManyTakenNames) {
    NSMutableArray const taken = NSMutableArray::arrayWithObjects_({"X"});
    for (int index = 1; index <= 20000; ++index)
        taken.addObject_(NSString::stringWithFormat_("X %d", index));
    EXPECT_EQ(pxUniqueCopyNameForName_(taken, "X").UTF8String(), "X 20001");
}

TEST(ObjectEnumerator, OfTheNullObjectGivesNothing) {
    EXPECT_TRUE(objectEnumerator(NSNull::null()) == nil);
    EXPECT_TRUE(objectEnumerator(nil) == nil);
    EXPECT_TRUE(id(NSNull::null()).performSelector_("objectEnumerator") == nil);
}

TEST(PxMoveObjectAtIndex, PutsTheElementInFrontOfTheOneThere) {
    struct Row {
        NSUInteger from, to;
        char const* expected;
    };
    for (Row const row : {Row{1, 4, "acdbef"}, Row{4, 1, "aebcdf"}, Row{2, 2, "abcdef"}, Row{0, 6, "bcdefa"},
                          Row{5, 6, "abcdef"}, Row{5, 0, "fabcde"}, Row{0, 1, "abcdef"}}) {
        NSMutableArray const array = letters("abcdef");
        pxMoveObjectAtIndex_toIndex_(array, row.from, row.to);
        EXPECT_EQ(joined(array, ""), row.expected) << row.from << " to " << row.to;
    }
}

TEST(PxMoveObjectAtIndex, MovesTheVeryObjectAmongEqualOnes) {
    NSMutableArray const array = letters("aab");
    id const first = array.objectAtIndex_(0);
    pxMoveObjectAtIndex_toIndex_(array, 0, 3);
    EXPECT_EQ(joined(array, ""), "aba");
    EXPECT_TRUE(isSame(array.objectAtIndex_(2), first));
}

TEST(PxMoveObjectAtIndex, RaisesOutsideTheArray) {
    NSMutableArray const array = letters("abc");
    EXPECT_THROW(pxMoveObjectAtIndex_toIndex_(array, 3, 0), NSRangeException);
    EXPECT_THROW(pxMoveObjectAtIndex_toIndex_(array, 0, 4), NSRangeException);
    EXPECT_THROW(pxMoveObjectAtIndex_toIndex_(array, static_cast<NSUInteger>(-1), 0), NSRangeException);
    EXPECT_THROW(pxMoveObjectAtIndex_toIndex_(array, 0, 0x80000000), NSRangeException);
    pxMoveObjectAtIndex_toIndex_(array, 9, 9);
    EXPECT_EQ(joined(array, ""), "abc");
    pxMoveObjectAtIndex_toIndex_(nil, 0, 1);
    pxMoveObjectAtIndex_toIndex_(nil, 1, 0);
}

TEST(PxMoveObjectsAtIndexes, PutsTheBlockInFrontOfTheOneThere) {
    struct Row {
        std::vector<NSUInteger> indexes;
        NSUInteger to;
        char const* expected;
    };
    for (Row const& row : {Row{{1, 2}, 4, "adbcef"}, Row{{1, 2}, 0, "bcadef"}, Row{{1, 2}, 6, "adefbc"},
                           Row{{5, 0}, 3, "bcafde"}, Row{{}, 2, "abcdef"}, Row{{3}, 0x80000000, "abcefd"}}) {
        NSMutableArray const array = letters("abcdef");
        pxMoveObjectsAtIndexes_toIndex_(array, at(row.indexes), row.to);
        EXPECT_EQ(joined(array, ""), row.expected) << row.to;
    }
}

// By design: what the block goes in front of is found by equality.
TEST(PxMoveObjectsAtIndexes, WithDuplicatesGoesInFrontOfTheFirst) {
    NSMutableArray const array = letters("xaxb");
    pxMoveObjectsAtIndexes_toIndex_(array, at({3}), 2);
    EXPECT_EQ(joined(array, ""), "bxax");
    NSMutableArray const own = letters("axbx");
    pxMoveObjectsAtIndexes_toIndex_(own, at({1, 2}), 1);
    EXPECT_EQ(joined(own, ""), "axbx");
}

// By design the removed elements are not put back.
TEST(PxMoveObjectsAtIndexes, RaisesInFrontOfOneOfItsOwn) {
    NSMutableArray const array = letters("abcd");
    EXPECT_THROW(pxMoveObjectsAtIndexes_toIndex_(array, at({1, 2}), 2), NSRangeException);
    EXPECT_EQ(joined(array, ""), "ad");
}

TEST(PxMoveObjectsAtIndexes, ChangesNothingForAnIndexOutside) {
    NSMutableArray const array = letters("abc");
    EXPECT_THROW(pxMoveObjectsAtIndexes_toIndex_(array, at({0, 3}), 1), NSRangeException);
    pxMoveObjectsAtIndexes_toIndex_(array, nil, 1);
    EXPECT_EQ(joined(array, ""), "abc");
    pxMoveObjectsAtIndexes_toIndex_(nil, at({0}), 1);
}

TEST(PxCollections, AreMessagesToo) {
    NSMutableArray const array = letters("abc");
    id const object = array;
    object.performSelector_withObject_withObject_("pxMoveObjectAtIndex:toIndex:", number(0), number(3));
    object.performSelector_withObject_withObject_("pxMoveObjectsAtIndexes:toIndex:", at({2}), number(0));
    EXPECT_EQ(joined(array, ""), "abc");
    EXPECT_EQ(object.performSelector_withObject_("pxUniqueCopyNameForName:", "a").description().UTF8String(), "a 1");
    id const numbers = NSArray::arrayWithObject_(number(4));
    EXPECT_TRUE(
        numbers.performSelector_("pxIndexSetWithNumbers").performSelector_("pxArrayWithIndexes").isEqual_(numbers));
    for (id const& receiver : {id(NSSet::set()), id(NSArray::array().objectEnumerator())})
        EXPECT_TRUE(receiver.respondsToSelector_("pxIndexSetWithNumbers"));
}

} // namespace
} // namespace mac::test
