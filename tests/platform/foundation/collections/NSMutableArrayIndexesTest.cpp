#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/predicates/NSPredicate.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

NSIndexSet at(std::initializer_list<NSUInteger> indexes) {
    NSMutableIndexSet const set = NSMutableIndexSet::indexSet();
    for (NSUInteger const index : indexes)
        set.addIndex_(index);
    return set;
}

NSMutableArray letters() { return NSMutableArray::arrayWithObjects_({"a", "b", "c", "d", "e"}); }

} // namespace

TEST(NSArrayIndexes, AnswersTheObjectsInAscendingOrder) {
    EXPECT_EQ(joined(letters().objectsAtIndexes_(at({3, 0, 4}))), "a d e");
    EXPECT_EQ(letters().objectsAtIndexes_(at({})).count(), 0U);
    EXPECT_EQ(letters().objectsAtIndexes_(nil).count(), 0U);
    EXPECT_THROW(letters().objectsAtIndexes_(at({0, 5})), NSRangeException);
    EXPECT_THROW(letters().objectsAtIndexes_(at({NSNotFound - 1})), NSRangeException);
    EXPECT_TRUE(NSArray().objectsAtIndexes_(at({0})) == nil);
}

TEST(NSMutableArrayIndexes, InsertsWhereTheObjectsStandAfterwards) {
    NSMutableArray const array = letters();
    array.insertObjects_atIndexes_(words({"x", "y", "z"}), at({0, 3, 7}));
    EXPECT_EQ(joined(array), "x a b y c d e z");
    array.insertObjects_atIndexes_(words({"1", "2"}), at({8, 9}));
    EXPECT_EQ(joined(array), "x a b y c d e z 1 2");
    array.insertObjects_atIndexes_(array, NSIndexSet::indexSetWithIndexesInRange_({0, 10}));
    EXPECT_EQ(array.count(), 20U);
}

TEST(NSMutableArrayIndexes, InsertingChangesNothingWhereItRaises) {
    NSMutableArray const array = letters();
    EXPECT_THROW(array.insertObjects_atIndexes_(words({"x"}), at({6})), NSRangeException);
    EXPECT_THROW(array.insertObjects_atIndexes_(words({"x", "y"}), at({0, 7})), NSRangeException);
    EXPECT_THROW(array.insertObjects_atIndexes_(words({"x"}), at({0, 1})), NSInvalidArgumentException);
    EXPECT_THROW(array.insertObjects_atIndexes_(nil, at({0})), NSInvalidArgumentException);
    array.insertObjects_atIndexes_(nil, nil);
    EXPECT_EQ(joined(array), "a b c d e");
}

TEST(NSMutableArrayIndexes, Removes) {
    NSMutableArray const array = letters();
    array.removeObjectsAtIndexes_(at({0, 2, 3}));
    EXPECT_EQ(joined(array), "b e");
    EXPECT_THROW(array.removeObjectsAtIndexes_(at({0, 2})), NSRangeException);
    array.removeObjectsAtIndexes_(nil);
    array.removeObjectsAtIndexes_(at({}));
    EXPECT_EQ(joined(array), "b e");
    array.removeObjectsAtIndexes_(at({0, 1}));
    EXPECT_EQ(array.count(), 0U);
}

TEST(NSMutableArrayIndexes, RemovesARange) {
    NSMutableArray const array = letters();
    array.removeObjectsInRange_({1, 3});
    EXPECT_EQ(joined(array), "a e");
    array.removeObjectsInRange_({2, 0});
    EXPECT_THROW(array.removeObjectsInRange_({3, 0}), NSRangeException);
    EXPECT_THROW(array.removeObjectsInRange_({1, 2}), NSRangeException);
    EXPECT_THROW(array.removeObjectsInRange_({1, 0xFFFFFFFF}), NSRangeException);
    EXPECT_EQ(joined(array), "a e");
}

TEST(NSMutableArrayIndexes, Replaces) {
    NSMutableArray const array = letters();
    array.replaceObjectsAtIndexes_withObjects_(at({0, 3, 4}), words({"x", "y", "z"}));
    EXPECT_EQ(joined(array), "x b c y z");
    EXPECT_THROW(array.replaceObjectsAtIndexes_withObjects_(at({0, 5}), words({"1", "2"})), NSRangeException);
    EXPECT_THROW(array.replaceObjectsAtIndexes_withObjects_(at({0}), words({})), NSInvalidArgumentException);
    EXPECT_EQ(joined(array), "x b c y z");
}

TEST(NSMutableArrayIndexes, IsWholeWhenWhatItDropsIsDestroyed) {
    NSMutableArray const array = NSMutableArray::array();
    Parcel parcel = chain(1);
    NSUInteger countThen = 0;
    bodyOf(parcel)->m_lastWord = [&] { countThen = array.count(); };
    array.addObject_(parcel);
    array.addObject_("b");
    parcel = nil;
    array.removeObjectsAtIndexes_(at({0}));
    EXPECT_EQ(countThen, 1U);
}

TEST(NSMutableArrayFiltering, RaisesWhenAComparisonChangesTheArray) {
    NSMutableArray const array = NSMutableArray::array();
    Peg const peg = Peg::pegWithNumber_hash_(1, 1);
    bodyOf(peg)->m_whenCompared = [&] { array.removeAllObjects(); };
    array.addObject_(peg);
    array.addObject_("a");
    NSPredicate const isOther = NSPredicate::predicateWithFormat_("SELF == %@", Peg::pegWithNumber_hash_(2, 1));
    EXPECT_THROW(array.filteredArrayUsingPredicate_(isOther), NSGenericException);
    EXPECT_EQ(array.count(), 0U);
}

TEST(NSMutableArrayFiltering, AnswersAnObjectThatItsComparisonReplaced) {
    NSMutableArray const array = NSMutableArray::arrayWithObjects_({"a"});
    Peg peg = Peg::pegWithNumber_hash_(1, 1);
    bodyOf(peg)->m_whenCompared = [&] { array.replaceObjectAtIndex_withObject_(0, "b"); };
    array.setArray_(NSArray::arrayWithObject_(peg));
    peg = nil;
    NSPredicate const isEqual = NSPredicate::predicateWithFormat_("SELF == %@", Peg::pegWithNumber_hash_(1, 1));
    NSArray const found = array.filteredArrayUsingPredicate_(isEqual);
    ASSERT_EQ(found.count(), 1U);
    EXPECT_TRUE(as<Peg>(found.lastObject()) != nil);
    EXPECT_EQ(joined(array), "b");
}

TEST(NSMutableArrayIndexes, NilDoesNothing) {
    NSMutableArray const none;
    none.insertObjects_atIndexes_(words({"a"}), at({0}));
    none.removeObjectsAtIndexes_(at({0}));
    none.removeObjectsInRange_({0, 1});
    none.replaceObjectsAtIndexes_withObjects_(at({0}), words({"a"}));
    EXPECT_TRUE(none == nil);
}

} // namespace mac::test
