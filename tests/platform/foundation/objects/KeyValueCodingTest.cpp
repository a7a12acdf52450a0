#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/NSNull.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

// An object with a scalar of each kind.
class Scales : public Handle<Scales, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        double m_ounces{0};
        bool m_isLevel{false};
        NSUInteger m_serial{0};
        long long m_balance{0};
    };
    using Handle::Handle;

    static ClassDescription describeClass() {
        return {
            .name = "Scales",
            .superclass = classOf<NSObject>(),
            .makeBody = &makeEmptyBody<Scales>,
            .properties = {property<&Scales::ounces, &Scales::setOunces_>("ounces"),
                           property<&Scales::isLevel, &Scales::setLevel_>("level"),
                           property<&Scales::serial, &Scales::setSerial_>("serial"),
                           property<&Scales::balance, &Scales::setBalance_>("balance")},
        };
    }

    double ounces() const { return bodyOf(*this)->m_ounces; }
    void setOunces_(double ounces) const { bodyOf(*this)->m_ounces = ounces; }
    bool isLevel() const { return bodyOf(*this)->m_isLevel; }
    void setLevel_(BOOL isLevel) const { bodyOf(*this)->m_isLevel = static_cast<bool>(isLevel); }
    NSUInteger serial() const { return bodyOf(*this)->m_serial; }
    void setSerial_(NSUInteger serial) const { bodyOf(*this)->m_serial = serial; }
    long long balance() const { return bodyOf(*this)->m_balance; }
    void setBalance_(long long balance) const { bodyOf(*this)->m_balance = balance; }
};

int intOf(id const& object) { return as<NSNumber>(object).intValue(); }

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

// Strings and numbers answer the messages that a scalar is read with.
TEST(KeyValueCoding, AsksAnyObjectForAScalar) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    parcel.setValue_forKey_("5", "weight");
    EXPECT_EQ(parcel.weight(), 5);
    parcel.setValue_forKey_(" -7 pounds", "weight");
    EXPECT_EQ(parcel.weight(), -7);
    parcel.setValue_forKey_("heavy", "weight");
    EXPECT_EQ(parcel.weight(), 0);
    parcel.setValue_forKey_("99999999999", "weight");
    EXPECT_EQ(parcel.weight(), INT32_MAX);
    parcel.setValue_forKey_(NSNumber::numberWithDouble_(2.9), "weight");
    EXPECT_EQ(parcel.weight(), 2);
    EXPECT_THROW(parcel.setValue_forKey_(NSArray::array(), "weight"), NSInvalidArgumentException);
    EXPECT_EQ(parcel.weight(), 2);
}

TEST(KeyValueCoding, AsksForScalarsOfEachKind) {
    Scales const scales = Scales::alloc();
    scales.setValue_forKey_("2.5", "ounces");
    scales.setValue_forKey_("YES", "level");
    scales.setValue_forKey_("4294967295", "serial");
    scales.setValue_forKey_("-9000000000", "balance");
    EXPECT_EQ(scales.ounces(), 2.5);
    EXPECT_TRUE(scales.isLevel());
    EXPECT_EQ(scales.serial(), 4294967295U);
    EXPECT_EQ(scales.balance(), -9000000000);
    scales.setValue_forKey_(NSNumber::numberWithBool_(NO), "level");
    EXPECT_FALSE(scales.isLevel());
    EXPECT_THROW(scales.setValue_forKey_(nil, "ounces"), NSInvalidArgumentException);
    EXPECT_THROW(scales.setValue_forKey_(NSNull::null(), "balance"), NSInvalidArgumentException);
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
        EXPECT_STREQ(exception.name(), "NSUnknownKeyException");
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
    NSArray const keys = as<NSArray>(dictionary.valueForKeyPath_("@allKeys"));
    EXPECT_TRUE(NSSet::setWithArray_(keys).isEqual_(NSSet::setWithArray_(words({"count", "name"}))));
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
