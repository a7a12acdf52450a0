#include "platform/foundation/objects/Weak.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(Weak, ReadsTheObjectAsLongAsItLives) {
    Parcel parcel = Parcel::parcelWithName_("a");
    Weak<Parcel> const weak(parcel);
    EXPECT_TRUE(isSame(weak.load(), parcel));
    parcel = nil;
    EXPECT_TRUE(weak.load() == nil);
}

TEST(Weak, KeepsTheObjectAliveOnlyWhileItIsUsed) {
    int const before = Parcel::count();
    Weak<Parcel> weak;
    {
        Parcel const parcel = Parcel::parcelWithName_("a");
        weak = Weak<Parcel>(parcel);
        Parcel const loaded = weak.load();
        EXPECT_EQ(Parcel::count(), before + 1);
    }
    EXPECT_EQ(Parcel::count(), before);
}

TEST(Weak, ToNilReadsAsNil) {
    EXPECT_TRUE(Weak<Parcel>().load() == nil);
    EXPECT_TRUE(Weak<Parcel>(Parcel()).load() == nil);
    EXPECT_FALSE(WeakReference().isCleared());
    EXPECT_FALSE(WeakReference(nil).isCleared());
    EXPECT_FALSE(WeakReference(nil).refersTo(nil));
}

TEST(Weak, TellsThatItsObjectHasGone) {
    id object = Parcel::parcelWithName_("a");
    WeakReference const weak(object);
    EXPECT_FALSE(weak.isCleared());
    object = nil;
    EXPECT_TRUE(weak.isCleared());
}

TEST(Weak, ComparesByIdentity) {
    id const object = NSMutableArray::array();
    WeakReference const weak(object);
    EXPECT_TRUE(weak.refersTo(object));
    EXPECT_FALSE(weak.refersTo(NSMutableArray::array()));
    EXPECT_FALSE(weak.refersTo(nil));
}

TEST(Weak, ReadsAsNilWhileTheObjectIsDestroyedAndStillKnowsIt) {
    Parcel parcel = Parcel::parcelWithName_("a");
    WeakReference const weak(parcel);
    ObjectBody* const body = parcel.body();
    bool isNil = false;
    bool isKnown = false;
    bodyOf(parcel)->m_lastWord = [&] {
        isNil = weak.load() == nil;
        isKnown = weak.refersTo(id::retain(body));
    };
    parcel = nil;
    EXPECT_TRUE(isNil);
    EXPECT_TRUE(isKnown);
}

TEST(Weak, MadeWhileTheObjectIsDestroyedReadsAsNilForGood) {
    Parcel parcel = Parcel::parcelWithName_("a");
    ObjectBody* const body = parcel.body();
    WeakReference weak;
    bool isNil = false;
    bodyOf(parcel)->m_lastWord = [&] {
        weak = WeakReference(id::retain(body));
        isNil = weak.load() == nil;
    };
    parcel = nil;
    EXPECT_TRUE(isNil);
    EXPECT_TRUE(weak.load() == nil);
    EXPECT_TRUE(weak.isCleared());
}

TEST(Weak, OutlivesManyObjectsInTheSamePlace) {
    std::vector<WeakReference> weak;
    weak.reserve(100);
    for (int index = 0; index < 100; ++index)
        weak.emplace_back(Parcel::parcelWithName_("a"));
    Parcel const last = Parcel::parcelWithName_("b");
    for (WeakReference const& reference : weak) {
        EXPECT_TRUE(reference.load() == nil);
        EXPECT_FALSE(reference.refersTo(last));
    }
}

// The last strong handle goes on one thread while others read weak ones: each reads the whole object or nil.
TEST(Weak, MayBeReadOnAnyThreadWhileTheObjectGoes) {
    int const before = Parcel::count();
    std::atomic<int> wrong{0};
    for (int round = 0; round < 200; ++round) {
        Parcel parcel = Parcel::parcelWithName_("a");
        Weak<Parcel> const weak(parcel);
        std::atomic<bool> isGone{false};
        onThreads(3, [&](unsigned number) {
            if (number == 0) {
                parcel = nil;
                isGone = true;
            }
            while (!isGone) {
                Parcel const loaded = weak.load();
                wrong += loaded != nil && loaded.name().length() != 1 ? 1 : 0;
            }
        });
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(Parcel::count(), before);
}

TEST(Weak, CountsHoldWhenManyThreadsShareAnObject) {
    int const before = Parcel::count();
    id parcel = Parcel::parcelWithName_("a");
    onThreads(4, [&parcel](unsigned) {
        std::vector<id> handles;
        for (int round = 0; round < 2000; ++round) {
            handles.assign(5, parcel);
            handles.back() = WeakReference(parcel).load();
        }
    });
    EXPECT_EQ(Parcel::count(), before + 1);
    parcel = nil;
    EXPECT_EQ(Parcel::count(), before);
}

} // namespace mac::test
