#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Associations.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(KeyValueObserving, FollowsEveryStepOfAPath) {
    Parcel const parcel = chain(3);
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "next.next.name", New | Old);
    parcel.next().next().setName_("x");
    EXPECT_EQ(recorder.last(NSKeyValueChangeOldKey), "c");
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "x");
    EXPECT_TRUE(isSame(recorder.told()[0].object, parcel));
    EXPECT_EQ(recorder.told()[0].keyPath, "next.next.name");
    parcel.next().setNext_(Parcel::parcelWithName_("y"));
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "y");
    parcel.setNext_(chain(2));
    EXPECT_EQ(recorder.last(NSKeyValueChangeOldKey), "y");
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "b");
    EXPECT_EQ(recorder.count(), 3U);
    parcel.next().setName_("middle");
    EXPECT_EQ(recorder.count(), 3U);
}

TEST(KeyValueObserving, LeavesObjectsThatDroppedOutOfThePath) {
    Parcel const parcel = chain(3);
    Parcel const middle = parcel.next();
    Parcel const last = middle.next();
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "next.next.name");
    parcel.setNext_(nil);
    EXPECT_EQ(recorder.count(), 1U);
    last.setName_("x");
    middle.setNext_(nil);
    EXPECT_EQ(recorder.count(), 1U);
    EXPECT_TRUE(last.body()->associations().listeners.empty());
}

TEST(KeyValueObserving, APathThroughNilIsFollowedOnceThereIsAnObject) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "next.next.name", New | Old | Initial);
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "<null>");
    parcel.setNext_(Parcel::parcelWithName_("b"));
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "<null>");
    parcel.next().setNext_(Parcel::parcelWithName_("c"));
    EXPECT_EQ(recorder.last(NSKeyValueChangeOldKey), "<null>");
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "c");
    parcel.next().next().setName_("x");
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "x");
    EXPECT_EQ(recorder.count(), 4U);
}

TEST(KeyValueObserving, APathThatComesBackToItsObjectTellsOnceAChange) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    parcel.setNext_(parcel);
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "next.next");
    parcel.setNext_(parcel);
    EXPECT_EQ(recorder.count(), 1U);
    parcel.setNext_(nil);
    EXPECT_EQ(recorder.count(), 2U);
    EXPECT_EQ(parcel.body()->associations().listeners.size(), 1U);
}

TEST(KeyValueObserving, RemovingTheObserverOfAPathLeavesEveryStep) {
    Parcel const parcel = chain(3);
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "next.next.name");
    parcel.removeObserver_forKeyPath_(recorder, "next.next.name");
    for (Parcel step = parcel; step != nil; step = step.next())
        EXPECT_TRUE(step.body()->associations().listeners.empty());
}

TEST(KeyValueObserving, ThePathsOfOthersFollowAlsoWhenAnObserverRaises) {
    Parcel const parcel = chain(2);
    Recorder const first = Recorder::recorder();
    Recorder const second = Recorder::recorder();
    first.observe(parcel, "next.name");
    second.observe(parcel, "next.name");
    first.whenTold([] { throw NSGenericException("no"); });
    Parcel const replacement = Parcel::parcelWithName_("x");
    EXPECT_THROW(parcel.setNext_(replacement), NSGenericException);
    first.whenTold({});
    replacement.setName_("y");
    EXPECT_EQ(first.count(), 2U);
    EXPECT_EQ(second.count(), 2U);
}

TEST(KeyValueObserving, APathThroughACollectionTellsWhenTheCollectionIsReplaced) {
    NSMutableDictionary const shelf = NSMutableDictionary::dictionary();
    shelf.setObject_forKey_(NSArray::arrayWithObject_(chain(1)), "parcels");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(shelf, "parcels.name", New);
    shelf.setObject_forKey_(NSArray::arrayWithObject_(Parcel::parcelWithName_("x")), "parcels");
    ASSERT_EQ(recorder.count(), 1U);
    NSArray const names = as<NSArray>(recorder.told()[0].change.objectForKey_(NSKeyValueChangeNewKey));
    EXPECT_TRUE(names.isEqual_(words({"x"})));
}

struct DictionaryChange {
    char const* name;
    void (*make)(NSMutableDictionary const& dictionary);
    char const* newName;
};

TEST(KeyValueObserving, TellsOfEachWayToChangeADictionary) {
    DictionaryChange const changes[]{
        {"setObject", [](NSMutableDictionary const& d) { d.setObject_forKey_("b", "name"); }, "b"},
        {"setValue", [](NSMutableDictionary const& d) { d.setValue_forKey_("b", "name"); }, "b"},
        {"setValue nil", [](NSMutableDictionary const& d) { d.setValue_forKey_(nil, "name"); }, "<null>"},
        {"removeObject", [](NSMutableDictionary const& d) { d.removeObjectForKey_("name"); }, "<null>"},
        {"removeObjects", [](NSMutableDictionary const& d) { d.removeObjectsForKeys_(words({"name"})); }, "<null>"},
        {"removeAllObjects", [](NSMutableDictionary const& d) { d.removeAllObjects(); }, "<null>"},
        {"addEntries",
         [](NSMutableDictionary const& d) {
             d.addEntriesFromDictionary_(NSDictionary::dictionaryWithObject_forKey_("b", "name"));
         },
         "b"},
        {"performSelector",
         [](NSMutableDictionary const& d) {
             d.performSelector_withObject_withObject_("setObject:forKey:", "b", "name");
         },
         "b"},
    };
    for (DictionaryChange const& change : changes) {
        SCOPED_TRACE(change.name);
        NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
        dictionary.setObject_forKey_("a", "name");
        dictionary.setObject_forKey_("other", "other");
        Recorder const recorder = Recorder::recorder();
        recorder.observe(dictionary, "name", New | Old);
        change.make(dictionary);
        EXPECT_EQ(recorder.count(), 1U);
        EXPECT_EQ(recorder.last(NSKeyValueChangeOldKey), "a");
        EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), change.newName);
    }
}

TEST(KeyValueObserving, ADottedKeyOfADictionaryNotifiesNoObserver) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    NSMutableDictionary const inner = NSMutableDictionary::dictionary();
    dictionary.setObject_forKey_(inner, "a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(dictionary, "a.b", New);
    dictionary.setObject_forKey_("dotted", "a.b");
    EXPECT_EQ(recorder.count(), 0U);
    inner.setObject_forKey_("nested", "b");
    EXPECT_EQ(recorder.count(), 1U);
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "nested");
}

TEST(KeyValueObserving, ADictionaryMayHoldKeysThatAreNoStrings) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    Recorder const recorder = Recorder::recorder();
    recorder.observe(dictionary, "1");
    dictionary.setObject_forKey_("one", NSNumber::numberWithInt_(1));
    EXPECT_EQ(recorder.count(), 0U);
    EXPECT_EQ(dictionary.count(), 1U);
}

TEST(KeyValueObserving, KeepsKeysApartThatNoUTF8Tells) {
    NSString const first = NSString::stringWithCodeUnits(u"\xDC80");
    NSString const second = NSString::stringWithCodeUnits(u"\xDC81");
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    Recorder const recorder = Recorder::recorder();
    recorder.observe(dictionary, first);
    dictionary.setObject_forKey_("a", second);
    EXPECT_EQ(recorder.count(), 0U);
    dictionary.setObject_forKey_("a", first);
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(KeyValueObserving, KeepsThePathThatWasGiven) {
    NSMutableString const path = NSMutableString::stringWithString_("name");
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, path);
    path.setString_("weight");
    parcel.setName_("b");
    ASSERT_EQ(recorder.count(), 1U);
    EXPECT_EQ(recorder.told()[0].keyPath, "name");
    parcel.removeObserver_forKeyPath_(recorder, "name");
}

} // namespace mac::test
