#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/NSNull.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/ObjectTexts.h"
#include <algorithm>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

int integerOf(id const& object) { return as<NSNumber>(object).intValue(); }

// A parcel for each name, with its place as weight; a null pointer is a parcel without name.
NSArray parcels(std::initializer_list<char const*> names) {
    NSMutableArray const made = NSMutableArray::array();
    for (char const* name : names) {
        Parcel const parcel = Parcel::parcelWithName_(name ? NSString::stringWithUTF8String_(name) : NSString());
        parcel.setWeight_(static_cast<NSInteger>(made.count()) + 1);
        made.addObject_(parcel);
    }
    return made;
}

NSSet setOf(NSArray const& objects) { return NSSet::setWithArray_(objects); }

std::string sortedText(id const& collection) {
    std::vector<std::string> texts;
    NSArray const members = as<NSSet>(collection) == nil ? as<NSArray>(collection) : as<NSSet>(collection).allObjects();
    for (id const& member : members)
        texts.push_back(text(member));
    std::ranges::sort(texts);
    std::string all;
    for (std::string const& one : texts)
        all += (all.empty() ? "" : " ") + one;
    return all;
}

} // namespace

TEST(KeyValueCoding, OfAnArrayMapsItsElementsWithNullForMissingValues) {
    NSArray const names = as<NSArray>(parcels({"a", nullptr, "c"}).valueForKey_("name"));
    ASSERT_EQ(names.count(), 3U);
    EXPECT_EQ(text(names.objectAtIndex_(0)), "a");
    EXPECT_TRUE(isSame(names.objectAtIndex_(1), NSNull::null()));
    EXPECT_EQ(text(names.objectAtIndex_(2)), "c");
}

TEST(KeyValueCoding, OfAnArrayMapsAWholePath) {
    NSArray const array = parcels({"a", "b"});
    as<Parcel>(array.objectAtIndex_(0)).setNext_(Parcel::parcelWithName_("c"));
    NSArray const names = as<NSArray>(array.valueForKeyPath_("next.name"));
    ASSERT_EQ(names.count(), 2U);
    EXPECT_EQ(text(names.objectAtIndex_(0)), "c");
    EXPECT_TRUE(isSame(names.objectAtIndex_(1), NSNull::null()));
}

// What is behind the first key of a path is asked as a whole: an operator counts the elements' values, not what is in
// each.
TEST(KeyValueCoding, OfAnArrayGoesOnWithTheValuesOfTheFirstKey) {
    auto const shelf = [](NSArray const& names) { return NSDictionary::dictionaryWithObject_forKey_(names, "names"); };
    NSArray const shelves =
        NSArray::arrayWithObjects_({shelf(words({"a", "b", "c"})), shelf(words({"b"})), NSDictionary::dictionary()});
    EXPECT_EQ(text(shelves.valueForKeyPath_("names.@count")), "3");
    EXPECT_EQ(text(setOf(shelves).valueForKeyPath_("names.@count")), "2");
    NSArray const pair = NSArray::arrayWithObjects_({shelf(words({"a", "b"})), shelf(words({"b"}))});
    EXPECT_EQ(sortedText(pair.valueForKeyPath_("names.@unionOfArrays.self")), "a b b");
    EXPECT_EQ(sortedText(setOf(pair).valueForKeyPath_("names.@distinctUnionOfArrays.self")), "a b");
}

TEST(KeyValueCoding, OfTheNullObjectAnswersItselfForEveryKey) {
    EXPECT_TRUE(isSame(NSNull::null().valueForKey_("name"), NSNull::null()));
    EXPECT_TRUE(isSame(NSNull::null().valueForKeyPath_("next.name"), NSNull::null()));
    EXPECT_THROW(NSNull::null().setValue_forKey_("a", "name"), NSUndefinedKeyException);
}

TEST(KeyValueCoding, OfAnArraySetsEveryElement) {
    NSArray const array = parcels({"a", "b"});
    array.setValue_forKey_("x", "name");
    EXPECT_EQ(sortedText(array.valueForKey_("name")), "x x");
    array.setValue_forKeyPath_(nil, "next.name");
    EXPECT_THROW(array.setValue_forKey_(nil, "weight"), NSInvalidArgumentException);
}

TEST(KeyValueCoding, OfAnArraySurvivesASetterThatEmptiesIt) {
    NSMutableArray const array = as<NSMutableArray>(parcels({"a", "b"}).mutableCopy());
    bodyOf(as<Parcel>(array.objectAtIndex_(0)))->m_whileChanging = [&array] { array.removeAllObjects(); };
    array.setValue_forKey_("x", "name");
    EXPECT_EQ(array.count(), 0U);
}

TEST(KeyValueCoding, OfASetMapsItsMembersWithoutMissingValuesAndEachOnce) {
    NSSet const names = as<NSSet>(setOf(parcels({"a", nullptr, "a", "b"})).valueForKey_("name"));
    ASSERT_TRUE(names != nil);
    EXPECT_EQ(sortedText(names), "a b");
}

TEST(KeyValueCoding, OfASetMapsAWholePath) {
    NSArray const array = parcels({"a", "b"});
    as<Parcel>(array.objectAtIndex_(0)).setNext_(Parcel::parcelWithName_("c"));
    EXPECT_EQ(sortedText(setOf(array).valueForKeyPath_("next.name")), "c");
}

TEST(KeyValueCoding, OfASetSetsEveryMember) {
    NSArray const array = parcels({"a", "b"});
    setOf(array).setValue_forKey_("x", "name");
    EXPECT_EQ(sortedText(array.valueForKey_("name")), "x x");
    setOf(array).setValue_forKeyPath_(number(5), "weight");
    EXPECT_EQ(sortedText(array.valueForKey_("weight")), "5 5");
}

TEST(KeyValueCoding, OfEmptyCollectionsAnswersEmptyOnes) {
    EXPECT_EQ(as<NSArray>(NSArray::array().valueForKey_("anything")).count(), 0U);
    EXPECT_TRUE(as<NSSet>(NSSet::set().valueForKey_("anything")) != nil);
    EXPECT_EQ(integerOf(NSArray::array().valueForKey_("@count")), 0);
}

struct OperatorCase {
    char const* path;
    char const* result;
};

TEST(KeyValueCoding, AppliesCollectionOperators) {
    OperatorCase const cases[]{
        {"@count", "4"},         {"@sum.weight", "10"}, {"@avg.weight", "2.5"}, {"@max.weight", "4"},
        {"@min.weight", "1"},    {"@max.name", "c"},    {"@min.name", "a"},     {"@count.self", "4"},
        {"@count.no.such", "4"}, {"@count.@sum", "4"},
    };
    NSArray const array = parcels({"b", "a", "c", "a"});
    for (OperatorCase const& one : cases) {
        SCOPED_TRACE(one.path);
        NSString const path = NSString::stringWithUTF8String_(one.path);
        EXPECT_EQ(text(array.valueForKeyPath_(path)), one.result);
        EXPECT_EQ(text(array.valueForKey_(path)), one.result);
        EXPECT_EQ(text(setOf(array).valueForKeyPath_(path)), one.result);
    }
}

TEST(KeyValueCoding, UnitesObjectsByOperator) {
    NSArray const array = parcels({"b", "a", nullptr, "a"});
    EXPECT_EQ(sortedText(array.valueForKeyPath_("@unionOfObjects.name")), "a a b");
    EXPECT_EQ(sortedText(array.valueForKeyPath_("@distinctUnionOfObjects.name")), "a b");
}

TEST(KeyValueCoding, UnitesCollectionsByOperator) {
    NSArray const lists = NSArray::arrayWithObjects_({words({"a", "b"}), words({"b", "c"})});
    EXPECT_EQ(sortedText(lists.valueForKeyPath_("@unionOfArrays.self")), "a b b c");
    EXPECT_EQ(sortedText(lists.valueForKeyPath_("@distinctUnionOfArrays.self")), "a b c");
    NSSet const sets = NSSet::setWithObjects_({setOf(words({"a", "b"})), setOf(words({"b", "c"}))});
    id const united = sets.valueForKeyPath_("@distinctUnionOfSets.self");
    EXPECT_TRUE(as<NSSet>(united) != nil);
    EXPECT_EQ(sortedText(united), "a b c");
    EXPECT_THROW(words({"a"}).valueForKeyPath_("@unionOfArrays.self"), NSInvalidArgumentException);
}

TEST(KeyValueCoding, OperatorsOverNothingAnswerZeroOrNil) {
    NSArray const none = NSArray::array();
    EXPECT_EQ(integerOf(none.valueForKeyPath_("@sum.weight")), 0);
    EXPECT_EQ(integerOf(none.valueForKeyPath_("@avg.weight")), 0);
    EXPECT_TRUE(none.valueForKeyPath_("@max.weight") == nil);
    EXPECT_TRUE(none.valueForKeyPath_("@min.weight") == nil);
    EXPECT_EQ(as<NSArray>(none.valueForKeyPath_("@unionOfObjects.weight")).count(), 0U);
}

TEST(KeyValueCoding, MissingValuesCountAsZeroInAnAverageAndAsNothingElsewhere) {
    NSMutableDictionary const four = NSMutableDictionary::dictionary();
    four.setObject_forKey_(number(4), "size");
    NSArray const array = NSArray::arrayWithObjects_({four, NSDictionary::dictionary()});
    EXPECT_EQ(text(array.valueForKeyPath_("@avg.size")), "2");
    EXPECT_EQ(text(array.valueForKeyPath_("@sum.size")), "4");
    EXPECT_EQ(text(array.valueForKeyPath_("@min.size")), "4");
}

TEST(KeyValueCoding, AnUnknownOperatorRaises) {
    NSArray const array = parcels({"a"});
    EXPECT_THROW(array.valueForKeyPath_("@median.weight"), NSUndefinedKeyException);
    EXPECT_THROW(array.valueForKey_("@median"), NSUndefinedKeyException);
    EXPECT_THROW(array.valueForKeyPath_("@sum"), NSInvalidArgumentException);
    EXPECT_THROW(array.valueForKeyPath_("@"), NSUndefinedKeyException);
    EXPECT_THROW(array.valueForKeyPath_("@sum.colour"), NSUndefinedKeyException);
}

TEST(KeyValueCoding, WithinAPathAppliesOperatorsToACollection) {
    NSDictionary const shelf = NSDictionary::dictionaryWithObject_forKey_(parcels({"a", "b"}), "parcels");
    EXPECT_EQ(text(shelf.valueForKeyPath_("parcels.@count")), "2");
    EXPECT_EQ(text(shelf.valueForKeyPath_("parcels.@max.name")), "b");
}

} // namespace mac::test
