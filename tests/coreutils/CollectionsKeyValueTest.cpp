#include "coreutils/Collections.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

// {name: "a", list: ["x", "y", {name: "z"}], shelf: {name: "b"}}, all of it mutable.
NSMutableDictionary tree() {
    NSMutableDictionary const inner = NSMutableDictionary::dictionary();
    inner.setObject_forKey_("z", "name");
    NSMutableDictionary const shelf = NSMutableDictionary::dictionary();
    shelf.setObject_forKey_("b", "name");
    NSMutableDictionary const made = NSMutableDictionary::dictionary();
    made.setObject_forKey_("a", "name");
    made.setObject_forKey_(NSMutableArray::arrayWithObjects_({"x", "y", inner}), "list");
    made.setObject_forKey_(shelf, "shelf");
    return made;
}

NSMutableArray list(NSDictionary const& root) { return as<NSMutableArray>(root.objectForKey_("list")); }

NSMutableDictionary named(char const* name) {
    NSMutableDictionary const made = NSMutableDictionary::dictionary();
    made.setObject_forKey_(NSString::stringWithUTF8String_(name), "name");
    return made;
}

TEST(PxSetValueFrom, CopiesOneKey) {
    NSMutableDictionary const receiver = named("a");
    pxSetValueFrom_forKey_(receiver, named("b"), "name");
    EXPECT_EQ(text(receiver.objectForKey_("name")), "b");
    Parcel const parcel = chain(1);
    pxSetValueFrom_forKey_(parcel, receiver, "name");
    EXPECT_EQ(text(parcel.name()), "b");
}

TEST(PxSetValueFrom, RemovesAKeyThatTheSourceLacks) {
    NSMutableDictionary const receiver = named("a");
    pxSetValueFrom_forKey_(receiver, NSDictionary::dictionary(), "name");
    EXPECT_EQ(receiver.count(), 0U);
    NSMutableDictionary const other = named("a");
    pxSetValueFrom_forKey_(other, nil, "name");
    EXPECT_EQ(other.count(), 0U);
}

TEST(PxSetValueFrom, RaisesForAnUnknownKeyAndForNilOnAScalar) {
    EXPECT_THROW(pxSetValueFrom_forKey_(NSMutableDictionary::dictionary(), chain(1), "colour"),
                 NSUndefinedKeyException);
    EXPECT_THROW(pxSetValueFrom_forKey_(chain(1), named("a"), "colour"), NSUndefinedKeyException);
    EXPECT_THROW(pxSetValueFrom_forKey_(chain(1), NSDictionary::dictionary(), "weight"), NSInvalidArgumentException);
    pxSetValueFrom_forKey_(nil, named("a"), "name");
}

TEST(PxSetValuesFrom, CopiesTheKeysOfTheArray) {
    NSMutableDictionary const receiver = NSMutableDictionary::dictionary();
    pxSetValuesFrom_forKeys_(receiver, tree(), words({"name", "list", "colour"}));
    EXPECT_EQ(receiver.count(), 2U);
    pxSetValuesFrom_forKeys_(receiver, tree(), nil);
    pxSetValuesFrom_forKeys_(nil, tree(), words({"name"}));
    EXPECT_EQ(receiver.count(), 2U);
}

TEST(PxSetValuesFrom, CopiesEveryKeyOfADictionary) {
    NSMutableDictionary const receiver = NSMutableDictionary::dictionary();
    pxSetValuesFrom_(receiver, tree());
    EXPECT_EQ(receiver.count(), 3U);
    pxSetValuesFrom_(receiver, receiver);
    EXPECT_EQ(receiver.count(), 3U);
    pxSetValuesFrom_(receiver, nil);
    pxSetValuesFrom_(nil, tree());
    EXPECT_EQ(receiver.count(), 3U);
}

TEST(PxValueForKeyPath, WalksIntoArraysByIndex) {
    NSMutableDictionary const root = tree();
    EXPECT_EQ(text(pxValueForKeyPath_(root, "name")), "a");
    EXPECT_EQ(text(pxValueForKeyPath_(root, "shelf.name")), "b");
    EXPECT_EQ(text(pxValueForKeyPath_(root, "list.2.name")), "z");
    EXPECT_EQ(text(pxValueForKeyPath_(root, "list.1")), "y");
    EXPECT_EQ(text(pxValueForKeyPath_(list(root), "2.name")), "z");
    EXPECT_EQ(text(pxValueForKeyPath_(chain(3), "next.next.name")), "c");
}

TEST(PxValueForKeyPath, ReadsAComponentThatIsNoNumberAsTheFirstIndex) {
    NSMutableDictionary const root = tree();
    EXPECT_EQ(text(pxValueForKeyPath_(root, "list.first")), "x");
    EXPECT_EQ(text(pxValueForKeyPath_(root, "list.")), "x");
    EXPECT_EQ(text(pxValueForKeyPath_(root, "list.1st")), "y");
}

TEST(PxValueForKeyPath, EndsAtNil) {
    EXPECT_TRUE(pxValueForKeyPath_(tree(), "a.b") == nil);
    EXPECT_TRUE(pxValueForKeyPath_(tree(), "a.b.c.d") == nil);
    EXPECT_TRUE(pxValueForKeyPath_(tree(), "") == nil);
    EXPECT_TRUE(pxValueForKeyPath_(tree(), ".") == nil);
    EXPECT_TRUE(pxValueForKeyPath_(tree(), "shelf..name") == nil);
    EXPECT_TRUE(pxValueForKeyPath_(tree(), nil) == nil);
    EXPECT_TRUE(pxValueForKeyPath_(nil, "name") == nil);
}

TEST(PxValueForKeyPath, RaisesOutsideAnArrayAndForUnknownKeys) {
    for (NSString const& path : {NSString("list.3"), NSString("list.-1"), NSString("list.99999999999")})
        EXPECT_THROW(pxValueForKeyPath_(tree(), path), NSRangeException) << path.UTF8String();
    EXPECT_THROW(pxValueForKeyPath_(chain(1), "colour"), NSUndefinedKeyException);
    EXPECT_THROW(pxValueForKeyPath_(tree(), "name.colour"), NSUndefinedKeyException);
    EXPECT_THROW(pxValueForKeyPath_(chain(1), ""), NSUndefinedKeyException);
}

TEST(PxSetValueForKeyPath, SetsOnWhatThePathLeadsTo) {
    NSMutableDictionary const root = tree();
    pxSetValue_forKeyPath_(root, "new", "shelf.name");
    EXPECT_EQ(text(pxValueForKeyPath_(root, "shelf.name")), "new");
    pxSetValue_forKeyPath_(root, "new", "list.2.name");
    EXPECT_EQ(text(pxValueForKeyPath_(root, "list.2.name")), "new");
    pxSetValue_forKeyPath_(root, nil, "shelf.name");
    EXPECT_TRUE(pxValueForKeyPath_(root, "shelf.name") == nil);
}

TEST(PxSetValueForKeyPath, ReplacesAppendsAndRemovesInArrays) {
    struct Row {
        char const* path;
        id value;
        char const* expected;
    };
    for (Row const& row : {Row{"list.1", "q", "x q z"}, Row{"list.3", "q", "x y z q"}, Row{"list.5", "q", "x y z q"},
                           Row{"list.-1", "q", "x y z q"}, Row{"list.word", "q", "q y z"}, Row{"list.1", nil, "x z"}}) {
        NSMutableDictionary const root = NSMutableDictionary::dictionary();
        root.setObject_forKey_(NSMutableArray::arrayWithObjects_({"x", "y", "z"}), "list");
        pxSetValue_forKeyPath_(root, row.value, NSString::stringWithUTF8String_(row.path));
        EXPECT_EQ(joined(list(root)), row.expected) << row.path;
    }
    EXPECT_THROW(pxSetValue_forKeyPath_(tree(), nil, "list.3"), NSRangeException);
    EXPECT_THROW(pxSetValue_forKeyPath_(tree(), nil, "list.-1"), NSRangeException);
}

// By design: the empty key leads to the object of a path of one component.
TEST(PxSetValueForKeyPath, OfOneComponentLooksUnderTheEmptyKey) {
    NSMutableDictionary const root = tree();
    pxSetValue_forKeyPath_(root, "new", "name");
    EXPECT_EQ(text(root.objectForKey_("name")), "a");
    NSMutableDictionary const under = NSMutableDictionary::dictionary();
    root.setObject_forKey_(under, "");
    pxSetValue_forKeyPath_(root, "new", "name");
    EXPECT_EQ(text(under.objectForKey_("name")), "new");
    EXPECT_THROW(pxSetValue_forKeyPath_(chain(1), "new", "name"), NSUndefinedKeyException);
}

TEST(PxSetValueForKeyPath, DoesNothingWhereThePathLeadsToNil) {
    NSMutableDictionary const root = tree();
    pxSetValue_forKeyPath_(root, "new", "a.b.c");
    pxSetValue_forKeyPath_(root, "new", "");
    pxSetValue_forKeyPath_(root, "new", nil);
    pxSetValue_forKeyPath_(nil, "new", "a.b");
    EXPECT_EQ(root.count(), 3U);
    EXPECT_THROW(pxSetValue_forKeyPath_(root, "new", "name.length"), NSUndefinedKeyException);
}

TEST(PxObserving, TellsTheReceiverWithItsContext) {
    Recorder const recorder = Recorder::recorder();
    NSMutableDictionary const shelf = named("a");
    int context = 0;
    pxStartObserving_forKeyPath_options_context_(recorder, shelf, "name", NSKeyValueObservingOptionNew, &context);
    shelf.setObject_forKey_("b", "name");
    ASSERT_EQ(recorder.count(), 1U);
    EXPECT_EQ(recorder.told()[0].keyPath, "name");
    EXPECT_EQ(recorder.told()[0].context, &context);
    EXPECT_TRUE(isSame(recorder.told()[0].object, shelf));
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "b");
    pxStopObserving_forKeyPath_(recorder, shelf, "name");
    shelf.setObject_forKey_("c", "name");
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(PxObserving, StartedTwiceTellsTwiceAndStopsTwice) {
    Recorder const recorder = Recorder::recorder();
    NSMutableDictionary const shelf = named("a");
    pxStartObserving_forKeyPath_options_context_(recorder, shelf, "name", 0, nullptr);
    pxStartObserving_forKeyPath_options_context_(recorder, shelf, "name", 0, nullptr);
    shelf.setObject_forKey_("b", "name");
    EXPECT_EQ(recorder.count(), 2U);
    pxStopObserving_forKeyPath_(recorder, shelf, "name");
    shelf.setObject_forKey_("c", "name");
    EXPECT_EQ(recorder.count(), 3U);
    pxStopObserving_forKeyPath_(recorder, shelf, "name");
    EXPECT_THROW(pxStopObserving_forKeyPath_(recorder, shelf, "name"), NSRangeException);
}

TEST(PxObserving, FollowsSeveralPaths) {
    Recorder const recorder = Recorder::recorder();
    NSMutableDictionary const root = tree();
    NSArray const paths = words({"name", "shelf.name"});
    pxStartObserving_forKeyPaths_options_context_(recorder, root, paths, 0, nullptr);
    root.setObject_forKey_("x", "name");
    root.setObject_forKey_(named("y"), "shelf");
    pxSetValue_forKeyPath_(root, "z", "shelf.name");
    EXPECT_EQ(recorder.count(), 3U);
    pxStopObserving_forKeyPaths_(recorder, root, paths);
    root.setObject_forKey_("y", "name");
    EXPECT_EQ(recorder.count(), 3U);
    EXPECT_THROW(pxStopObserving_forKeyPaths_(recorder, root, paths), NSRangeException);
}

TEST(PxObserving, OfACollectionCoversEachMember) {
    Recorder const recorder = Recorder::recorder();
    NSMutableDictionary const first = named("a");
    NSMutableDictionary const second = named("b");
    NSArray const both = NSArray::arrayWithObjects_({first, second});
    for (id const& collection : {id(both), id(NSSet::setWithArray_(both)),
                                 id(NSDictionary::dictionaryWithObjects_forKeys_(both, words({"1", "2"})))}) {
        std::size_t const before = recorder.count();
        pxStartObservingAllObjectsOf_forKeyPath_options_context_(recorder, collection, "name", 0, nullptr);
        first.setObject_forKey_("x", "name");
        second.setObject_forKey_("y", "name");
        EXPECT_EQ(recorder.count(), before + 2);
        pxStopObservingAllObjectsOf_forKeyPath_(recorder, collection, "name");
        second.setObject_forKey_("z", "name");
        EXPECT_EQ(recorder.count(), before + 2);
        EXPECT_THROW(pxStopObservingAllObjectsOf_forKeyPath_(recorder, collection, "name"), NSRangeException);
    }
}

TEST(PxObserving, OfACollectionCoversSeveralPaths) {
    Recorder const recorder = Recorder::recorder();
    NSMutableDictionary const shelf = named("a");
    NSArray const shelves = NSArray::arrayWithObject_(shelf);
    pxStartObservingAllObjectsOf_forKeyPaths_options_context_(recorder, shelves, words({"name", "size"}), 0, nullptr);
    shelf.setObject_forKey_("b", "name");
    shelf.setObject_forKey_("1", "size");
    EXPECT_EQ(recorder.count(), 2U);
    pxStopObservingAllObjectsOf_forKeyPaths_(recorder, shelves, words({"name", "size"}));
    shelf.setObject_forKey_("2", "size");
    EXPECT_EQ(recorder.count(), 2U);
}

TEST(PxObserving, OfAllKeysCoversTheKeysThatAreThere) {
    Recorder const recorder = Recorder::recorder();
    NSMutableDictionary const shelf = named("a");
    NSArray const shelves = NSArray::arrayWithObject_(shelf);
    pxStartObservingAllKeysOfAllObjectsOf_options_context_(recorder, shelves, 0, nullptr);
    shelf.setObject_forKey_("b", "name");
    shelf.setObject_forKey_("1", "size");
    EXPECT_EQ(recorder.count(), 1U);
    // The new key was not there at the start.
    EXPECT_THROW(pxStopObservingAllKeysOfAllObjectsOf_(recorder, shelves), NSRangeException);
    shelf.removeObjectForKey_("size");
    shelf.setObject_forKey_("c", "name");
    EXPECT_EQ(recorder.count(), 1U);
}

TEST(PxObserving, OfAllKeysLeavesAKeyThatWentObserved) {
    Recorder const recorder = Recorder::recorder();
    NSMutableDictionary const shelf = named("a");
    NSArray const shelves = NSArray::arrayWithObject_(shelf);
    pxStartObservingAllKeysOfAllObjectsOf_options_context_(recorder, shelves, 0, nullptr);
    shelf.removeObjectForKey_("name");
    pxStopObservingAllKeysOfAllObjectsOf_(recorder, shelves);
    shelf.setObject_forKey_("b", "name");
    EXPECT_EQ(recorder.count(), 2U);
    EXPECT_THROW(pxStartObservingAllKeysOfAllObjectsOf_options_context_(recorder, words({"text"}), 0, nullptr),
                 NSInvalidArgumentException);
}

TEST(PxObserving, OfNilDoesNothing) {
    Recorder const recorder = Recorder::recorder();
    for (id const& nothing : {id(), id(NSNull::null()), id(NSArray::array())}) {
        pxStartObservingAllObjectsOf_forKeyPath_options_context_(recorder, nothing, "name", 0, nullptr);
        pxStopObservingAllObjectsOf_forKeyPath_(recorder, nothing, "name");
        pxStartObservingAllObjectsOf_forKeyPaths_options_context_(recorder, nothing, words({"name"}), 0, nullptr);
        pxStopObservingAllObjectsOf_forKeyPaths_(recorder, nothing, words({"name"}));
        pxStartObservingAllKeysOfAllObjectsOf_options_context_(recorder, nothing, 0, nullptr);
        pxStopObservingAllKeysOfAllObjectsOf_(recorder, nothing);
    }
    pxStartObserving_forKeyPath_options_context_(recorder, nil, "name", 0, nullptr);
    pxStopObserving_forKeyPath_(recorder, nil, "name");
    pxStartObserving_forKeyPaths_options_context_(recorder, named("a"), nil, 0, nullptr);
    pxStopObserving_forKeyPaths_(recorder, named("a"), nil);
    EXPECT_THROW(pxStartObservingAllObjectsOf_forKeyPath_options_context_(recorder, "text", "name", 0, nullptr),
                 NSInvalidArgumentException);
}

TEST(PxObserving, ByNilDoesNothing) {
    NSMutableDictionary const shelf = named("a");
    NSArray const shelves = NSArray::arrayWithObject_(shelf);
    pxStartObserving_forKeyPath_options_context_(nil, shelf, "name", 0, nullptr);
    pxStopObserving_forKeyPath_(nil, shelf, "name");
    pxStartObserving_forKeyPaths_options_context_(nil, shelf, words({"name"}), 0, nullptr);
    pxStopObserving_forKeyPaths_(nil, shelf, words({"name"}));
    pxStartObservingAllObjectsOf_forKeyPath_options_context_(nil, shelves, "name", 0, nullptr);
    pxStopObservingAllObjectsOf_forKeyPath_(nil, shelves, "name");
    pxStartObservingAllObjectsOf_forKeyPaths_options_context_(nil, shelves, words({"name"}), 0, nullptr);
    pxStopObservingAllObjectsOf_forKeyPaths_(nil, shelves, words({"name"}));
    pxStartObservingAllKeysOfAllObjectsOf_options_context_(nil, shelves, 0, nullptr);
    pxStopObservingAllKeysOfAllObjectsOf_(nil, shelves);
    shelf.setObject_forKey_("b", "name");
    EXPECT_EQ(text(shelf.objectForKey_("name")), "b");
}

TEST(PxObserving, EndsWithTheObservedOrTheObserver) {
    Recorder const recorder = Recorder::recorder();
    NSMutableDictionary const survivor = named("a");
    {
        NSMutableDictionary const shelf = named("b");
        pxStartObserving_forKeyPath_options_context_(recorder, shelf, "name", 0, nullptr);
        Recorder const other = Recorder::recorder();
        pxStartObserving_forKeyPath_options_context_(other, survivor, "name", 0, nullptr);
    }
    survivor.setObject_forKey_("c", "name");
    EXPECT_EQ(recorder.count(), 0U);
}

TEST(PxObserving, OfAnArrayItselfRaises) {
    EXPECT_THROW(pxStartObserving_forKeyPath_options_context_(Recorder::recorder(), words({"a"}), "name", 0, nullptr),
                 NSInvalidArgumentException);
}

TEST(PxObserving, RaisesWhereAnObserverChangesTheCollection) {
    NSMutableArray const shelves = NSMutableArray::arrayWithObjects_({named("a"), named("b")});
    Recorder const recorder = Recorder::recorder();
    recorder.whenTold([&] { shelves.removeLastObject(); });
    EXPECT_THROW(pxStartObservingAllObjectsOf_forKeyPath_options_context_(recorder, shelves, "name",
                                                                          NSKeyValueObservingOptionInitial, nullptr),
                 NSGenericException);
}

TEST(PxKeyValue, IsThereAsMessages) {
    id const root = tree();
    EXPECT_EQ(text(root.performSelector_withObject_("pxValueForKeyPath:", "list.1")), "y");
    root.performSelector_withObject_withObject_("pxSetValue:forKeyPath:", "q", "list.1");
    EXPECT_EQ(text(root.performSelector_withObject_("pxValueForKeyPath:", "list.1")), "q");
    Recorder const recorder = Recorder::recorder();
    int context = 0;
    id const boxed = NSNumber::numberWithUnsignedLongLong_(reinterpret_cast<std::uintptr_t>(&context));
    recorder.performSelector_withObjects_("pxStartObserving:forKeyPath:options:context:",
                                          {root, "name", NSNumber::numberWithInt_(0), boxed});
    root.setValue_forKey_("b", "name");
    ASSERT_EQ(recorder.count(), 1U);
    EXPECT_EQ(recorder.told()[0].context, &context);
    recorder.performSelector_withObject_withObject_("pxStopObserving:forKeyPath:", root, "name");
}

} // namespace
} // namespace mac::test
