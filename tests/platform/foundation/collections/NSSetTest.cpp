#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Weak.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/ObjectTexts.h"
#include <algorithm>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

std::string joinedMembers(NSSet const& set) { return joined(set.allObjects()); }

NSSet setOf(std::initializer_list<char const*> names) { return NSSet::setWithArray_(words(names)); }

NSMutableSet mutableSetOf(std::initializer_list<char const*> names) {
    return NSMutableSet::setWithArray_(words(names));
}

Peg peg(int number, std::uint64_t hash) { return Peg::pegWithNumber_hash_(number, hash); }

} // namespace

TEST(NSSet, HoldsWhatItWasMadeOfEachOnceInTheOrderItCame) {
    EXPECT_EQ(NSSet::set().count(), 0U);
    EXPECT_EQ(joinedMembers(NSSet::setWithObject_("a")), "a");
    EXPECT_EQ(joinedMembers(NSSet::setWithObjects_({"b", "a", "b"})), "b a");
    EXPECT_EQ(joinedMembers(setOf({"c", "a", "c", "b"})), "c a b");
    EXPECT_EQ(joinedMembers(NSSet::setWithSet_(setOf({"a", "b"}))), "a b");
}

TEST(NSSet, TakesObjectsUpToTheFirstNil) {
    EXPECT_EQ(joinedMembers(NSSet::setWithObjects_({"a", nil, "b"})), "a");
    EXPECT_THROW(NSSet::setWithObject_(nil), NSInvalidArgumentException);
}

TEST(NSSet, OfANilCollectionIsEmpty) {
    EXPECT_TRUE(NSSet::setWithArray_(nil) != nil);
    EXPECT_TRUE(NSSet::setWithSet_(nil) != nil);
    EXPECT_EQ(NSSet::setWithSet_(nil).count(), 0U);
}

TEST(NSSet, FindsEqualMembers) {
    id const member = NSMutableArray::arrayWithObjects_({"a"});
    NSSet const set = NSSet::setWithObject_(member);
    id const equal = words({"a"});
    EXPECT_TRUE(set.containsObject_(equal));
    EXPECT_TRUE(isSame(set.member_(equal), member));
    EXPECT_FALSE(set.containsObject_(words({"b"})));
    EXPECT_TRUE(set.member_(words({"b"})) == nil);
    EXPECT_FALSE(set.containsObject_(nil));
    EXPECT_TRUE(set.member_(nil) == nil);
    EXPECT_FALSE(NSSet::set().containsObject_("a"));
}

TEST(NSSet, KeepsTheMemberThatWasThereFirst) {
    id const first = NSMutableArray::array();
    NSMutableSet const set = NSMutableSet::set();
    set.addObject_(first);
    set.addObject_(NSMutableArray::array());
    ASSERT_EQ(set.count(), 1U);
    EXPECT_TRUE(isSame(set.anyObject(), first));
}

TEST(NSSet, AnswersSomeMember) {
    EXPECT_EQ(text(NSSet::setWithObject_("a").anyObject()), "a");
    EXPECT_TRUE(NSSet::set().anyObject() == nil);
    NSMutableSet const set = mutableSetOf({"a", "b"});
    set.removeObject_("a");
    EXPECT_EQ(text(set.anyObject()), "b");
}

TEST(NSSet, NilAnswersNothing) {
    NSSet const none;
    EXPECT_EQ(none.count(), 0U);
    EXPECT_FALSE(none.containsObject_("a"));
    EXPECT_TRUE(none.member_("a") == nil);
    EXPECT_TRUE(none.anyObject() == nil);
    EXPECT_TRUE(none.allObjects() == nil);
    EXPECT_TRUE(none.objectEnumerator() == nil);
    EXPECT_FALSE(none.isEqualToSet_(nil));
    EXPECT_FALSE(none.isSubsetOfSet_(NSSet::set()));
    EXPECT_FALSE(none.intersectsSet_(setOf({"a"})));
}

TEST(NSSet, EqualsAnotherOfEqualMembersInWhateverOrder) {
    NSSet const set = setOf({"a", "b"});
    EXPECT_TRUE(set.isEqualToSet_(setOf({"b", "a"})));
    EXPECT_EQ(set.hash(), setOf({"b", "a"}).hash());
    EXPECT_TRUE(set.isEqual_(mutableSetOf({"b", "a"})));
    EXPECT_FALSE(set.isEqualToSet_(setOf({"a"})));
    EXPECT_FALSE(set.isEqualToSet_(setOf({"a", "c"})));
    EXPECT_FALSE(set.isEqualToSet_(nil));
    EXPECT_FALSE(set.isEqual_(words({"a", "b"})));
}

TEST(NSSet, EqualsAlsoAfterMembersCameAndWent) {
    NSMutableSet const set = NSMutableSet::set();
    for (int value = 0; value < 100; ++value)
        set.addObject_(number(value));
    for (int value = 0; value < 98; ++value)
        set.removeObject_(number(value));
    NSSet const fresh = NSSet::setWithObjects_({number(99), number(98)});
    EXPECT_TRUE(set.isEqual_(fresh));
    EXPECT_EQ(set.hash(), fresh.hash());
    EXPECT_TRUE(set.copy().isEqual_(fresh));
}

struct RelationCase {
    std::initializer_list<char const*> first;
    std::initializer_list<char const*> second;
    bool isSubset;
    bool intersects;
};

TEST(NSSet, RelatesToOthers) {
    RelationCase const cases[]{
        {{"a"}, {"a", "b"}, true, true},
        {{"a", "b"}, {"a"}, false, true},
        {{"a"}, {"b"}, false, false},
        {{}, {"a"}, true, false},
        {{"a"}, {}, false, false},
        {{}, {}, true, false},
        {{"a", "b"}, {"b", "a"}, true, true},
    };
    for (RelationCase const& one : cases) {
        EXPECT_EQ(setOf(one.first).isSubsetOfSet_(setOf(one.second)), one.isSubset);
        EXPECT_EQ(setOf(one.first).intersectsSet_(setOf(one.second)), one.intersects);
    }
    EXPECT_TRUE(NSSet::set().isSubsetOfSet_(nil));
    EXPECT_FALSE(setOf({"a"}).isSubsetOfSet_(nil));
    EXPECT_FALSE(setOf({"a"}).intersectsSet_(nil));
}

TEST(NSSet, CopiesToItselfAndMutableCopiesToAnother) {
    NSSet const set = setOf({"a", "b"});
    EXPECT_TRUE(isSame(set.copy(), set));
    NSMutableSet const changed = as<NSMutableSet>(set.mutableCopy());
    changed.removeObject_("a");
    EXPECT_EQ(joinedMembers(set), "a b");
    EXPECT_EQ(joinedMembers(changed), "b");
    EXPECT_TRUE(changed.copy().isMemberOfClass_(classOf<NSSet>()));
}

TEST(NSMutableSet, AddsAndRemoves) {
    NSMutableSet const set = NSMutableSet::setWithCapacity_(0xFFFFFFFF);
    set.addObject_("a");
    set.addObject_("a");
    set.addObjectsFromArray_(words({"b", "c", "a"}));
    set.addObjectsFromArray_(nil);
    EXPECT_EQ(joinedMembers(set), "a b c");
    set.removeObject_("b");
    set.removeObject_("x");
    set.removeObject_(nil);
    EXPECT_EQ(joinedMembers(set), "a c");
    set.removeAllObjects();
    EXPECT_EQ(set.count(), 0U);
    set.addObject_("d");
    EXPECT_EQ(joinedMembers(set), "d");
}

TEST(NSMutableSet, AddingNilRaises) {
    NSMutableSet const set = NSMutableSet::set();
    EXPECT_THROW(set.addObject_(nil), NSInvalidArgumentException);
    EXPECT_EQ(set.count(), 0U);
}

TEST(NSMutableSet, CombinesWithOthers) {
    NSMutableSet const set = mutableSetOf({"a", "b"});
    set.unionSet_(setOf({"b", "c"}));
    EXPECT_EQ(joinedMembers(set), "a b c");
    set.minusSet_(setOf({"a", "x"}));
    EXPECT_EQ(joinedMembers(set), "b c");
    set.intersectSet_(setOf({"c", "d"}));
    EXPECT_EQ(joinedMembers(set), "c");
    set.setSet_(setOf({"x", "y"}));
    EXPECT_EQ(joinedMembers(set), "x y");
}

TEST(NSMutableSet, CombinesWithItself) {
    NSMutableSet const set = mutableSetOf({"a", "b", "c", "d", "e"});
    set.unionSet_(set);
    set.intersectSet_(set);
    set.setSet_(set);
    set.addObjectsFromArray_(set.allObjects());
    EXPECT_EQ(joinedMembers(set), "a b c d e");
    set.minusSet_(set);
    EXPECT_EQ(set.count(), 0U);
}

TEST(NSMutableSet, CombinesWithNil) {
    NSMutableSet const set = mutableSetOf({"a"});
    set.unionSet_(nil);
    set.minusSet_(nil);
    EXPECT_EQ(joinedMembers(set), "a");
    set.intersectSet_(nil);
    EXPECT_EQ(set.count(), 0U);
    set.addObject_("a");
    set.setSet_(nil);
    EXPECT_EQ(set.count(), 0U);
}

TEST(NSMutableSet, NilChangesNothing) {
    NSMutableSet const none;
    none.addObject_("a");
    none.addObject_(nil);
    none.addObjectsFromArray_(words({"a"}));
    none.removeObject_("a");
    none.removeAllObjects();
    none.unionSet_(setOf({"a"}));
    none.minusSet_(setOf({"a"}));
    none.intersectSet_(setOf({"a"}));
    none.setSet_(setOf({"a"}));
    EXPECT_EQ(none.count(), 0U);
}

TEST(NSMutableSet, MayHoldItself) {
    NSMutableSet const set = NSMutableSet::set();
    set.addObject_(set);
    EXPECT_EQ(text(set), "{(\n    ...\n)}");
    EXPECT_EQ(set.hash(), id(set).hash());
    EXPECT_EQ(set.count(), 1U);
    set.removeAllObjects();
}

TEST(NSMutableSet, TellsMembersOfOneHashApart) {
    NSMutableSet const set = NSMutableSet::set();
    for (int value = 0; value < 50; ++value)
        set.addObject_(peg(value, 42));
    EXPECT_EQ(set.count(), 50U);
    for (int value = 0; value < 50; value += 2)
        set.removeObject_(peg(value, 42));
    EXPECT_EQ(set.count(), 25U);
    for (int value = 0; value < 50; ++value)
        EXPECT_EQ(set.containsObject_(peg(value, 42)), value % 2 == 1);
    set.addObject_(peg(0, 42));
    EXPECT_EQ(set.count(), 26U);
}

TEST(NSMutableSet, StaysRightThroughManyChanges) {
    NSMutableSet const set = NSMutableSet::set();
    std::vector<bool> expected(64);
    std::uint32_t random = 12345;
    std::size_t count = 0;
    for (int step = 0; step < 20'000; ++step) {
        random = random * 1664525 + 1013904223;
        std::size_t const value = random >> 16 & 63;
        bool const isAdded = (random >> 24 & 1) != 0;
        if (expected[value] != isAdded) count += isAdded ? 1U : static_cast<std::size_t>(-1);
        expected[value] = isAdded;
        if (isAdded)
            set.addObject_(number(static_cast<int>(value)));
        else
            set.removeObject_(number(static_cast<int>(value)));
        ASSERT_EQ(set.count(), count);
    }
    for (std::size_t value = 0; value < expected.size(); ++value)
        EXPECT_EQ(set.containsObject_(number(static_cast<int>(value))), expected[value]);
    EXPECT_LE(bodyOf(set)->m_entries.entries().size(), 2 * count + 1);
}

TEST(NSMutableSet, IsWholeWhenWhatItDropsIsDestroyed) {
    void (*const drops[])(NSMutableSet const&, id const&){
        [](NSMutableSet const& set, id const& member) { set.removeObject_(member); },
        [](NSMutableSet const& set, id const&) { set.removeAllObjects(); },
        [](NSMutableSet const& set, id const&) { set.minusSet_(set); },
        [](NSMutableSet const& set, id const&) { set.setSet_(NSSet::set()); },
    };
    for (auto const& drop : drops) {
        NSMutableSet const set = NSMutableSet::set();
        Parcel parcel = Parcel::parcelWithName_("p");
        bool isSeen = false;
        bodyOf(parcel)->m_lastWord = [&] {
            isSeen = true;
            EXPECT_FALSE(set.containsObject_("never there"));
            set.addObject_("last word");
        };
        set.addObject_(parcel);
        WeakReference const weak(parcel);
        parcel = nil;
        drop(set, weak.load());
        EXPECT_TRUE(isSeen);
        EXPECT_TRUE(set.containsObject_("last word"));
    }
}

TEST(NSMutableSet, IsUnchangedWhenAComparisonRaises) {
    NSMutableSet const set = NSMutableSet::set();
    Peg const first = peg(1, 42);
    set.addObject_(first);
    bodyOf(first)->m_whenCompared = [] { throw NSGenericException("no"); };
    EXPECT_THROW(set.addObject_(peg(2, 42)), NSGenericException);
    EXPECT_THROW(set.removeObject_(peg(2, 42)), NSGenericException);
    EXPECT_EQ(set.count(), 1U);
}

// What the hash is worth shows in the comparisons: with a good one there is none between members that differ.
TEST(NSMutableSet, ComparesHardlyAnyMembersOfHashesInARow) {
    constexpr int count = 100'000;
    NSMutableSet const set = NSMutableSet::set();
    std::vector<Peg> pegs;
    pegs.reserve(count);
    for (int value = 0; value < count; ++value)
        pegs.push_back(peg(value, static_cast<std::uint64_t>(value)));
    for (Peg const& one : pegs)
        set.addObject_(one);
    EXPECT_EQ(set.count(), static_cast<NSUInteger>(count));
    for (int value = 0; value < count; ++value)
        ASSERT_TRUE(set.containsObject_(peg(value, static_cast<std::uint64_t>(value))));
    unsigned comparisons = 0;
    for (Peg const& one : pegs)
        comparisons += bodyOf(one)->m_comparisons;
    EXPECT_EQ(comparisons, static_cast<unsigned>(count));
}

// Records differ in few places and hold like values under several keys; their hashes differ all the same.
TEST(NSSet, HashesRecordsApart) {
    std::vector<std::uint64_t> hashes;
    for (int x = 0; x < 20; ++x) {
        for (int y = 0; y < 20; ++y) {
            for (bool const isRunning : {false, true}) {
                id const record = NSDictionary::dictionaryWithObjectsAndKeys_(
                    {number(x), "x", number(y), "y", NSNumber::numberWithBool_(isRunning), "isRunning",
                     NSNumber::numberWithBool_(!isRunning), "exists"});
                hashes.push_back(record.hash());
                hashes.push_back(NSArray::arrayWithObjects_({number(x), number(y), record}).hash());
                hashes.push_back(NSSet::setWithObject_(record).hash());
            }
        }
    }
    std::ranges::sort(hashes);
    EXPECT_TRUE(std::ranges::adjacent_find(hashes) == hashes.end());
}

TEST(NSSet, OfRecordsFindsEqualRecords) {
    auto const record = [](int value) {
        return NSDictionary::dictionaryWithObjectsAndKeys_(
            {number(value), "value", words({"a", "b"}), "list", NSSet::setWithObject_(number(value)), "set"});
    };
    NSMutableSet const set = NSMutableSet::set();
    for (int value = 0; value < 1000; ++value) {
        set.addObject_(record(value));
        set.addObject_(record(value));
    }
    EXPECT_EQ(set.count(), 1000U);
    EXPECT_TRUE(set.containsObject_(record(999)));
    EXPECT_FALSE(set.containsObject_(record(1000)));
}

TEST(NSSet, NumbersOfEqualValueAreOneMember) {
    NSSet const set = NSSet::setWithObjects_(
        {number(1), NSNumber::numberWithDouble_(1), NSNumber::numberWithBool_(YES), number(2), "1"});
    EXPECT_EQ(set.count(), 3U);
}

} // namespace mac::test
