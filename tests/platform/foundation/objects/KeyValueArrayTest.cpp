#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/NSNull.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

constexpr NSUInteger Values = NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld;

NSMutableDictionary shelfOf(std::initializer_list<char const*> names) {
    NSMutableDictionary const shelf = NSMutableDictionary::dictionary();
    shelf.setObject_forKey_(words(names), "names");
    return shelf;
}

std::string namesOn(id const& shelf) { return joined(as<NSArray>(shelf.valueForKey_("names"))); }

// What the observer was told last: kind, indexes, old and new members.
std::string last(Recorder const& recorder) {
    NSDictionary const change = recorder.told().back().change;
    std::string told = recorder.last(NSKeyValueChangeKindKey) + " at";
    for (NSRange const range : as<NSIndexSet>(change.objectForKey_(NSKeyValueChangeIndexesKey)).ranges())
        told += " " + std::to_string(range.location) + "+" + std::to_string(range.length);
    return told + ", old: " + joined(as<NSArray>(change.objectForKey_(NSKeyValueChangeOldKey))) +
           ", new: " + joined(as<NSArray>(change.objectForKey_(NSKeyValueChangeNewKey)));
}

// An object whose getter never answers the same.
class Whim : public Handle<Whim, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        int m_count{0};
    };
    using Handle::Handle;

    static ClassDescription describeClass() {
        return {
            .name = "Whim",
            .superclass = classOf<NSObject>(),
            .makeBody = &makeEmptyBody<Whim>,
            .properties = {readOnlyProperty<&Whim::names>("names")},
        };
    }

    NSArray names() const { return NSArray::arrayWithObject_(NSNumber::numberWithInt_(++bodyOf(*this)->m_count)); }
};

} // namespace

TEST(MutableArrayValueForKey, ReadsTheArrayThatIsThereAtTheTime) {
    NSMutableDictionary const shelf = shelfOf({"a", "b"});
    NSMutableArray const names = shelf.mutableArrayValueForKey_("names");
    EXPECT_EQ(joined(names), "a b");
    EXPECT_EQ(names.count(), 2U);
    EXPECT_EQ(text(names.objectAtIndex_(1)), "b");
    EXPECT_EQ(names.indexOfObject_("b"), 1U);
    shelf.setObject_forKey_(words({"c"}), "names");
    EXPECT_EQ(joined(names), "c");
    EXPECT_TRUE(names.isEqual_(words({"c"})));
    EXPECT_TRUE(words({"c"}).isEqual_(names));
    EXPECT_EQ(names.hash(), words({"c"}).hash());
    EXPECT_EQ(text(names.valueForKey_("@count")), "1");
    EXPECT_EQ(text(names.lastObject()), "c");
}

TEST(MutableArrayValueForKey, CopiesToAnOrdinaryArray) {
    NSMutableDictionary const shelf = shelfOf({"a"});
    NSMutableArray const names = shelf.mutableArrayValueForKey_("names");
    NSArray const copy = as<NSArray>(names.copy());
    NSMutableArray const other = as<NSMutableArray>(names.mutableCopy());
    names.addObject_("b");
    other.addObject_("x");
    EXPECT_EQ(joined(copy), "a");
    EXPECT_EQ(joined(names), "a b");
}

TEST(MutableArrayValueForKey, ChangesTheArrayUnderTheKey) {
    NSMutableDictionary const shelf = shelfOf({"a", "b", "c"});
    NSMutableArray const names = shelf.mutableArrayValueForKey_("names");
    names.addObject_("d");
    EXPECT_EQ(namesOn(shelf), "a b c d");
    names.insertObject_atIndex_("x", 1);
    EXPECT_EQ(namesOn(shelf), "a x b c d");
    names.replaceObjectAtIndex_withObject_(0, "y");
    EXPECT_EQ(namesOn(shelf), "y x b c d");
    names.removeObject_("x");
    EXPECT_EQ(namesOn(shelf), "y b c d");
    names.exchangeObjectAtIndex_withObjectAtIndex_(0, 3);
    EXPECT_EQ(namesOn(shelf), "d b c y");
    names.removeLastObject();
    names.addObjectsFromArray_(words({"e", "f"}));
    EXPECT_EQ(namesOn(shelf), "d b c e f");
    names.removeObjectsInArray_(words({"d", "e"}));
    EXPECT_EQ(namesOn(shelf), "b c f");
    names.setArray_(words({"z"}));
    EXPECT_EQ(namesOn(shelf), "z");
    names.removeAllObjects();
    EXPECT_EQ(namesOn(shelf), "");
}

TEST(MutableArrayValueForKey, LeavesTheOldArrayAsItWas) {
    NSMutableArray const old = NSMutableArray::arrayWithObjects_({"a"});
    NSMutableDictionary const shelf = NSMutableDictionary::dictionary();
    shelf.setObject_forKey_(old, "names");
    shelf.mutableArrayValueForKey_("names").addObject_("b");
    EXPECT_EQ(old.count(), 1U);
    EXPECT_EQ(namesOn(shelf), "a b");
}

TEST(MutableArrayValueForKey, TellsObserversWhichIndexesChangedHow) {
    NSMutableDictionary const shelf = shelfOf({"a", "b", "c"});
    Recorder const recorder = Recorder::recorder();
    recorder.observe(shelf, "names", Values);
    NSMutableArray const names = shelf.mutableArrayValueForKey_("names");
    names.addObject_("d");
    EXPECT_EQ(last(recorder), "2 at 3+1, old: -, new: d");
    names.removeObjectAtIndex_(0);
    EXPECT_EQ(last(recorder), "3 at 0+1, old: a, new: -");
    names.replaceObjectAtIndex_withObject_(1, "x");
    EXPECT_EQ(last(recorder), "4 at 1+1, old: c, new: x");
    NSMutableIndexSet const outer = NSMutableIndexSet::indexSetWithIndex_(0);
    outer.addIndex_(4);
    names.insertObjects_atIndexes_(words({"p", "q"}), outer);
    EXPECT_EQ(namesOn(shelf), "p b x d q");
    EXPECT_EQ(last(recorder), "2 at 0+1 4+1, old: -, new: p q");
    names.removeObjectsAtIndexes_(outer);
    EXPECT_EQ(last(recorder), "3 at 0+1 4+1, old: p q, new: -");
    names.replaceObjectsAtIndexes_withObjects_(NSIndexSet::indexSetWithIndexesInRange_({1, 2}), words({"y", "z"}));
    EXPECT_EQ(last(recorder), "4 at 1+2, old: x d, new: y z");
    names.removeObject_("y");
    EXPECT_EQ(last(recorder), "3 at 1+1, old: y, new: -");
    EXPECT_EQ(recorder.count(), 7U);
}

TEST(MutableArrayValueForKey, TellsOfTheWholeValueWhereAllIsReplaced) {
    NSMutableDictionary const shelf = shelfOf({"a"});
    Recorder const recorder = Recorder::recorder();
    recorder.observe(shelf, "names", Values);
    shelf.mutableArrayValueForKey_("names").setArray_(words({"b", "c"}));
    EXPECT_EQ(last(recorder), "1 at, old: a, new: b c");
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(MutableArrayValueForKey, TellsBeforeTheChangeWhereThatIsAskedFor) {
    NSMutableDictionary const shelf = shelfOf({"a"});
    Recorder const recorder = Recorder::recorder();
    recorder.observe(shelf, "names", Values | NSKeyValueObservingOptionPrior);
    shelf.mutableArrayValueForKey_("names").removeObjectAtIndex_(0);
    ASSERT_EQ(recorder.count(), 2U);
    EXPECT_EQ(text(recorder.told()[0].change.objectForKey_(NSKeyValueChangeNotificationIsPriorKey)), "1");
    EXPECT_EQ(text(recorder.told()[0].change.objectForKey_(NSKeyValueChangeKindKey)), "3");
    EXPECT_EQ(recorder.told()[0].change.count(), 4U);
    EXPECT_EQ(last(recorder), "3 at 0+1, old: a, new: -");
}

TEST(MutableArrayValueForKey, TellsObserversAlongAPathOfTheWholeValue) {
    NSMutableDictionary const outer = NSMutableDictionary::dictionary();
    NSMutableDictionary const shelf = shelfOf({"a"});
    outer.setObject_forKey_(shelf, "shelf");
    Recorder const ofPath = Recorder::recorder();
    ofPath.observe(outer, "shelf.names", Values);
    Recorder const through = Recorder::recorder();
    through.observe(shelf, "names.length", 0);
    outer.mutableArrayValueForKeyPath_("shelf.names").addObject_("b");
    EXPECT_EQ(last(ofPath), "2 at 1+1, old: -, new: b");
    EXPECT_EQ(through.last(NSKeyValueChangeKindKey), "1");
    EXPECT_EQ(through.count(), 1U);
}

TEST(MutableArrayValueForKey, WhatRaisesChangesNothingAndTellsNobody) {
    NSMutableDictionary const shelf = shelfOf({"a", "b"});
    Recorder const recorder = Recorder::recorder();
    recorder.observe(shelf, "names");
    NSMutableArray const names = shelf.mutableArrayValueForKey_("names");
    EXPECT_THROW(names.removeObjectAtIndex_(2), NSRangeException);
    EXPECT_THROW(names.insertObject_atIndex_("x", 3), NSRangeException);
    EXPECT_THROW(names.replaceObjectAtIndex_withObject_(0x80000000, "x"), NSRangeException);
    EXPECT_THROW(names.addObject_(nil), NSInvalidArgumentException);
    EXPECT_EQ(namesOn(shelf), "a b");
    EXPECT_EQ(recorder.count(), 0U);
    names.addObject_("c");
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(MutableArrayValueForKey, StartsWithoutAnArray) {
    NSMutableDictionary const shelf = NSMutableDictionary::dictionary();
    NSMutableArray const names = shelf.mutableArrayValueForKey_("names");
    EXPECT_EQ(names.count(), 0U);
    names.addObject_("a");
    EXPECT_EQ(namesOn(shelf), "a");
}

TEST(MutableArrayValueForKey, OfAnotherObjectThanAnArrayRaisesOnUse) {
    NSMutableDictionary const shelf = NSMutableDictionary::dictionary();
    shelf.setObject_forKey_("text", "names");
    NSMutableArray const names = shelf.mutableArrayValueForKey_("names");
    EXPECT_THROW(names.count(), NSInvalidArgumentException);
    EXPECT_THROW(names.addObject_("a"), NSInvalidArgumentException);
    EXPECT_EQ(text(shelf.objectForKey_("names")), "text");
    EXPECT_THROW(Whim::alloc().mutableArrayValueForKey_("names").count(), NSInvalidArgumentException);
    EXPECT_THROW(Whim::alloc().mutableArrayValueForKey_("colour").count(), NSUndefinedKeyException);
}

TEST(MutableArrayValueForKey, KeepsItsObjectAlive) {
    NSMutableArray names;
    {
        NSMutableDictionary const shelf = shelfOf({"a"});
        names = shelf.mutableArrayValueForKey_("names");
    }
    names.addObject_("b");
    EXPECT_EQ(joined(names), "a b");
}

TEST(MutableArrayValueForKey, OfNilOrWithoutKeyIsNil) {
    EXPECT_TRUE(id().mutableArrayValueForKey_("names") == nil);
    EXPECT_TRUE(id().mutableArrayValueForKeyPath_("a.names") == nil);
    EXPECT_TRUE(NSMutableDictionary::dictionary().mutableArrayValueForKeyPath_("a.names") == nil);
    EXPECT_THROW(shelfOf({}).mutableArrayValueForKey_(nil), NSInvalidArgumentException);
    EXPECT_THROW(shelfOf({}).mutableArrayValueForKeyPath_(nil), NSInvalidArgumentException);
}

TEST(ChangeOfValuesAtIndexes, IsToldOfAnArrayChangedByHand) {
    NSMutableArray const array = NSMutableArray::arrayWithObjects_({"a", "b"});
    NSMutableDictionary const shelf = NSMutableDictionary::dictionary();
    shelf.setObject_forKey_(array, "names");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(shelf, "names", Values);
    NSIndexSet const indexes = NSIndexSet::indexSetWithIndex_(0);
    shelf.willChange_valuesAtIndexes_forKey_(NSKeyValueChangeRemoval, indexes, "names");
    array.removeObjectAtIndex_(0);
    shelf.didChange_valuesAtIndexes_forKey_(NSKeyValueChangeRemoval, indexes, "names");
    EXPECT_EQ(last(recorder), "3 at 0+1, old: a, new: -");
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(ChangeOfValuesAtIndexes, NeedsAKindAndIndexesAndToleratesIndexesOutside) {
    NSMutableDictionary const shelf = shelfOf({"a"});
    Recorder const recorder = Recorder::recorder();
    recorder.observe(shelf, "names", Values);
    NSIndexSet const outside = NSIndexSet::indexSetWithIndexesInRange_({0, 9});
    EXPECT_THROW(shelf.willChange_valuesAtIndexes_forKey_(NSKeyValueChangeSetting, outside, "names"),
                 NSInvalidArgumentException);
    EXPECT_THROW(shelf.willChange_valuesAtIndexes_forKey_(9, outside, "names"), NSInvalidArgumentException);
    EXPECT_THROW(shelf.willChange_valuesAtIndexes_forKey_(NSKeyValueChangeRemoval, nil, "names"),
                 NSInvalidArgumentException);
    shelf.willChange_valuesAtIndexes_forKey_(NSKeyValueChangeReplacement, outside, "names");
    shelf.didChange_valuesAtIndexes_forKey_(NSKeyValueChangeReplacement, outside, "names");
    EXPECT_EQ(last(recorder), "4 at 0+9, old: a, new: a");
}

TEST(ObserverOfElements, IsAddedToAndRemovedFromTheElementsAtTheIndexes) {
    NSArray const parcels = NSArray::arrayWithObjects_({chain(1), chain(1), chain(1)});
    NSMutableIndexSet const indexes = NSMutableIndexSet::indexSetWithIndex_(0);
    indexes.addIndex_(2);
    Recorder const recorder = Recorder::recorder();
    int context = 0;
    parcels.addObserver_toObjectsAtIndexes_forKeyPath_options_context_(recorder, indexes, "name", 0, &context);
    for (id const& parcel : parcels)
        parcel.setValue_forKey_("x", "name");
    ASSERT_EQ(recorder.count(), 2U);
    EXPECT_TRUE(isSame(recorder.told()[1].object, parcels.objectAtIndex_(2)));
    EXPECT_EQ(recorder.told()[1].context, &context);
    parcels.removeObserver_fromObjectsAtIndexes_forKeyPath_(recorder, indexes, "name");
    parcels.objectAtIndex_(0).setValue_forKey_("y", "name");
    EXPECT_EQ(recorder.count(), 2U);
    EXPECT_THROW(parcels.removeObserver_fromObjectsAtIndexes_forKeyPath_(recorder, indexes, "name"), NSRangeException);
    EXPECT_THROW(parcels.addObserver_toObjectsAtIndexes_forKeyPath_options_context_(
                     recorder, NSIndexSet::indexSetWithIndex_(3), "name", 0, nullptr),
                 NSRangeException);
    NSArray().addObserver_toObjectsAtIndexes_forKeyPath_options_context_(recorder, indexes, "name", 0, nullptr);
    NSArray().removeObserver_fromObjectsAtIndexes_forKeyPath_(recorder, indexes, "name");
}

} // namespace mac::test
