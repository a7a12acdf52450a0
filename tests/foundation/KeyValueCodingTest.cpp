#include "platform/foundation/Exceptions.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSNull.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSSet.h"
#include "tests/foundation/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

NSNumber number(int value) { return NSNumber::numberWithInt_(value); }

int intOf(id const& object) { return as<NSNumber>(object).intValue(); }

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

TEST(KeyValueCoding, ReadsAndSetsAProperty) {
    Parcel const parcel = Parcel::parcelWithName_("Ida");
    EXPECT_EQ(text(parcel.valueForKey_("name")), "Ida");
    parcel.setValue_forKey_("Mia", "name");
    EXPECT_EQ(text(parcel.name()), "Mia");
    parcel.setValue_forKey_(nil, "name");
    EXPECT_TRUE(parcel.valueForKey_("name") == nil);
}

TEST(KeyValueCoding, WrapsScalarsInNumbers) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    parcel.setValue_forKey_(number(12), "weight");
    EXPECT_EQ(parcel.weight(), 12);
    EXPECT_EQ(intOf(parcel.valueForKey_("weight")), 12);
}

TEST(KeyValueCoding, AScalarThatIsSetToNilRaises) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    parcel.setWeight_(12);
    EXPECT_THROW(parcel.setValue_forKey_(nil, "weight"), NSInvalidArgumentException);
    EXPECT_EQ(parcel.weight(), 12);
}

TEST(KeyValueCoding, ReadsThroughMessagesWithoutArguments) {
    Parcel const parcel = Parcel::parcelWithName_("Ida");
    EXPECT_EQ(text(parcel.valueForKey_("label")), "to Ida");
    EXPECT_TRUE(as<NSNumber>(parcel.valueForKey_("fragile")).boolValue());
    EXPECT_TRUE(as<NSNumber>(parcel.valueForKey_("isFragile")).boolValue());
    EXPECT_TRUE(isSame(parcel.valueForKey_("self"), parcel));
}

TEST(KeyValueCoding, ReadsNothingThroughAMessageThatOnlyDoesSomething) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_THROW(parcel.valueForKey_("burn"), NSUndefinedKeyException);
    EXPECT_FALSE(bodyOf(parcel)->m_isBurnt);
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    dictionary.setObject_forKey_("value", "key");
    EXPECT_THROW(dictionary.valueForKey_("@removeAllObjects"), NSUndefinedKeyException);
    EXPECT_EQ(dictionary.count(), 1U);
}

TEST(KeyValueCoding, AKeyThatIsNotThereRaises) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    id const keys[]{"colour", "", "setName:", "joined:with:", "Name", "a.b", nil};
    for (id const& key : keys) {
        SCOPED_TRACE(text(key));
        EXPECT_THROW(parcel.valueForKey_(as<NSString>(key)), NSUndefinedKeyException);
        EXPECT_THROW(parcel.setValue_forKey_("a", as<NSString>(key)), NSUndefinedKeyException);
    }
}

TEST(KeyValueCoding, AKeyThatCanOnlyBeReadRaisesWhenItIsSet) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_EQ(intOf(parcel.valueForKey_("serial")), 7);
    EXPECT_THROW(parcel.setValue_forKey_(number(1), "serial"), NSUndefinedKeyException);
    EXPECT_THROW(parcel.setValue_forKey_("a", "label"), NSUndefinedKeyException);
}

TEST(KeyValueCoding, NamesClassAndKeyWhenItRaises) {
    try {
        Parcel::parcelWithName_("a").valueForKey_("colour");
        FAIL();
    } catch (NSUndefinedKeyException const& exception) {
        EXPECT_EQ(exception.reason(), "Parcel has no key \"colour\"");
    }
}

TEST(KeyValueCoding, ReadsAndSetsManyKeysWithNullForNil) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    parcel.setWeight_(3);
    NSDictionary const values = parcel.dictionaryWithValuesForKeys_(words({"name", "weight", "next"}));
    EXPECT_EQ(values.count(), 3U);
    EXPECT_EQ(text(values.objectForKey_("weight")), "3");
    EXPECT_TRUE(isSame(values.objectForKey_("next"), NSNull::null()));
    Parcel const other = chain(2);
    other.setValuesForKeysWithDictionary_(values);
    EXPECT_EQ(text(other.name()), "a");
    EXPECT_EQ(other.weight(), 3);
    EXPECT_TRUE(other.next() == nil);
    EXPECT_THROW(parcel.dictionaryWithValuesForKeys_(words({"colour"})), NSUndefinedKeyException);
    EXPECT_THROW(other.setValuesForKeysWithDictionary_(NSDictionary::dictionaryWithObject_forKey_("x", "colour")),
                 NSUndefinedKeyException);
    EXPECT_THROW(
        other.setValuesForKeysWithDictionary_(NSDictionary::dictionaryWithObject_forKey_(NSNull::null(), "weight")),
        NSInvalidArgumentException);
    EXPECT_EQ(parcel.dictionaryWithValuesForKeys_(nil).count(), 0U);
    parcel.setValuesForKeysWithDictionary_(nil);
    EXPECT_TRUE(id().dictionaryWithValuesForKeys_(words({"name"})) == nil);
    id().setValuesForKeysWithDictionary_(values);
}

TEST(KeyValueCoding, EndsInMessagesThatRaise) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_THROW(parcel.valueForUndefinedKey_("name"), NSUndefinedKeyException);
    EXPECT_THROW(parcel.setValue_forUndefinedKey_("b", "name"), NSUndefinedKeyException);
    EXPECT_THROW(parcel.setNilValueForKey_("name"), NSInvalidArgumentException);
    EXPECT_TRUE(id().valueForUndefinedKey_("name") == nil);
    id().setValue_forUndefinedKey_("b", "name");
    id().setNilValueForKey_("name");
    EXPECT_EQ(text(parcel.name()), "a");
}

TEST(KeyValueCoding, IsThereAsMessages) {
    id const parcel = Parcel::parcelWithName_("a");
    parcel.performSelector_withObject_withObject_("setValue:forKey:", "b", "name");
    EXPECT_EQ(text(parcel.performSelector_withObject_("valueForKey:", "name")), "b");
    EXPECT_EQ(text(parcel.performSelector_withObject_("valueForKeyPath:", "name")), "b");
    EXPECT_TRUE(parcel.respondsToSelector_("observeValueForKeyPath:ofObject:change:context:"));
}

TEST(KeyValueCoding, ToNilDoesNothing) {
    id const none;
    EXPECT_TRUE(none.valueForKey_("no such key") == nil);
    EXPECT_TRUE(none.valueForKeyPath_("a.b") == nil);
    none.setValue_forKey_("a", "key");
    none.setValue_forKeyPath_("a", "key.path");
}

TEST(KeyValueCoding, FollowsAPath) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    Parcel const next = Parcel::parcelWithName_("b");
    parcel.setNext_(next);
    EXPECT_EQ(text(parcel.valueForKeyPath_("next.name")), "b");
    EXPECT_EQ(text(parcel.valueForKeyPath_("name")), "a");
    parcel.setValue_forKeyPath_("c", "next.name");
    EXPECT_EQ(text(next.name()), "c");
    parcel.setValue_forKeyPath_("d", "name");
    EXPECT_EQ(text(parcel.name()), "d");
}

TEST(KeyValueCoding, APathThroughNilAnswersNilAndSetsNothing) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_TRUE(parcel.valueForKeyPath_("next.name") == nil);
    EXPECT_TRUE(parcel.valueForKeyPath_("next.no such key") == nil);
    parcel.setValue_forKeyPath_("b", "next.name");
    EXPECT_TRUE(parcel.next() == nil);
}

TEST(KeyValueCoding, APathWithAKeyThatIsNotThereRaises) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    parcel.setNext_(Parcel::parcelWithName_("b"));
    for (char const* path : {"colour.name", "next.colour", "next..name", ".name", "next.", ""}) {
        SCOPED_TRACE(path);
        NSString const keyPath = NSString::stringWithUTF8String_(path);
        EXPECT_THROW(parcel.valueForKeyPath_(keyPath), NSUndefinedKeyException);
        EXPECT_THROW(parcel.setValue_forKeyPath_("a", keyPath), NSUndefinedKeyException);
    }
}

TEST(KeyValueCoding, OfADictionaryReadsItsEntries) {
    NSDictionary const dictionary = NSDictionary::dictionaryWithObjectsAndKeys_({"Ida", "name", "dotted", "a.b"});
    EXPECT_EQ(text(dictionary.valueForKey_("name")), "Ida");
    EXPECT_EQ(text(dictionary.valueForKey_("a.b")), "dotted");
    EXPECT_TRUE(dictionary.valueForKey_("colour") == nil);
    EXPECT_TRUE(dictionary.valueForKey_("count") == nil);
    EXPECT_TRUE(dictionary.valueForKey_(nil) == nil);
    EXPECT_TRUE(dictionary.valueForKeyPath_("a.b") == nil);
}

TEST(KeyValueCoding, OfADictionaryAsksTheDictionaryItselfForAKeyBehindAnAt) {
    NSDictionary const dictionary = NSDictionary::dictionaryWithObjectsAndKeys_({"Ida", "name", "seven", "count"});
    EXPECT_EQ(intOf(dictionary.valueForKey_("@count")), 2);
    EXPECT_EQ(intOf(dictionary.valueForKeyPath_("@count")), 2);
    EXPECT_EQ(sortedText(dictionary.valueForKeyPath_("@allKeys")), "count name");
    EXPECT_THROW(dictionary.valueForKey_("@colour"), NSUndefinedKeyException);
    EXPECT_TRUE(dictionary.valueForKey_("@") == nil);
}

TEST(KeyValueCoding, OfAMutableDictionarySetsItsEntries) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    dictionary.setValue_forKey_("Ida", "name");
    dictionary.setValue_forKey_("dotted", "a.b");
    EXPECT_EQ(text(dictionary.objectForKey_("name")), "Ida");
    EXPECT_EQ(text(dictionary.objectForKey_("a.b")), "dotted");
}

TEST(KeyValueCoding, NilRemovesTheKeyOfAMutableDictionary) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    dictionary.setValue_forKey_("Ida", "name");
    dictionary.setValue_forKey_(nil, "name");
    dictionary.setValue_forKey_(nil, "never there");
    EXPECT_EQ(dictionary.count(), 0U);
    EXPECT_THROW(dictionary.setValue_forKey_("a", nil), NSInvalidArgumentException);
}

TEST(KeyValueCoding, OfAnImmutableDictionarySetsNothing) {
    NSDictionary const dictionary = NSDictionary::dictionaryWithObject_forKey_("Ida", "name");
    EXPECT_THROW(dictionary.setValue_forKey_("Mia", "name"), NSUndefinedKeyException);
    EXPECT_EQ(text(dictionary.objectForKey_("name")), "Ida");
}

TEST(KeyValueCoding, OfDictionariesWithinDictionariesFollowsAPath) {
    NSMutableDictionary const inner = NSMutableDictionary::dictionary();
    NSMutableDictionary const outer = NSMutableDictionary::dictionary();
    outer.setObject_forKey_(inner, "inner");
    outer.setValue_forKeyPath_("x", "inner.value");
    EXPECT_EQ(text(inner.objectForKey_("value")), "x");
    EXPECT_EQ(text(outer.valueForKeyPath_("inner.value")), "x");
    EXPECT_EQ(intOf(outer.valueForKeyPath_("inner.@count")), 1);
}

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
    EXPECT_EQ(intOf(NSArray::array().valueForKey_("@count")), 0);
}

struct OperatorCase {
    char const* path;
    char const* result;
};

TEST(KeyValueCoding, AppliesCollectionOperators) {
    OperatorCase const cases[]{
        {"@count", "4"},      {"@sum.weight", "10"}, {"@avg.weight", "2.5"}, {"@max.weight", "4"},
        {"@min.weight", "1"}, {"@max.name", "c"},    {"@min.name", "a"},     {"@count.self", "4"},
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
    EXPECT_EQ(intOf(none.valueForKeyPath_("@sum.weight")), 0);
    EXPECT_EQ(intOf(none.valueForKeyPath_("@avg.weight")), 0);
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

TEST(KeyValueCoding, AnOperatorThatIsNoneRaises) {
    NSArray const array = parcels({"a"});
    EXPECT_THROW(array.valueForKeyPath_("@median.weight"), NSInvalidArgumentException);
    EXPECT_THROW(array.valueForKeyPath_("@sum"), NSInvalidArgumentException);
    EXPECT_THROW(array.valueForKeyPath_("@"), NSInvalidArgumentException);
    EXPECT_THROW(array.valueForKeyPath_("@sum.colour"), NSUndefinedKeyException);
}

TEST(KeyValueCoding, WithinAPathAppliesOperatorsToACollection) {
    NSDictionary const shelf = NSDictionary::dictionaryWithObject_forKey_(parcels({"a", "b"}), "parcels");
    EXPECT_EQ(text(shelf.valueForKeyPath_("parcels.@count")), "2");
    EXPECT_EQ(text(shelf.valueForKeyPath_("parcels.@max.name")), "b");
}

TEST(KeyValueCoding, KeepsKeysApartThatNoUTF8Tells) {
    NSString const first = NSString::stringWithCodeUnits(u"\xDC80");
    NSString const second = NSString::stringWithCodeUnits(u"\xDC81");
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    dictionary.setValue_forKey_("one", first);
    dictionary.setValue_forKey_("two", second);
    EXPECT_EQ(text(dictionary.valueForKey_(first)), "one");
    EXPECT_EQ(text(dictionary.valueForKey_(second)), "two");
    NSArray const array = NSArray::arrayWithObject_(dictionary);
    NSString const path = NSString("@max.").stringByAppendingString_(second);
    EXPECT_EQ(text(array.valueForKeyPath_(path)), "two");
}

} // namespace mac::test
