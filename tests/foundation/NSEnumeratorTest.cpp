#include "platform/foundation/NSEnumerator.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSSet.h"
#include "tests/foundation/Parcel.h"
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

TEST(NSEnumerator, OfASetGivesTheMembersItHadThen) {
    NSMutableSet const set = NSMutableSet::setWithArray_(words({"a", "b"}));
    NSEnumerator const enumerator = set.objectEnumerator();
    set.removeObject_(enumerator.nextObject());
    set.addObject_("c");
    EXPECT_EQ(text(enumerator.nextObject()), "b");
    EXPECT_TRUE(enumerator.nextObject() == nil);
}

TEST(NSEnumerator, OfADictionaryGivesTheKeysItHadThen) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    dictionary.setObject_forKey_("1", "a");
    NSEnumerator const enumerator = dictionary.keyEnumerator();
    dictionary.removeAllObjects();
    EXPECT_EQ(text(enumerator.nextObject()), "a");
    EXPECT_TRUE(enumerator.nextObject() == nil);
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
}

} // namespace mac::test
