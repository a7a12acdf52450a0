#include "platform/foundation/collections/NSEnumerator.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(NSEnumerator, GivesEachObjectInOrderThenNilForGood) {
    NSEnumerator const enumerator = words({"a", "b"}).objectEnumerator();
    EXPECT_EQ(text(enumerator.nextObject()), "a");
    EXPECT_EQ(text(enumerator.nextObject()), "b");
    EXPECT_TRUE(enumerator.nextObject() == nil);
    EXPECT_TRUE(enumerator.nextObject() == nil);
}

TEST(NSEnumerator, GivesTheObjectsOfAnArrayFromTheEnd) {
    EXPECT_TRUE(words({"a", "b", "c"}).reverseObjectEnumerator().allObjects().isEqual_(words({"c", "b", "a"})));
    EXPECT_TRUE(NSArray::array().reverseObjectEnumerator().nextObject() == nil);
}

TEST(NSEnumerator, AnswersThoseNotGivenYetAllAtOnce) {
    NSEnumerator const enumerator = words({"a", "b", "c"}).objectEnumerator();
    enumerator.nextObject();
    EXPECT_TRUE(enumerator.allObjects().isEqual_(words({"b", "c"})));
    EXPECT_TRUE(enumerator.nextObject() == nil);
    EXPECT_EQ(enumerator.allObjects().count(), 0U);
}

TEST(NSEnumerator, KeepsItsCollectionAlive) {
    NSMutableArray array = NSMutableArray::arrayWithObjects_({"a"});
    NSEnumerator const enumerator = array.objectEnumerator();
    array = nil;
    EXPECT_EQ(text(enumerator.nextObject()), "a");
}

TEST(NSEnumerator, RaisesWhenItsArrayHasAnotherCountThanBefore) {
    NSMutableArray const array = NSMutableArray::arrayWithObjects_({"a", "b"});
    NSEnumerator const enumerator = array.objectEnumerator();
    enumerator.nextObject();
    array.addObject_("c");
    EXPECT_THROW(enumerator.nextObject(), NSGenericException);
    array.removeAllObjects();
    EXPECT_THROW(enumerator.nextObject(), NSGenericException);
    EXPECT_THROW(enumerator.allObjects(), NSGenericException);
}

TEST(NSEnumerator, GivesAnObjectThatWasReplacedMeanwhile) {
    NSMutableArray const array = NSMutableArray::arrayWithObjects_({"a", "b"});
    NSEnumerator const enumerator = array.objectEnumerator();
    array.replaceObjectAtIndex_withObject_(1, "x");
    EXPECT_TRUE(enumerator.allObjects().isEqual_(words({"a", "x"})));
}

TEST(NSEnumerator, RaisesWhenAMemberOfItsArrayMadeRoomForAnother) {
    NSMutableArray const array = NSMutableArray::arrayWithObjects_({"a", "b"});
    NSEnumerator const enumerator = array.reverseObjectEnumerator();
    array.removeLastObject();
    array.addObject_("c");
    EXPECT_THROW(enumerator.nextObject(), NSGenericException);
}

TEST(NSEnumerator, RaisesWhenItsSetChanged) {
    NSMutableSet const set = NSMutableSet::setWithArray_(words({"a", "b"}));
    NSEnumerator const enumerator = set.objectEnumerator();
    set.addObject_("b");
    EXPECT_EQ(text(enumerator.nextObject()), "a");
    set.removeObject_("a");
    EXPECT_THROW(enumerator.nextObject(), NSGenericException);
    EXPECT_THROW(enumerator.allObjects(), NSGenericException);
    NSEnumerator const other = set.objectEnumerator();
    set.removeAllObjects();
    EXPECT_THROW(other.nextObject(), NSGenericException);
}

TEST(NSEnumerator, RaisesWhenItsDictionaryHasOtherKeys) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    dictionary.setObject_forKey_("1", "a");
    dictionary.setObject_forKey_("1", "z");
    NSEnumerator const keys = dictionary.keyEnumerator();
    NSEnumerator const values = dictionary.objectEnumerator();
    dictionary.setObject_forKey_("2", "a");
    EXPECT_EQ(text(keys.nextObject()), "a");
    EXPECT_EQ(text(values.nextObject()), "2");
    dictionary.setObject_forKey_("3", "b");
    EXPECT_THROW(keys.nextObject(), NSGenericException);
    EXPECT_THROW(values.nextObject(), NSGenericException);
}

TEST(NSEnumerator, IsAtItsEndWhateverBecomesOfTheCollection) {
    NSMutableArray const array = NSMutableArray::arrayWithObjects_({"a"});
    NSMutableSet const set = NSMutableSet::setWithArray_(array);
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    dictionary.setObject_forKey_("1", "a");
    NSEnumerator const enumerators[]{array.objectEnumerator(), array.reverseObjectEnumerator(), set.objectEnumerator(),
                                     dictionary.keyEnumerator(), dictionary.objectEnumerator()};
    for (NSEnumerator const& enumerator : enumerators)
        EXPECT_TRUE(enumerator.nextObject() != nil);
    array.addObject_("b");
    set.addObject_("b");
    dictionary.setObject_forKey_("2", "b");
    for (NSEnumerator const& enumerator : enumerators) {
        EXPECT_TRUE(enumerator.nextObject() == nil);
        EXPECT_EQ(enumerator.allObjects().count(), 0U);
    }
}

TEST(NSEnumerator, PassesPlacesThatWereGivenUpBefore) {
    NSMutableSet const set = NSMutableSet::setWithArray_(words({"a", "b", "c", "d"}));
    set.removeObject_("a");
    set.removeObject_("d");
    EXPECT_TRUE(set.objectEnumerator().allObjects().isEqual_(words({"b", "c"})));
}

TEST(NSEnumerator, KeepsSetsAndDictionariesAlive) {
    NSEnumerator const members = NSSet::setWithObject_("a").objectEnumerator();
    NSEnumerator const keys = NSDictionary::dictionaryWithObject_forKey_("1", "b").keyEnumerator();
    EXPECT_EQ(text(members.nextObject()), "a");
    EXPECT_EQ(text(keys.nextObject()), "b");
}

TEST(NSEnumerator, UnderstandsMessagesByName) {
    id const enumerator = words({"a", "b"}).objectEnumerator();
    EXPECT_EQ(text(enumerator.performSelector_("nextObject")), "a");
    EXPECT_TRUE(enumerator.performSelector_("allObjects").isEqual_(words({"b"})));
}

TEST(NSEnumerator, NilGivesNothing) {
    NSEnumerator const none;
    EXPECT_TRUE(none.nextObject() == nil);
    EXPECT_TRUE(none.allObjects() == nil);
    EXPECT_TRUE(NSArray().objectEnumerator() == nil);
    EXPECT_TRUE(NSArray().reverseObjectEnumerator() == nil);
    EXPECT_TRUE(NSSet().objectEnumerator() == nil);
    EXPECT_TRUE(NSDictionary().keyEnumerator() == nil);
    EXPECT_TRUE(NSDictionary().objectEnumerator() == nil);
}

} // namespace mac::test
