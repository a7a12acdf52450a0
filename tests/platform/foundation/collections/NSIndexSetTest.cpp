#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/SeededRandom.h"
#include <array>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace mac::test {

namespace {

NSMutableIndexSet setOf(std::initializer_list<NSUInteger> indexes) {
    NSMutableIndexSet const set = NSMutableIndexSet::indexSet();
    for (NSUInteger const index : indexes)
        set.addIndex_(index);
    return set;
}

std::string ranges(NSIndexSet const& set) {
    std::string text;
    for (NSRange const range : set.ranges())
        text += "{" + std::to_string(range.location) + "," + std::to_string(range.length) + "}";
    return text;
}

constexpr NSUInteger Last = NSNotFound - 1;

} // namespace

TEST(NSIndexSet, HoldsWhatItWasMadeOf) {
    EXPECT_EQ(ranges(NSIndexSet::indexSet()), "");
    EXPECT_EQ(ranges(NSIndexSet::indexSetWithIndex_(5)), "{5,1}");
    EXPECT_EQ(ranges(NSIndexSet::indexSetWithIndexesInRange_({2, 3})), "{2,3}");
    EXPECT_EQ(ranges(NSIndexSet::indexSetWithIndexesInRange_({2, 0})), "");
    EXPECT_EQ(ranges(NSIndexSet::alloc().init()), "");
    EXPECT_EQ(ranges(NSIndexSet::alloc().initWithIndex_(0)), "{0,1}");
    EXPECT_EQ(ranges(NSIndexSet::alloc().initWithIndexSet_(setOf({1, 3}))), "{1,1}{3,1}");
    EXPECT_EQ(ranges(NSIndexSet::alloc().initWithIndexSet_(nil)), "");
}

TEST(NSIndexSet, ReachesToTheIndexBeforeNotFound) {
    EXPECT_EQ(NSIndexSet::indexSetWithIndex_(Last).lastIndex(), Last);
    EXPECT_EQ(NSIndexSet::indexSetWithIndexesInRange_({0, NSNotFound}).count(), NSNotFound);
    EXPECT_THROW(NSIndexSet::indexSetWithIndex_(NSNotFound), NSRangeException);
    EXPECT_THROW(NSIndexSet::indexSetWithIndex_(0x80000000), NSRangeException);
    EXPECT_THROW(NSIndexSet::indexSetWithIndex_(static_cast<NSUInteger>(-1)), NSRangeException);
    EXPECT_THROW(NSIndexSet::indexSetWithIndexesInRange_({1, NSNotFound}), NSRangeException);
    EXPECT_THROW(NSIndexSet::indexSetWithIndexesInRange_({5, 0xFFFFFFFE}), NSRangeException);
    EXPECT_EQ(ranges(NSIndexSet::indexSetWithIndexesInRange_({0xFFFFFFFF, 0})), "");
}

TEST(NSIndexSet, FindsIndexesFromWhereOneStands) {
    NSIndexSet const set = setOf({2, 3, 7});
    EXPECT_EQ(set.count(), 3U);
    EXPECT_EQ(set.firstIndex(), 2U);
    EXPECT_EQ(set.lastIndex(), 7U);
    struct Row {
        NSUInteger from, greater, greaterOrEqual, less, lessOrEqual;
    };
    for (Row const row : {
             Row{0, 2, 2, NSNotFound, NSNotFound},
             Row{2, 3, 2, NSNotFound, 2},
             Row{3, 7, 3, 2, 3},
             Row{5, 7, 7, 3, 3},
             Row{7, NSNotFound, 7, 3, 7},
             Row{8, NSNotFound, NSNotFound, 7, 7},
             Row{NSNotFound, NSNotFound, NSNotFound, 7, 7},
             Row{0xFFFFFFFF, NSNotFound, NSNotFound, 7, 7},
         }) {
        EXPECT_EQ(set.indexGreaterThanIndex_(row.from), row.greater) << row.from;
        EXPECT_EQ(set.indexGreaterThanOrEqualToIndex_(row.from), row.greaterOrEqual) << row.from;
        EXPECT_EQ(set.indexLessThanIndex_(row.from), row.less) << row.from;
        EXPECT_EQ(set.indexLessThanOrEqualToIndex_(row.from), row.lessOrEqual) << row.from;
    }
}

TEST(NSIndexSet, EmptyFindsNothing) {
    NSIndexSet const set = NSIndexSet::indexSet();
    EXPECT_EQ(set.count(), 0U);
    EXPECT_EQ(set.firstIndex(), NSNotFound);
    EXPECT_EQ(set.lastIndex(), NSNotFound);
    EXPECT_EQ(set.indexGreaterThanIndex_(0), NSNotFound);
    EXPECT_EQ(set.indexLessThanOrEqualToIndex_(9), NSNotFound);
}

TEST(NSIndexSet, TellsWhatItContains) {
    NSIndexSet const set = setOf({2, 3, 4, 8});
    EXPECT_TRUE(set.containsIndex_(3));
    EXPECT_FALSE(set.containsIndex_(5));
    EXPECT_FALSE(set.containsIndex_(0xFFFFFFFF));
    EXPECT_TRUE(set.containsIndexesInRange_({2, 3}));
    EXPECT_FALSE(set.containsIndexesInRange_({2, 4}));
    EXPECT_FALSE(set.containsIndexesInRange_({3, 0xFFFFFFFF}));
    EXPECT_FALSE(set.containsIndexesInRange_({3, 0}));
    EXPECT_TRUE(set.containsIndexes_(setOf({2, 8})));
    EXPECT_FALSE(set.containsIndexes_(setOf({2, 9})));
    EXPECT_TRUE(set.containsIndexes_(NSIndexSet::indexSet()));
    EXPECT_TRUE(set.containsIndexes_(nil));
    EXPECT_TRUE(set.intersectsIndexesInRange_({4, 3}));
    EXPECT_FALSE(set.intersectsIndexesInRange_({5, 3}));
    EXPECT_FALSE(set.intersectsIndexesInRange_({2, 0}));
    EXPECT_TRUE(set.intersectsIndexesInRange_({5, 0xFFFFFFFF}));
}

TEST(NSIndexSet, CountsIndexesInARange) {
    NSIndexSet const set = setOf({2, 3, 4, 8, 9});
    EXPECT_EQ(set.countOfIndexesInRange_({0, 100}), 5U);
    EXPECT_EQ(set.countOfIndexesInRange_({3, 6}), 3U);
    EXPECT_EQ(set.countOfIndexesInRange_({5, 3}), 0U);
    EXPECT_EQ(set.countOfIndexesInRange_({9, 0xFFFFFFFF}), 1U);
}

TEST(NSIndexSet, WritesItsIndexesPieceByPiece) {
    NSIndexSet const set = setOf({1, 2, 5, 9});
    std::array<NSUInteger, 3> buffer{};
    NSRange range{2, 8};
    EXPECT_EQ(set.getIndexes_maxCount_inIndexRange_(buffer.data(), 2, &range), 2U);
    EXPECT_EQ(buffer[0], 2U);
    EXPECT_EQ(buffer[1], 5U);
    EXPECT_EQ(range.location + range.length, 10U);
    EXPECT_EQ(set.getIndexes_maxCount_inIndexRange_(buffer.data(), 2, &range), 1U);
    EXPECT_EQ(buffer[0], 9U);
    EXPECT_EQ(range.length, 0U);
    EXPECT_EQ(set.getIndexes_maxCount_inIndexRange_(buffer.data(), 3, nullptr), 3U);
    EXPECT_EQ(buffer[2], 5U);
    NSRange untouched{0, 4};
    EXPECT_EQ(set.getIndexes_maxCount_inIndexRange_(buffer.data(), 0, &untouched), 0U);
    EXPECT_EQ(untouched, (NSRange{1, 3}));
}

TEST(NSIndexSet, EqualsAnotherOfTheSameIndexes) {
    NSIndexSet const set = NSIndexSet::indexSetWithIndexesInRange_({1, 2});
    EXPECT_TRUE(set.isEqual_(setOf({2, 1})));
    EXPECT_TRUE(set.isEqualToIndexSet_(setOf({2, 1})));
    EXPECT_EQ(set.hash(), setOf({1, 2}).hash());
    EXPECT_FALSE(set.isEqual_(setOf({1, 2, 4})));
    EXPECT_FALSE(set.isEqual_(nil));
    EXPECT_FALSE(set.isEqual_("text"));
    EXPECT_NE(setOf({1}).hash(), setOf({2}).hash());
    EXPECT_EQ(NSSet::setWithObjects_({set, setOf({1, 2}), setOf({1})}).count(), 2U);
}

TEST(NSIndexSet, DescribesItself) {
    EXPECT_TRUE(text(NSIndexSet::indexSet()).ends_with(">(no indexes)"));
    EXPECT_TRUE(text(setOf({1, 2, 5})).ends_with(">[number of indexes: 3 (in 2 ranges), indexes: (1-2 5)]"));
    EXPECT_TRUE(text(setOf({7})).ends_with(">[number of indexes: 1 (in 1 ranges), indexes: (7)]"));
    EXPECT_TRUE(text(setOf({7})).starts_with("<NSMutableIndexSet: 0x"));
}

TEST(NSIndexSet, CopiesToItselfAndMutableCopiesToAnother) {
    NSIndexSet const set = NSIndexSet::indexSetWithIndex_(1);
    EXPECT_TRUE(isSame(set.copy(), set));
    NSMutableIndexSet const changed = as<NSMutableIndexSet>(set.mutableCopy());
    NSIndexSet const kept = as<NSIndexSet>(changed.copy());
    changed.addIndex_(2);
    EXPECT_TRUE(as<NSMutableIndexSet>(kept) == nil);
    EXPECT_TRUE(kept.isEqual_(set));
    EXPECT_EQ(changed.count(), 2U);
}

TEST(NSMutableIndexSet, JoinsRangesThatMeetOrTouch) {
    NSMutableIndexSet const set = NSMutableIndexSet::indexSetWithIndexesInRange_({10, 2});
    set.addIndexesInRange_({14, 2});
    set.addIndex_(5);
    EXPECT_EQ(ranges(set), "{5,1}{10,2}{14,2}");
    set.addIndexesInRange_({12, 2});
    EXPECT_EQ(ranges(set), "{5,1}{10,6}");
    set.addIndexesInRange_({0, 100});
    EXPECT_EQ(ranges(set), "{0,100}");
    set.addIndexesInRange_({3, 0});
    EXPECT_EQ(ranges(set), "{0,100}");
}

TEST(NSMutableIndexSet, RemovesFromWithinRanges) {
    NSMutableIndexSet const set = NSMutableIndexSet::indexSetWithIndexesInRange_({0, 10});
    set.removeIndex_(4);
    EXPECT_EQ(ranges(set), "{0,4}{5,5}");
    set.removeIndex_(4);
    set.removeIndexesInRange_({2, 4});
    EXPECT_EQ(ranges(set), "{0,2}{6,4}");
    set.removeIndexes_(setOf({0, 7, 9, 20}));
    EXPECT_EQ(ranges(set), "{1,1}{6,1}{8,1}");
    set.removeAllIndexes();
    EXPECT_EQ(ranges(set), "");
}

TEST(NSMutableIndexSet, CombinesWithItselfAndNil) {
    NSMutableIndexSet const set = setOf({1, 3});
    set.addIndexes_(set);
    set.addIndexes_(nil);
    set.removeIndexes_(nil);
    EXPECT_EQ(ranges(set), "{1,1}{3,1}");
    set.removeIndexes_(set);
    EXPECT_EQ(ranges(set), "");
}

TEST(NSMutableIndexSet, AnIndexAtNotFoundRaisesAndChangesNothing) {
    NSMutableIndexSet const set = setOf({1});
    EXPECT_THROW(set.addIndex_(NSNotFound), NSRangeException);
    EXPECT_THROW(set.addIndexesInRange_({0, 0x80000000}), NSRangeException);
    EXPECT_THROW(set.removeIndex_(0xFFFFFFFF), NSRangeException);
    EXPECT_EQ(ranges(set), "{1,1}");
}

TEST(NSMutableIndexSet, ShiftsUpAndLeavesAGap) {
    NSMutableIndexSet const set = NSMutableIndexSet::indexSetWithIndexesInRange_({2, 4});
    set.shiftIndexesStartingAtIndex_by_(4, 3);
    EXPECT_EQ(ranges(set), "{2,2}{7,2}");
    set.shiftIndexesStartingAtIndex_by_(9, 3);
    EXPECT_EQ(ranges(set), "{2,2}{7,2}");
}

TEST(NSMutableIndexSet, ShiftsDownOverThoseInTheWay) {
    NSMutableIndexSet const set = setOf({1, 5, 6, 9});
    set.shiftIndexesStartingAtIndex_by_(9, -4);
    EXPECT_EQ(ranges(set), "{1,1}{5,1}");
    NSMutableIndexSet const run = NSMutableIndexSet::indexSetWithIndexesInRange_({0, 10});
    run.shiftIndexesStartingAtIndex_by_(5, -2);
    EXPECT_EQ(ranges(run), "{0,8}");
    NSMutableIndexSet const gap = setOf({0, 7});
    gap.shiftIndexesStartingAtIndex_by_(5, -6);
    EXPECT_EQ(ranges(gap), "{1,1}");
}

TEST(NSMutableIndexSet, AShiftBeyondTheEndsRaisesAndChangesNothing) {
    NSMutableIndexSet const set = setOf({3, Last - 1});
    EXPECT_THROW(set.shiftIndexesStartingAtIndex_by_(0, -4), NSRangeException);
    EXPECT_THROW(set.shiftIndexesStartingAtIndex_by_(0, -0x7FFFFFFF - 1), NSRangeException);
    EXPECT_THROW(set.shiftIndexesStartingAtIndex_by_(4, 2), NSRangeException);
    set.shiftIndexesStartingAtIndex_by_(4, 1);
    EXPECT_TRUE(set.isEqual_(setOf({3, Last})));
}

TEST(NSMutableIndexSet, AgreesWithAPlainSetThroughManyChanges) {
    std::mt19937 random = seededRandom(7);
    NSMutableIndexSet const set = NSMutableIndexSet::indexSet();
    std::set<NSUInteger> plain;
    for (int step = 0; step < 3000; ++step) {
        NSRange const range{static_cast<NSUInteger>(random() % 200), static_cast<NSUInteger>(random() % 9)};
        bool const adds = random() % 2 == 0;
        bool const bySet = random() % 2 == 0;
        NSIndexSet const other = NSIndexSet::indexSetWithIndexesInRange_(range);
        if (adds && bySet) set.addIndexes_(other);
        if (adds && !bySet) set.addIndexesInRange_(range);
        if (!adds && bySet) set.removeIndexes_(other);
        if (!adds && !bySet) set.removeIndexesInRange_(range);
        for (NSUInteger index = range.location; index < range.location + range.length; ++index) {
            if (adds)
                plain.insert(index);
            else
                plain.erase(index);
        }
        ASSERT_EQ(set.count(), plain.size());
        NSUInteger expected = set.firstIndex();
        for (NSUInteger const index : plain) {
            ASSERT_EQ(index, expected);
            expected = set.indexGreaterThanIndex_(index);
        }
        ASSERT_EQ(expected, NSNotFound);
        for (std::size_t place = 1; place < set.ranges().size(); ++place) {
            NSRange const before = set.ranges()[place - 1];
            ASSERT_GT(set.ranges()[place].location, before.location + before.length);
        }
    }
}

TEST(NSIndexSet, UnderstandsMessagesByName) {
    id const set = setOf({2, 4});
    EXPECT_EQ(text(set.performSelector_("count")), "2");
    EXPECT_EQ(text(set.performSelector_withObject_("indexGreaterThanIndex:", NSNumber::numberWithInt_(2))), "4");
    EXPECT_TRUE(
        NSClassFromString("NSMutableIndexSet").performClassSelector_("indexSet").isEqual_(NSIndexSet::indexSet()));
}

TEST(NSIndexSet, NilAnswersNothingAndChangesNothing) {
    NSIndexSet const none;
    EXPECT_EQ(none.count(), 0U);
    EXPECT_EQ(none.firstIndex(), 0U);
    EXPECT_EQ(none.lastIndex(), 0U);
    EXPECT_EQ(none.indexGreaterThanIndex_(3), 0U);
    EXPECT_EQ(none.indexGreaterThanOrEqualToIndex_(3), 0U);
    EXPECT_EQ(none.indexLessThanIndex_(3), 0U);
    EXPECT_EQ(none.indexLessThanOrEqualToIndex_(3), 0U);
    EXPECT_FALSE(none.containsIndex_(0));
    EXPECT_FALSE(none.containsIndexes_(NSIndexSet::indexSet()));
    EXPECT_FALSE(none.intersectsIndexesInRange_({0, 9}));
    EXPECT_EQ(none.countOfIndexesInRange_({0, 9}), 0U);
    EXPECT_EQ(none.getIndexes_maxCount_inIndexRange_(nullptr, 0, nullptr), 0U);
    EXPECT_FALSE(none.isEqualToIndexSet_(none));
    EXPECT_TRUE(none.initWithIndex_(3) == nil);
    NSMutableIndexSet const nothing;
    nothing.addIndex_(1);
    nothing.addIndexes_(NSIndexSet::indexSet());
    nothing.removeIndex_(1);
    nothing.removeIndexes_(NSIndexSet::indexSet());
    nothing.removeAllIndexes();
    nothing.shiftIndexesStartingAtIndex_by_(0, 1);
    EXPECT_TRUE(nothing == nil);
}

} // namespace mac::test
