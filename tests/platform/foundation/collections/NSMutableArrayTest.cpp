#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

NSMutableArray list(std::initializer_list<char const*> names) { return as<NSMutableArray>(words(names).mutableCopy()); }

} // namespace

TEST(NSMutableArray, HoldsWhatItWasMadeOf) {
    EXPECT_EQ(NSMutableArray::array().count(), 0U);
    EXPECT_EQ(joined(NSMutableArray::arrayWithArray_(words({"a", "b"}))), "a b");
    EXPECT_EQ(NSMutableArray::arrayWithArray_(nil).count(), 0U);
    EXPECT_EQ(joined(NSMutableArray::arrayWithObjects_({"a", "b", nil, "c"})), "a b");
}

TEST(NSMutableArray, TakesItsCapacityAsAHintOnly) {
    for (NSUInteger const capacity : {0U, 1U, 1000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        NSMutableArray const array = NSMutableArray::arrayWithCapacity_(capacity);
        EXPECT_EQ(array.count(), 0U);
        array.addObject_("a");
        EXPECT_EQ(joined(array), "a");
    }
}

TEST(NSMutableArray, AddsAtTheEnd) {
    NSMutableArray const array = list({"a"});
    array.addObject_("b");
    array.addObjectsFromArray_(words({"c", "d"}));
    array.addObjectsFromArray_(nil);
    EXPECT_EQ(joined(array), "a b c d");
}

TEST(NSMutableArray, AddsItsOwnObjects) {
    NSMutableArray const array = list({"a", "b"});
    array.addObjectsFromArray_(array);
    EXPECT_EQ(joined(array), "a b a b");
    for (int times = 0; times < 20; ++times)
        array.addObject_(array.objects()[0]);
    EXPECT_EQ(array.count(), 24U);
    EXPECT_EQ(text(array.lastObject()), "a");
}

TEST(NSMutableArray, InsertsUpToTheEnd) {
    NSMutableArray const array = list({"a", "b"});
    array.insertObject_atIndex_("start", 0);
    array.insertObject_atIndex_("middle", 2);
    array.insertObject_atIndex_("end", 4);
    EXPECT_EQ(joined(array), "start a middle b end");
    array.insertObject_atIndex_(array.objects()[4], 0);
    EXPECT_EQ(text(array.objectAtIndex_(0)), "end");
}

TEST(NSMutableArray, ReplacesAndExchanges) {
    NSMutableArray const array = list({"a", "b", "c"});
    array.replaceObjectAtIndex_withObject_(1, "x");
    array.exchangeObjectAtIndex_withObjectAtIndex_(0, 2);
    array.exchangeObjectAtIndex_withObjectAtIndex_(1, 1);
    EXPECT_EQ(joined(array), "c x a");
    array.replaceObjectAtIndex_withObject_(0, array.objects()[0]);
    EXPECT_EQ(joined(array), "c x a");
}

TEST(NSMutableArray, RemovesByIndex) {
    NSMutableArray const array = list({"a", "b", "c", "d"});
    array.removeObjectAtIndex_(1);
    EXPECT_EQ(joined(array), "a c d");
    array.removeObjectAtIndex_(2);
    array.removeLastObject();
    EXPECT_EQ(joined(array), "a");
    array.removeAllObjects();
    EXPECT_EQ(array.count(), 0U);
    array.removeAllObjects();
}

TEST(NSMutableArray, RemovesEveryEqualObject) {
    NSMutableArray const array = list({"a", "b", "a", "c"});
    array.removeObject_("a");
    EXPECT_EQ(joined(array), "b c");
    array.removeObject_("x");
    array.removeObject_(nil);
    EXPECT_EQ(joined(array), "b c");
    array.removeObject_(array.objects()[0]);
    EXPECT_EQ(joined(array), "c");
}

TEST(NSMutableArray, RemovesTheVerySameObject) {
    id const first = NSMutableArray::array();
    id const second = NSMutableArray::array();
    NSMutableArray const array = NSMutableArray::arrayWithObjects_({first, second, first});
    array.removeObjectIdenticalTo_(first);
    ASSERT_EQ(array.count(), 1U);
    EXPECT_TRUE(isSame(array.lastObject(), second));
    array.removeObjectIdenticalTo_(nil);
    EXPECT_EQ(array.count(), 1U);
}

TEST(NSMutableArray, RemovesTheObjectsOfAnother) {
    NSMutableArray const array = list({"a", "b", "a", "c"});
    array.removeObjectsInArray_(words({"a", "x"}));
    EXPECT_EQ(joined(array), "b c");
    array.removeObjectsInArray_(nil);
    EXPECT_EQ(joined(array), "b c");
    array.removeObjectsInArray_(array);
    EXPECT_EQ(array.count(), 0U);
}

TEST(NSMutableArray, TakesTheObjectsOfAnother) {
    NSMutableArray const array = list({"a", "b"});
    array.setArray_(words({"x"}));
    EXPECT_EQ(joined(array), "x");
    array.setArray_(array);
    EXPECT_EQ(joined(array), "x");
    array.setArray_(nil);
    EXPECT_EQ(array.count(), 0U);
}

TEST(NSMutableArray, AnIndexPastTheEndRaisesAndChangesNothing) {
    NSMutableArray const array = list({"a", "b"});
    EXPECT_THROW(array.insertObject_atIndex_("x", 3), NSRangeException);
    EXPECT_THROW(array.insertObject_atIndex_("x", 0xFFFFFFFF), NSRangeException);
    EXPECT_THROW(array.replaceObjectAtIndex_withObject_(2, "x"), NSRangeException);
    EXPECT_THROW(array.removeObjectAtIndex_(2), NSRangeException);
    EXPECT_THROW(array.exchangeObjectAtIndex_withObjectAtIndex_(0, 2), NSRangeException);
    EXPECT_THROW(array.exchangeObjectAtIndex_withObjectAtIndex_(2, 0), NSRangeException);
    EXPECT_THROW(NSMutableArray::array().removeLastObject(), NSRangeException);
    EXPECT_THROW(NSMutableArray::array().removeObjectAtIndex_(0), NSRangeException);
    EXPECT_EQ(joined(array), "a b");
}

TEST(NSMutableArray, AddingNilRaisesAndChangesNothing) {
    NSMutableArray const array = list({"a"});
    EXPECT_THROW(array.addObject_(nil), NSInvalidArgumentException);
    EXPECT_THROW(array.insertObject_atIndex_(nil, 0), NSInvalidArgumentException);
    EXPECT_THROW(array.replaceObjectAtIndex_withObject_(0, nil), NSInvalidArgumentException);
    EXPECT_THROW(id(array).performSelector_withObject_("addObject:", nil), NSInvalidArgumentException);
    EXPECT_EQ(joined(array), "a");
}

TEST(NSMutableArray, NilChangesNothing) {
    NSMutableArray const none;
    none.addObject_("a");
    none.addObject_(nil);
    none.addObjectsFromArray_(words({"a"}));
    none.insertObject_atIndex_("a", 5);
    none.replaceObjectAtIndex_withObject_(5, "a");
    none.removeObjectAtIndex_(5);
    none.removeLastObject();
    none.removeObject_("a");
    none.removeObjectIdenticalTo_("a");
    none.removeObjectsInArray_(words({"a"}));
    none.removeAllObjects();
    none.exchangeObjectAtIndex_withObjectAtIndex_(5, 6);
    none.setArray_(words({"a"}));
    EXPECT_EQ(none.count(), 0U);
}

TEST(NSMutableArray, CopiesToAnImmutableOneOfItsOwn) {
    NSMutableArray const array = list({"a"});
    NSArray const copy = as<NSArray>(array.copy());
    EXPECT_TRUE(copy.isMemberOfClass_(classOf<NSArray>()));
    array.addObject_("b");
    EXPECT_EQ(joined(copy), "a");
    EXPECT_FALSE(isSame(array.mutableCopy(), array));
}

// An object that goes may look at the array it was in, and finds it whole and without itself.
TEST(NSMutableArray, IsWholeWhenWhatItDropsIsDestroyed) {
    void (*const drops[])(NSMutableArray const&){
        [](NSMutableArray const& array) { array.removeObjectAtIndex_(1); },
        [](NSMutableArray const& array) { array.replaceObjectAtIndex_withObject_(1, "x"); },
        [](NSMutableArray const& array) { array.removeObject_(array.objectAtIndex_(1)); },
        [](NSMutableArray const& array) { array.removeObjectIdenticalTo_(array.objectAtIndex_(1)); },
        [](NSMutableArray const& array) { array.removeAllObjects(); },
        [](NSMutableArray const& array) {
            array.setArray_(words({"x", "y"}));
        },
    };
    for (auto const& drop : drops) {
        NSMutableArray const array = list({"a", "c"});
        Parcel parcel = Parcel::parcelWithName_("p");
        bool isSeen = false;
        bodyOf(parcel)->m_lastWord = [&] {
            isSeen = true;
            for (id const& object : array)
                EXPECT_TRUE(as<NSString>(object) != nil);
            array.addObject_("last word");
        };
        array.insertObject_atIndex_(parcel, 1);
        parcel = nil;
        drop(array);
        EXPECT_TRUE(isSeen);
        EXPECT_EQ(text(array.lastObject()), "last word");
    }
}

TEST(NSMutableArray, IsWholeWhenAComparisonRaises) {
    NSMutableArray const array = NSMutableArray::array();
    for (int number = 0; number < 3; ++number)
        array.addObject_(Peg::pegWithNumber_hash_(number % 2, 1));
    bodyOf(as<Peg>(array.objectAtIndex_(2)))->m_whenCompared = [] { throw NSGenericException("no"); };
    EXPECT_THROW(array.removeObject_(Peg::pegWithNumber_hash_(0, 1)), NSGenericException);
    EXPECT_EQ(array.count(), 3U);
    for (id const& object : array)
        EXPECT_TRUE(object != nil);
}

} // namespace mac::test
