#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/predicates/NSPredicate.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

// A record that counts how often its key is read, and compares itself as it likes.
class CountedReading : public Handle<CountedReading, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass() {
        return {.name = "SortReading",
                .superclass = classOf<NSObject>(),
                .methods = {method<&CountedReading::neverEqual_>("neverEqual:")},
                .properties = {readOnlyProperty<&CountedReading::rank>("rank")}};
    }
    static CountedReading of(int rank);
    NSInteger rank() const;
    int reads() const;
    // Says that each is before the other.
    NSInteger neverEqual_(id const&) const { return -1; }
};

class CountedReading::Body : public ObjectBody {
public:
    explicit Body(int number) : rank(number) {}
    int rank;
    int reads{0};
};

CountedReading CountedReading::of(int rank) { return adopt<CountedReading>(rank); }
NSInteger CountedReading::rank() const {
    ++bodyOf(*this)->reads;
    return bodyOf(*this)->rank;
}
int CountedReading::reads() const { return bodyOf(*this)->reads; }

NSDictionary record(std::string_view version, std::string_view path) {
    return NSDictionary::dictionaryWithObjectsAndKeys_({utf8(version), "version", utf8(path), "path"});
}

NSArray byVersionThenPath() {
    return NSArray::arrayWithObjects_({
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("version", NO, "compare:"),
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("path", YES, "caseInsensitiveCompare:"),
    });
}

std::string joinedValues(NSArray const& array, NSString const& key) {
    return joined(as<NSArray>(array.valueForKey_(key)));
}

TEST(SortDescriptor, TellsItsKeyDirectionAndSelector) {
    NSSortDescriptor const descriptor = NSSortDescriptor::sortDescriptorWithKey_ascending_("path", NO);
    EXPECT_TRUE(descriptor.key().isEqualToString_("path"));
    EXPECT_FALSE(descriptor.ascending());
    EXPECT_EQ(descriptor.selector(), SEL("compare:"));
    EXPECT_TRUE(descriptor.reversedSortDescriptor().ascending());
    EXPECT_TRUE(descriptor.reversedSortDescriptor().reversedSortDescriptor().isEqual_(descriptor));
    EXPECT_EQ(descriptor.reversedSortDescriptor().reversedSortDescriptor().hash(), descriptor.hash());
    EXPECT_FALSE(descriptor.isEqual_(descriptor.reversedSortDescriptor()));
    EXPECT_TRUE(isSame(descriptor.copy(), descriptor));
}

TEST(SortDescriptor, ComparesByTheKeysValues) {
    NSSortDescriptor const rising = NSSortDescriptor::sortDescriptorWithKey_ascending_("version", YES);
    EXPECT_EQ(rising.compareObject_toObject_(record("1", ""), record("2", "")), NSOrderedAscending);
    EXPECT_EQ(rising.compareObject_toObject_(record("2", ""), record("2", "")), NSOrderedSame);
    EXPECT_EQ(rising.reversedSortDescriptor().compareObject_toObject_(record("1", ""), record("2", "")),
              NSOrderedDescending);
}

TEST(SortDescriptor, PutsMissingValuesFirst) {
    NSSortDescriptor const rising = NSSortDescriptor::sortDescriptorWithKey_ascending_("version", YES);
    EXPECT_EQ(rising.compareValues(nil, "a"), NSOrderedAscending);
    EXPECT_EQ(rising.compareValues("a", nil), NSOrderedDescending);
    EXPECT_EQ(rising.compareValues(nil, nil), NSOrderedSame);
    EXPECT_EQ(rising.reversedSortDescriptor().compareValues(nil, "a"), NSOrderedDescending);
}

TEST(SortDescriptor, ComparesTheObjectsThemselvesWithoutAKey) {
    EXPECT_EQ(NSSortDescriptor::sortDescriptorWithKey_ascending_(nil, YES).compareObject_toObject_("a", "b"),
              NSOrderedAscending);
    EXPECT_EQ(NSSortDescriptor::sortDescriptorWithKey_ascending_("", YES).compareObject_toObject_("b", "a"),
              NSOrderedDescending);
}

TEST(SortDescriptor, RaisesWhenAValueDoesNotUnderstandTheSelector) {
    NSSortDescriptor const descriptor =
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("version", YES, "noSuchOrder:");
    EXPECT_THROW(descriptor.compareObject_toObject_(record("1", ""), record("2", "")), NSInvalidArgumentException);
}

TEST(SortDescriptor, OfNilComparesNothing) {
    NSSortDescriptor const none = nil;
    EXPECT_EQ(none.compareObject_toObject_("a", "b"), NSOrderedSame);
    EXPECT_TRUE(none.key() == nil);
    EXPECT_TRUE(none.reversedSortDescriptor() == nil);
    EXPECT_FALSE(none.selector());
}

TEST(SortedArray, OrdersVersionsAsTextAndPathsWithoutCase) {
    NSArray const records = NSArray::arrayWithObjects_(
        {record("210", "/b"), record("99", "/B2"), record("99", "/a"), record("210", "/A"), record("99", "/b1")});
    NSArray const sorted = records.sortedArrayUsingDescriptors_(byVersionThenPath());
    EXPECT_EQ(joinedValues(sorted, "version"), "99 99 99 210 210");
    EXPECT_EQ(joinedValues(sorted, "path"), "/a /b1 /B2 /A /b");
}

TEST(SortedArray, KeepsTheOrderOfEqualObjects) {
    NSArray records = NSMutableArray::array();
    for (int index = 0; index < 100; ++index)
        uncheckedCast<NSMutableArray>(records).addObject_(record(index % 2 == 0 ? "1" : "2", std::to_string(index)));
    NSArray const descending =
        NSArray::arrayWithObject_(NSSortDescriptor::sortDescriptorWithKey_ascending_("version", NO));
    NSArray const sorted = records.sortedArrayUsingDescriptors_(descending);
    for (NSUInteger index = 0; index < 100; ++index) {
        unsigned const expected = index < 50 ? index * 2 + 1 : (index - 50) * 2;
        EXPECT_EQ(as<NSString>(sorted.objectAtIndex_(index).valueForKey_("path")).intValue(),
                  static_cast<int>(expected));
    }
}

TEST(SortedArray, ReadsEachKeyOnceAnObject) {
    std::vector<id> readings;
    readings.reserve(1000);
    for (int index = 0; index < 500; ++index)
        readings.push_back(CountedReading::of(index * 7919 % 500));
    NSArray const sorted = NSArray::arrayWithVector(readings).sortedArrayUsingDescriptors_(
        NSArray::arrayWithObject_(NSSortDescriptor::sortDescriptorWithKey_ascending_("rank", YES)));
    for (id const& reading : readings)
        EXPECT_EQ(as<CountedReading>(reading).reads(), 1);
    for (NSUInteger index = 0; index < 500; ++index)
        EXPECT_EQ(as<CountedReading>(sorted.objectAtIndex_(index)).rank(), static_cast<NSInteger>(index));
}

// The shortcut for ASCII text must order as the messages do.
TEST(SortedArray, OrdersAsTheMessagesDo) {
    std::vector<id> words;
    for (std::string_view const word : {"b", "B", "a_",  "a-", "aB", "ab", "A",  "",  "_",  "[", "Z",
                                        "z", "~", "a b", "é",  "e",  "É",  "ss", "ß", "10", "9"})
        words.push_back(utf8(word));
    NSArray const array = NSArray::arrayWithVector(words);
    for (SEL const selector : {SEL("compare:"), SEL("caseInsensitiveCompare:")}) {
        NSArray const sorted = array.sortedArrayUsingSelector_(selector);
        ASSERT_EQ(sorted.count(), array.count());
        for (NSUInteger index = 1; index < sorted.count(); ++index)
            EXPECT_LE(compareBySelector(sorted.objectAtIndex_(index - 1), sorted.objectAtIndex_(index), selector), 0)
                << sorted.objectAtIndex_(index - 1).description().UTF8String() << " before "
                << sorted.objectAtIndex_(index).description().UTF8String() << " by " << selector.name();
    }
}

TEST(SortedArray, OrdersNumbersByValueAcrossKinds) {
    NSArray const numbers =
        NSArray::arrayWithObjects_({NSNumber::numberWithInt_(10), NSNumber::numberWithDouble_(9.5),
                                    NSNumber::numberWithUnsignedLongLong_(~0ULL), NSNumber::numberWithBool_(YES)});
    NSArray const sorted = numbers.sortedArrayUsingSelector_("compare:");
    EXPECT_EQ(as<NSNumber>(sorted.objectAtIndex_(0)).intValue(), 1);
    EXPECT_EQ(as<NSNumber>(sorted.objectAtIndex_(1)).doubleValue(), 9.5);
    EXPECT_EQ(as<NSNumber>(sorted.objectAtIndex_(2)).intValue(), 10);
}

TEST(SortedArray, PutsObjectsWithoutTheKeyFirst) {
    NSArray const records = NSArray::arrayWithObjects_(
        {record("2", "b"), NSDictionary::dictionaryWithObject_forKey_("none", "path"), record("1", "c")});
    NSArray const rising =
        NSArray::arrayWithObject_(NSSortDescriptor::sortDescriptorWithKey_ascending_("version", YES));
    EXPECT_EQ(joinedValues(records.sortedArrayUsingDescriptors_(rising), "path"), "none c b");
}

TEST(SortedArray, SurvivesAComparisonThatContradictsItself) {
    std::vector<id> readings;
    readings.reserve(1000);
    for (int index = 0; index < 1000; ++index)
        readings.push_back(CountedReading::of(index));
    EXPECT_EQ(NSArray::arrayWithVector(readings).sortedArrayUsingSelector_("neverEqual:").count(), 1000U);
}

TEST(SortedArray, RaisesWhenAnObjectDoesNotKnowTheKey) {
    NSArray const records = NSArray::arrayWithObjects_({"text", record("1", "a")});
    EXPECT_THROW(records.sortedArrayUsingDescriptors_(byVersionThenPath()), NSUndefinedKeyException);
}

TEST(SortedArray, WithoutDescriptorsKeepsItsOrder) {
    NSArray const array = NSArray::arrayWithObjects_({"b", "a"});
    EXPECT_EQ(joined(array.sortedArrayUsingDescriptors_(nil)), "b a");
    EXPECT_EQ(joined(array.sortedArrayUsingDescriptors_(NSArray::array())), "b a");
    EXPECT_EQ(NSArray::array().sortedArrayUsingDescriptors_(byVersionThenPath()).count(), 0U);
    EXPECT_TRUE(NSArray(nil).sortedArrayUsingDescriptors_(byVersionThenPath()) == nil);
    EXPECT_TRUE(NSArray(nil).sortedArrayUsingSelector_("compare:") == nil);
}

TEST(SortedArray, CanBeTheSameArrayInPlace) {
    NSMutableArray const array = NSMutableArray::arrayWithObjects_({"b", "c", "a"});
    array.sortUsingDescriptors_(
        NSArray::arrayWithObject_(NSSortDescriptor::sortDescriptorWithKey_ascending_(nil, YES)));
    EXPECT_EQ(joined(array), "a b c");
    NSMutableArray(nil).sortUsingDescriptors_(byVersionThenPath());
}

TEST(SortedArray, TakesAHundredThousandRecords) {
    std::vector<id> records;
    for (unsigned index = 0; index < 100'000; ++index)
        records.push_back(record(std::to_string(index % 10), "/Volumes/Disk/" + std::to_string(index * 2654435761U)));
    NSArray const sorted =
        NSArray::arrayWithVector(std::move(records)).sortedArrayUsingDescriptors_(byVersionThenPath());
    ASSERT_EQ(sorted.count(), 100'000U);
    NSSortDescriptor const first = as<NSSortDescriptor>(byVersionThenPath().objectAtIndex_(0));
    for (NSUInteger index = 1; index < sorted.count(); ++index)
        ASSERT_LE(first.compareObject_toObject_(sorted.objectAtIndex_(index - 1), sorted.objectAtIndex_(index)), 0);
}

TEST(FilteredCollections, KeepWhatPassesInItsOrder) {
    NSPredicate const predicate = NSPredicate::predicateWithFormat_("SELF > 'a'");
    NSArray const array = NSArray::arrayWithObjects_({"c", "a", "b"});
    EXPECT_EQ(joined(array.filteredArrayUsingPredicate_(predicate)), "c b");
    NSMutableArray const mutableArray = NSMutableArray::arrayWithArray_(array);
    mutableArray.filterUsingPredicate_(predicate);
    EXPECT_EQ(joined(mutableArray), "c b");
    EXPECT_TRUE(NSSet::setWithArray_(array).filteredSetUsingPredicate_(predicate).isEqualToSet_(
        NSSet::setWithObjects_({"b", "c"})));
}

TEST(FilteredCollections, AreEmptyWithoutAPredicateAndNilWithoutACollection) {
    NSPredicate const always = NSPredicate::predicateWithValue_(YES);
    EXPECT_EQ(NSArray::arrayWithObject_("a").filteredArrayUsingPredicate_(nil).count(), 0U);
    EXPECT_TRUE(NSArray(nil).filteredArrayUsingPredicate_(always) == nil);
    EXPECT_TRUE(NSSet(nil).filteredSetUsingPredicate_(always) == nil);
    NSMutableArray(nil).filterUsingPredicate_(always);
}

TEST(FilteredCollections, PassOnWhatAnElementRaises) {
    NSArray const records = NSArray::arrayWithObjects_({record("1", "a"), "text"});
    EXPECT_THROW(records.filteredArrayUsingPredicate_(NSPredicate::predicateWithFormat_("path == 'a'")),
                 NSUndefinedKeyException);
}

} // namespace
} // namespace mac::test
