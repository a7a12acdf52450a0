#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Associations.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/objects/Weak.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {

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

TEST(KeyValueObserving, WithoutObserverOrPathDoesNothing) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    parcel.addObserver_forKeyPath_options_context_(nil, "name", New | Initial, nullptr);
    EXPECT_THROW(Recorder::recorder().observe(parcel, nil), NSInvalidArgumentException);
    parcel.setName_("b");
}

TEST(KeyValueObserving, SaysWhichObserverIsNotThere) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    std::string reason;
    try {
        parcel.removeObserver_forKeyPath_(recorder, "name.length");
    } catch (NSRangeException const& exception) {
        reason = exception.reason();
    }
    EXPECT_TRUE(reason.starts_with("Cannot remove an observer <Recorder 0x")) << reason;
    EXPECT_NE(reason.find("> for the key path \"name.length\" from <Parcel 0x"), std::string::npos) << reason;
    EXPECT_TRUE(reason.ends_with("> because it is not registered as an observer.")) << reason;
}

TEST(KeyValueObserving, OfCollectionsRaises) {
    Recorder const recorder = Recorder::recorder();
    EXPECT_THROW(NSArray::array().removeObserver_forKeyPath_(recorder, "name"), NSInvalidArgumentException);
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

TEST(KeyValueObserving, WillWithoutDidNotifiesNoObserver) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name");
    parcel.willChangeValueForKey_("name");
    EXPECT_EQ(recorder.count(), 0U);
    parcel.setName_("b");
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(KeyValueObserving, DidWithoutWillNotifiesNoObserver) {
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

} // namespace mac::test
