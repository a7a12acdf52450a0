#include "platform/foundation/KeyValueObserving.h"
#include "platform/foundation/Associations.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/NSNull.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSSet.h"
#include "platform/foundation/Weak.h"
#include "tests/foundation/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

constexpr NSUInteger New = NSKeyValueObservingOptionNew;
constexpr NSUInteger Old = NSKeyValueObservingOptionOld;
constexpr NSUInteger Initial = NSKeyValueObservingOptionInitial;
constexpr NSUInteger Prior = NSKeyValueObservingOptionPrior;

// Parcels a, b, c …, each the next of the one before.
Parcel chain(int length) {
    Parcel first;
    for (int index = length - 1; index >= 0; --index) {
        Parcel const parcel =
            Parcel::parcelWithName_(NSString::stringWithUTF8String_(std::string(1, static_cast<char>('a' + index))));
        parcel.setNext_(first);
        first = parcel;
    }
    return first;
}

} // namespace

TEST(KeyValueObserving, TellsOnceOfASetter) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    int context = 0;
    recorder.observe(parcel, "name", 0, &context);
    parcel.setName_("b");
    ASSERT_EQ(recorder.count(), 1U);
    EXPECT_EQ(recorder.told()[0].keyPath, "name");
    EXPECT_TRUE(isSame(recorder.told()[0].object, parcel));
    EXPECT_EQ(recorder.told()[0].context, &context);
    EXPECT_EQ(recorder.last(NSKeyValueChangeKindKey), "1");
    EXPECT_EQ(recorder.told()[0].change.count(), 1U);
}

TEST(KeyValueObserving, TellsOnceThroughKeyValueCoding) {
    Parcel const parcel = chain(2);
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name");
    recorder.observe(parcel.next(), "name");
    parcel.setValue_forKey_("x", "name");
    EXPECT_EQ(recorder.count(), 1U);
    parcel.setValue_forKeyPath_("y", "next.name");
    EXPECT_EQ(recorder.count(), 2U);
    parcel.performSelector_withObject_("setName:", "z");
    EXPECT_EQ(recorder.count(), 3U);
}

TEST(KeyValueObserving, TellsAlsoWhenTheSameObjectIsSet) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name");
    parcel.setName_(parcel.name());
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(KeyValueObserving, TellsNothingOfAChangeInPlace) {
    NSMutableDictionary const shelf = NSMutableDictionary::dictionary();
    NSMutableArray const array = NSMutableArray::array();
    shelf.setObject_forKey_(array, "parcels");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(shelf, "parcels");
    array.addObject_("a");
    array.removeAllObjects();
    EXPECT_EQ(recorder.count(), 0U);
}

TEST(KeyValueObserving, TellsNothingOfOtherKeysAndObjects) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name");
    parcel.setWeight_(3);
    Parcel::parcelWithName_("b").setName_("c");
    EXPECT_EQ(recorder.count(), 0U);
}

TEST(KeyValueObserving, CarriesTheValuesThatWereAskedFor) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name", New | Old);
    parcel.setName_("b");
    EXPECT_EQ(recorder.last(NSKeyValueChangeOldKey), "a");
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "b");
    recorder.observe(parcel, "weight", New);
    parcel.setWeight_(3);
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "3");
    EXPECT_EQ(recorder.last(NSKeyValueChangeOldKey), "-");
}

TEST(KeyValueObserving, CarriesNullForNil) {
    Parcel const parcel = Parcel::parcelWithName_(nil);
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name", New | Old);
    parcel.setName_(nil);
    ASSERT_EQ(recorder.count(), 1U);
    EXPECT_TRUE(isSame(recorder.told()[0].change.objectForKey_(NSKeyValueChangeOldKey), NSNull::null()));
    EXPECT_TRUE(isSame(recorder.told()[0].change.objectForKey_(NSKeyValueChangeNewKey), NSNull::null()));
}

TEST(KeyValueObserving, TellsAtOnceWhenTheInitialValueIsAskedFor) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name", New | Old | Initial);
    ASSERT_EQ(recorder.count(), 1U);
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "a");
    EXPECT_EQ(recorder.last(NSKeyValueChangeOldKey), "-");
    parcel.setName_("b");
    EXPECT_EQ(recorder.count(), 2U);
    EXPECT_EQ(recorder.last(NSKeyValueChangeOldKey), "a");
}

TEST(KeyValueObserving, TellsBeforeAndAfterWhenThePriorIsAskedFor) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name", New | Old | Prior);
    std::vector<std::string> names;
    recorder.whenTold([&] { names.push_back(text(parcel.name())); });
    parcel.setName_("b");
    ASSERT_EQ(recorder.count(), 2U);
    NSDictionary const prior = recorder.told()[0].change;
    EXPECT_TRUE(as<NSNumber>(prior.objectForKey_(NSKeyValueChangeNotificationIsPriorKey)).boolValue());
    EXPECT_EQ(text(prior.objectForKey_(NSKeyValueChangeOldKey)), "a");
    EXPECT_TRUE(prior.objectForKey_(NSKeyValueChangeNewKey) == nil);
    EXPECT_EQ(recorder.last(NSKeyValueChangeNotificationIsPriorKey), "-");
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "b");
    EXPECT_EQ(names, (std::vector<std::string>{"a", "b"}));
}

TEST(KeyValueObserving, TellsObserversInTheOrderTheyCame) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorders[]{Recorder::recorder(), Recorder::recorder(), Recorder::recorder()};
    std::string order;
    for (int index = 0; index < 3; ++index) {
        recorders[index].observe(parcel, "name");
        recorders[index].whenTold([&order, index] { order += std::to_string(index); });
    }
    parcel.setName_("b");
    EXPECT_EQ(order, "012");
}

TEST(KeyValueObserving, AnObserverThatCameTwiceIsToldTwiceAndGoesTwice) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    int first = 0;
    int second = 0;
    recorder.observe(parcel, "name", 0, &first);
    recorder.observe(parcel, "name", 0, &second);
    parcel.setName_("b");
    EXPECT_EQ(recorder.count(), 2U);
    parcel.removeObserver_forKeyPath_(recorder, "name");
    parcel.setName_("c");
    ASSERT_EQ(recorder.count(), 3U);
    EXPECT_EQ(recorder.told()[2].context, &first);
    parcel.removeObserver_forKeyPath_(recorder, "name");
    parcel.setName_("d");
    EXPECT_EQ(recorder.count(), 3U);
    EXPECT_THROW(parcel.removeObserver_forKeyPath_(recorder, "name"), NSRangeException);
}

TEST(KeyValueObserving, RemovingAnObserverThatIsNotThereRaises) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    EXPECT_THROW(parcel.removeObserver_forKeyPath_(recorder, "name"), NSRangeException);
    recorder.observe(parcel, "name");
    EXPECT_THROW(parcel.removeObserver_forKeyPath_(recorder, "weight"), NSRangeException);
    EXPECT_THROW(parcel.removeObserver_forKeyPath_(Recorder::recorder(), "name"), NSRangeException);
    EXPECT_THROW(parcel.removeObserver_forKeyPath_(recorder, "name.length"), NSRangeException);
    EXPECT_THROW(parcel.removeObserver_forKeyPath_(nil, "name"), NSRangeException);
    EXPECT_THROW(parcel.removeObserver_forKeyPath_(recorder, nil), NSRangeException);
    parcel.setName_("b");
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(KeyValueObserving, OfNilDoesNothing) {
    id const none;
    Recorder const recorder = Recorder::recorder();
    recorder.observe(none, "name", New | Initial);
    none.removeObserver_forKeyPath_(recorder, "name");
    none.willChangeValueForKey_("name");
    none.didChangeValueForKey_("name");
    KeyChange const change(none, "name");
    EXPECT_EQ(recorder.count(), 0U);
}

TEST(KeyValueObserving, WithoutObserverOrPathIsNone) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    parcel.addObserver_forKeyPath_options_context_(nil, "name", New | Initial, nullptr);
    EXPECT_THROW(Recorder::recorder().observe(parcel, nil), NSInvalidArgumentException);
    parcel.setName_("b");
}

TEST(KeyValueObserving, OfCollectionsRaises) {
    Recorder const recorder = Recorder::recorder();
    EXPECT_THROW(recorder.observe(NSMutableArray::array(), "@count"), NSInvalidArgumentException);
    EXPECT_THROW(recorder.observe(NSMutableSet::set(), "@count"), NSInvalidArgumentException);
}

TEST(KeyValueObserving, AnObserverThatDoesNotHandleAChangeRaises) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Parcel const deaf = Parcel::parcelWithName_("deaf");
    parcel.addObserver_forKeyPath_options_context_(deaf, "name", 0, nullptr);
    EXPECT_THROW(parcel.setName_("b"), NSGenericException);
}

TEST(KeyValueObserving, DoesNotKeepObserversAlive) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder recorder = Recorder::recorder();
    WeakReference const weak(recorder);
    recorder.observe(parcel, "name", New | Old);
    recorder = nil;
    EXPECT_TRUE(weak.isCleared());
    parcel.setName_("b");
    EXPECT_EQ(text(parcel.name()), "b");
}

TEST(KeyValueObserving, ForgetsObserversThatWentWithoutAWord) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    for (int index = 0; index < 1000; ++index)
        Recorder::recorder().observe(parcel, "name");
    EXPECT_LT(parcel.body()->associations().listeners.size(), 10U);
}

TEST(KeyValueObserving, AnObserverMayRemoveItselfAsItIsDestroyed) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Parcel observer = Parcel::parcelWithName_("observer");
    parcel.addObserver_forKeyPath_options_context_(observer, "name", 0, nullptr);
    ObjectBody* const body = observer.body();
    bodyOf(observer)->m_lastWord = [&] { parcel.removeObserver_forKeyPath_(id::retain(body), "name"); };
    observer = nil;
    parcel.setName_("b");
    EXPECT_TRUE(parcel.body()->associations().listeners.empty());
}

TEST(KeyValueObserving, DoesNotKeepTheObservedAlive) {
    int const before = Parcel::count();
    Recorder const recorder = Recorder::recorder();
    Parcel parcel = Parcel::parcelWithName_("a");
    recorder.observe(parcel, "name");
    parcel = nil;
    EXPECT_EQ(Parcel::count(), before);
}

TEST(KeyValueObserving, EndsWhenTheObservedGoesAndItsPathsStay) {
    Recorder const recorder = Recorder::recorder();
    Parcel const last = Parcel::parcelWithName_("last");
    {
        Parcel const first = Parcel::parcelWithName_("first");
        first.setNext_(last);
        recorder.observe(first, "next.name");
        EXPECT_EQ(last.body()->associations().listeners.size(), 1U);
    }
    EXPECT_TRUE(last.body()->associations().listeners.empty());
    last.setName_("x");
    EXPECT_EQ(recorder.count(), 0U);
}

TEST(KeyValueObserving, AnObserverMayRemoveItselfWhenItIsTold) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const first = Recorder::recorder();
    Recorder const second = Recorder::recorder();
    first.observe(parcel, "name");
    second.observe(parcel, "name");
    first.whenTold([&] { parcel.removeObserver_forKeyPath_(first, "name"); });
    parcel.setName_("b");
    parcel.setName_("c");
    EXPECT_EQ(first.count(), 1U);
    EXPECT_EQ(second.count(), 2U);
}

TEST(KeyValueObserving, AnObserverThatAnotherRemovesIsNotToldAnyMore) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const first = Recorder::recorder();
    Recorder const second = Recorder::recorder();
    first.observe(parcel, "name");
    second.observe(parcel, "name");
    first.whenTold([&] { parcel.removeObserver_forKeyPath_(second, "name"); });
    parcel.setName_("b");
    EXPECT_EQ(first.count(), 1U);
    EXPECT_EQ(second.count(), 0U);
}

TEST(KeyValueObserving, AnObserverThatComesDuringAChangeIsToldOfTheNext) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const first = Recorder::recorder();
    Recorder const second = Recorder::recorder();
    first.observe(parcel, "name");
    first.whenTold([&] {
        if (first.count() == 1) second.observe(parcel, "name");
    });
    parcel.setName_("b");
    EXPECT_EQ(second.count(), 0U);
    parcel.setName_("c");
    EXPECT_EQ(second.count(), 1U);
}

TEST(KeyValueObserving, AnObserverThatComesWithinASetterIsToldOfTheNextChange) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    bodyOf(parcel)->m_whileChanging = [&] {
        if (!parcel.body()->associationsIfAny()) recorder.observe(parcel, "name");
    };
    parcel.setName_("b");
    EXPECT_EQ(recorder.count(), 0U);
    parcel.setName_("c");
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(KeyValueObserving, AnObserverMayChangeTheKeyAgain) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name", New | Old);
    recorder.whenTold([&] {
        if (recorder.count() == 1) parcel.setName_("c");
    });
    parcel.setName_("b");
    ASSERT_EQ(recorder.count(), 2U);
    EXPECT_EQ(text(recorder.told()[0].change.objectForKey_(NSKeyValueChangeOldKey)), "a");
    EXPECT_EQ(text(recorder.told()[1].change.objectForKey_(NSKeyValueChangeOldKey)), "b");
    EXPECT_EQ(text(recorder.told()[1].change.objectForKey_(NSKeyValueChangeNewKey)), "c");
}

TEST(KeyValueObserving, AnObserverMayDropTheObserved) {
    static Parcel parcel;
    parcel = Parcel::parcelWithName_("a");
    Recorder const first = Recorder::recorder();
    Recorder const second = Recorder::recorder();
    first.observe(parcel, "name", New | Old);
    second.observe(parcel, "name", New | Old);
    first.whenTold([] { parcel = nil; });
    parcel.willChangeValueForKey_("name");
    parcel.didChangeValueForKey_("name");
    EXPECT_EQ(first.count(), 1U);
    EXPECT_EQ(second.count(), 1U);
    EXPECT_TRUE(parcel == nil);
}

TEST(KeyValueObserving, AnObserverThatRaisesKeepsNobodyElseFromBeingTold) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const first = Recorder::recorder();
    Recorder const second = Recorder::recorder();
    first.observe(parcel, "name");
    second.observe(parcel, "name");
    first.whenTold([] { throw NSGenericException("first"); });
    EXPECT_THROW(parcel.setName_("b"), NSGenericException);
    EXPECT_EQ(second.count(), 1U);
    EXPECT_EQ(text(parcel.name()), "b");
    first.whenTold({});
    parcel.setName_("c");
    EXPECT_EQ(first.count(), 2U);
    EXPECT_EQ(second.count(), 2U);
}

TEST(KeyValueObserving, AnObserverThatRaisesInADictionaryRaisesToTheCaller) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    Recorder const recorder = Recorder::recorder();
    recorder.observe(dictionary, "name");
    recorder.whenTold([] { throw NSGenericException("no"); });
    EXPECT_THROW(dictionary.setObject_forKey_("a", "name"), NSGenericException);
    EXPECT_THROW(dictionary.removeObjectForKey_("name"), NSGenericException);
    EXPECT_EQ(dictionary.count(), 0U);
}

TEST(KeyValueObserving, AnObserverThatRaisesBeforeAChangeStopsIt) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name", Prior);
    recorder.whenTold([] { throw NSGenericException("no"); });
    EXPECT_THROW(parcel.setName_("b"), NSGenericException);
    EXPECT_EQ(text(parcel.name()), "a");
    recorder.whenTold({});
    parcel.setName_("c");
    EXPECT_EQ(recorder.count(), 3U);
}

TEST(KeyValueObserving, TellsNobodyOfASetterThatRaises) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name", New | Old);
    recorder.whenTold([] { throw NSRangeException("an observer raises too"); });
    bodyOf(parcel)->m_whileChanging = [] { throw NSGenericException("no"); };
    EXPECT_THROW(parcel.setName_("b"), NSGenericException);
    EXPECT_EQ(recorder.count(), 0U);
    bodyOf(parcel)->m_whileChanging = {};
    recorder.whenTold({});
    parcel.setName_("c");
    ASSERT_EQ(recorder.count(), 1U);
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "c");
}

TEST(KeyValueObserving, ASetterThatRunsWhileAnExceptionPassesTellsAsUsual) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name");
    struct Cleaner {
        Parcel parcel;
        ~Cleaner() { parcel.setName_("clean"); }
    };
    try {
        Cleaner const cleaner{parcel};
        throw NSGenericException("passing");
    } catch (NSGenericException const&) {
        EXPECT_EQ(recorder.count(), 1U);
    }
}

TEST(KeyValueObserving, AnInitialWordThatRaisesLeavesNoObserver) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.whenTold([] { throw NSGenericException("no"); });
    EXPECT_THROW(recorder.observe(parcel, "name", Initial), NSGenericException);
    EXPECT_THROW(parcel.removeObserver_forKeyPath_(recorder, "name"), NSRangeException);
}

TEST(KeyValueObserving, APathThatCannotBeFollowedLeavesNoObserver) {
    Parcel const parcel = chain(2);
    Recorder const recorder = Recorder::recorder();
    EXPECT_THROW(recorder.observe(parcel, "next.colour.name"), NSUndefinedKeyException);
    EXPECT_TRUE(parcel.body()->associations().listeners.empty());
    EXPECT_TRUE(parcel.next().body()->associations().listeners.empty());
    parcel.setNext_(nil);
    EXPECT_EQ(recorder.count(), 0U);
}

TEST(KeyValueObserving, WillWithoutDidTellsNobody) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name");
    parcel.willChangeValueForKey_("name");
    EXPECT_EQ(recorder.count(), 0U);
    parcel.setName_("b");
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(KeyValueObserving, DidWithoutWillTellsNobody) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name");
    parcel.didChangeValueForKey_("name");
    parcel.didChangeValueForKey_(nil);
    parcel.willChangeValueForKey_(nil);
    EXPECT_EQ(recorder.count(), 0U);
}

TEST(KeyValueObserving, WillAndDidOfTwoKeysMayOverlap) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name");
    recorder.observe(parcel, "weight");
    parcel.willChangeValueForKey_("name");
    parcel.willChangeValueForKey_("weight");
    parcel.didChangeValueForKey_("name");
    parcel.didChangeValueForKey_("weight");
    ASSERT_EQ(recorder.count(), 2U);
    EXPECT_EQ(recorder.told()[0].keyPath, "name");
    EXPECT_EQ(recorder.told()[1].keyPath, "weight");
}

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

TEST(KeyValueObserving, TellsNobodyOfADictionarysDottedKey) {
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

TEST(KeyValueObserving, AnObserverMayEmptyTheDictionaryItIsToldOf) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    dictionary.setObject_forKey_("a", "name");
    dictionary.setObject_forKey_("b", "label");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(dictionary, "name", New | Old | Prior);
    recorder.whenTold([&] { dictionary.removeObjectForKey_("label"); });
    dictionary.addEntriesFromDictionary_(dictionary);
    EXPECT_EQ(text(dictionary.objectForKey_("name")), "a");
    EXPECT_EQ(text(dictionary.objectForKey_("label")), "b");
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
