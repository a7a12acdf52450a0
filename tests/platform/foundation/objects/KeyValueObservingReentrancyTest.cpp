#include "platform/foundation/objects/Associations.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {

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

TEST(KeyValueObserving, AnObserverThatRaisesDoesNotStopTheOthers) {
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

TEST(KeyValueObserving, AnObserverThatRaisesBeforeAChangeLeavesItToItsEnd) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const first = Recorder::recorder();
    Recorder const second = Recorder::recorder();
    Recorder const third = Recorder::recorder();
    for (Recorder const& recorder : {first, second, third})
        recorder.observe(parcel, "name", New | Prior);
    second.whenTold([&] {
        if (second.count() == 1) throw NSGenericException("no");
    });
    EXPECT_THROW(parcel.setName_("b"), NSGenericException);
    EXPECT_EQ(text(parcel.name()), "b");
    for (Recorder const& recorder : {first, second, third}) {
        EXPECT_EQ(recorder.count(), 2U);
        EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "b");
    }
    parcel.setName_("c");
    EXPECT_EQ(first.count(), 4U);
}

TEST(KeyValueObserving, ARaisingObserverIsToldOfTheEndThatIsSaidByHand) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "serial", Prior);
    recorder.whenTold([&] {
        if (recorder.count() == 1) throw NSGenericException("no");
    });
    parcel.willChangeValueForKey_("serial");
    EXPECT_EQ(recorder.count(), 1U);
    EXPECT_THROW(parcel.didChangeValueForKey_("serial"), NSGenericException);
    EXPECT_EQ(recorder.count(), 2U);
    parcel.didChangeValueForKey_("serial");
    EXPECT_EQ(recorder.count(), 2U);
}

TEST(KeyValueObserving, ASetterThatRaisesNotifiesNoObserver) {
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

} // namespace mac::test
