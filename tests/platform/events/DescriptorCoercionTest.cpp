#include "platform/events/NSAppleEventDescriptor.h"
#include "tests/platform/events/Descriptors.h"
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace mac::test {

namespace {

template <class T>
NSAppleEventDescriptor of(DescType type, T const& value) {
    return NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(type, &value, sizeof value);
}

std::string stringOf(NSAppleEventDescriptor const& descriptor) {
    NSString const string = descriptor.stringValue();
    return string == nil ? "(nil)" : string.UTF8String();
}

bool canBe(NSAppleEventDescriptor const& descriptor, DescType type) {
    NSAppleEventDescriptor const result = descriptor.coerceToDescriptorType_(type);
    return result != nil && result.descriptorType() == type;
}

OSErr answerSeven(AEDesc const&, DescType toType, AEDesc& result) {
    result = *of(toType, std::int32_t{7}).aeDesc();
    return noErr;
}

OSErr refuse(AEDesc const&, DescType, AEDesc&) { return errAECoercionFail; }

} // namespace

TEST(DescriptorCoercion, GivesNumbersOfEverySizeAsText) {
    EXPECT_EQ(stringOf(of(typeSInt16, std::int16_t{-3})), "-3");
    EXPECT_EQ(stringOf(of(typeSInt32, std::int32_t{7})), "7");
    EXPECT_EQ(stringOf(of(typeUInt32, std::uint32_t{4000000000U})), "4000000000");
    EXPECT_EQ(stringOf(of(typeSInt64, std::int64_t{-9007199254740993})), "-9007199254740993");
    EXPECT_EQ(stringOf(of(typeUInt64, std::numeric_limits<std::uint64_t>::max())), "18446744073709551615");
    EXPECT_EQ(stringOf(of(typeIEEE32BitFloatingPoint, 0.5F)), "0.5");
    EXPECT_EQ(stringOf(realDescriptor(1.5)), "1.5");
    EXPECT_EQ(stringOf(realDescriptor(1e300)), "1e+300");
}

TEST(DescriptorCoercion, GivesCodesAndTruthValuesAsText) {
    EXPECT_EQ(stringOf(of(typeType, FourCharCode("cfol").value())), "cfol");
    EXPECT_EQ(stringOf(of(typeEnumerated, std::uint32_t{0x61626380})), "abc\xC3\x84") << "codes are Mac OS Roman";
    EXPECT_EQ(stringOf(NSAppleEventDescriptor::descriptorWithBoolean_(NO)), "false");
    EXPECT_EQ(stringOf(of(typeBoolean, std::uint8_t{1})), "true");
}

TEST(DescriptorCoercion, ReadsTextInEveryForm) {
    EXPECT_EQ(stringOf(descriptorOfBytes(typeText, "caf\xC3\xA9")), "caf\xC3\xA9");
    EXPECT_EQ(stringOf(descriptorOfBytes(typeText, "caf\x8E")), "caf\xC3\xA9") << "what is not UTF-8 is Mac OS Roman";
    EXPECT_EQ(stringOf(descriptorOfBytes(typeUTF8Text, "caf\x8E")), "(nil)");
    EXPECT_EQ(stringOf(descriptorOfBytes(typeUTF16ExternalRepresentation, std::string_view("\0a\0b", 4))), "ab");
    EXPECT_EQ(stringOf(descriptorOfBytes(typeUTF16ExternalRepresentation, std::string_view("\xFF\xFE"
                                                                                           "a\0",
                                                                                           4))),
              "a");
    EXPECT_EQ(stringOf(of(typeUnicodeText, std::array<char16_t, 2>{0xFEFF, u'a'})), "a");
    EXPECT_EQ(stringOf(descriptorOfBytes(typeUnicodeText, "abc")), "(nil)") << "half a unit is no text";
    EXPECT_EQ(stringOf(descriptorOfBytes(typeUnicodeText, "")), "");
}

TEST(DescriptorCoercion, WritesTextInEveryForm) {
    for (DescType const type : {typeText, typeUTF8Text, typeUTF16ExternalRepresentation, typeUnicodeText}) {
        NSAppleEventDescriptor const converted = stringDescriptor("z\u00FC \U0001F600").coerceToDescriptorType_(type);
        EXPECT_EQ(converted.descriptorType(), type);
        EXPECT_EQ(stringOf(converted), "z\u00FC \U0001F600");
    }
    NSAppleEventDescriptor const surrogate = stringDescriptor(NSString::stringWithFileSystemRepresentation_("\xE9"));
    EXPECT_FALSE(canBe(surrogate, typeUTF8Text)) << "a lone surrogate has no UTF-8";
    EXPECT_TRUE(canBe(surrogate, typeUTF16ExternalRepresentation));
}

TEST(DescriptorCoercion, RoundsRealsToTheEvenNeighbour) {
    EXPECT_EQ(realDescriptor(2.5).int32Value(), 2);
    EXPECT_EQ(realDescriptor(3.5).int32Value(), 4);
    EXPECT_EQ(realDescriptor(-2.7).int32Value(), -3);
    EXPECT_EQ(realDescriptor(2147483647.4).int32Value(), 2147483647);
}

TEST(DescriptorCoercion, RefusesWhatIsBeyondTheRange) {
    for (double const value : {2147483647.5, -2147483649.0, 1e300, HUGE_VAL, std::nan("")}) {
        EXPECT_EQ(realDescriptor(value).int32Value(), 0) << value;
        EXPECT_FALSE(canBe(realDescriptor(value), typeSInt32)) << value;
    }
    EXPECT_FALSE(canBe(of(typeSInt64, std::int64_t{1} << 40), typeSInt32));
    EXPECT_FALSE(canBe(of(typeSInt32, std::int32_t{-1}), typeUInt32));
    EXPECT_FALSE(canBe(realDescriptor(18446744073709551616.0), typeUInt64));
    EXPECT_TRUE(canBe(of(typeUInt64, std::numeric_limits<std::uint64_t>::max()), typeIEEE64BitFloatingPoint));
}

TEST(DescriptorCoercion, ReadsNumbersFromWholeTexts) {
    EXPECT_EQ(stringDescriptor(" 12\n").int32Value(), 12);
    EXPECT_EQ(stringDescriptor("+12").int32Value(), 12);
    EXPECT_EQ(stringDescriptor("-1.5e2").int32Value(), -150);
    for (NSString const& string : {NSString(""), NSString("12 a"), NSString("inf"), NSString("0x10"), NSString("+-1")})
        EXPECT_FALSE(canBe(stringDescriptor(string), typeSInt32)) << string.UTF8String();
    NSAppleEventDescriptor const large = stringDescriptor("9007199254740993").coerceToDescriptorType_(typeSInt64);
    EXPECT_EQ(stringOf(large), "9007199254740993");
}

TEST(DescriptorCoercion, FindsTruthInNumbersTextsAndCodes) {
    for (NSAppleEventDescriptor const& descriptor :
         {of(typeBoolean, std::uint8_t{2}), of(typeSInt32, std::int32_t{-1}), stringDescriptor("TRUE"),
          of(typeEnumerated, FourCharCode("yes ").value()), of(typeEnumerated, FourCharCode("true").value())})
        EXPECT_TRUE(descriptor.booleanValue()) << descriptor.description().UTF8String();
    for (NSAppleEventDescriptor const& descriptor :
         {of(typeBoolean, std::uint8_t{0}), realDescriptor(0), stringDescriptor("false"), stringDescriptor("maybe"),
          of(typeEnumerated, FourCharCode("no  ").value()), NSAppleEventDescriptor::nullDescriptor()})
        EXPECT_FALSE(descriptor.booleanValue()) << descriptor.description().UTF8String();
    EXPECT_TRUE(canBe(stringDescriptor("true"), typeTrue));
    EXPECT_FALSE(canBe(stringDescriptor("true"), typeFalse));
    EXPECT_EQ(NSAppleEventDescriptor::descriptorWithBoolean_(YES).int32Value(), 1);
}

TEST(DescriptorCoercion, MakesCodesOfFourCharacters) {
    EXPECT_EQ(stringDescriptor("cfol").typeCodeValue(), OSType("cfol"));
    EXPECT_EQ(of(typeType, FourCharCode("cfol").value()).enumCodeValue(), OSType("cfol"));
    EXPECT_EQ(NSAppleEventDescriptor::descriptorWithBoolean_(YES).enumCodeValue(), OSType("true"));
    EXPECT_FALSE(canBe(stringDescriptor("folder"), typeType));
    EXPECT_FALSE(canBe(stringDescriptor("\u4E00bcd"), typeType));
}

TEST(DescriptorCoercion, TakesNoDataOfAnotherSize) {
    EXPECT_EQ(of(typeSInt32, std::int64_t{1}).int32Value(), 0);
    EXPECT_EQ(stringOf(descriptorOfBytes(typeSInt32, "abc")), "(nil)");
    EXPECT_EQ(stringOf(descriptorOfBytes(typeIEEE64BitFloatingPoint, "")), "(nil)");
    EXPECT_EQ(descriptorOfBytes(typeType, "abc").typeCodeValue(), OSType());
}

TEST(DescriptorCoercion, MakesAListOfAnythingAndUnwrapsAListOfOne) {
    NSAppleEventDescriptor const list = stringDescriptor("12").coerceToDescriptorType_(typeAEList);
    ASSERT_EQ(list.numberOfItems(), 1);
    EXPECT_EQ(list.int32Value(), 12);
    EXPECT_EQ(stringOf(list), "12");
    list.insertDescriptor_atIndex_(stringDescriptor("13"), 0);
    EXPECT_EQ(stringOf(list), "(nil)");
    EXPECT_EQ(list.coerceToDescriptorType_(typeAEList).numberOfItems(), 2);
    EXPECT_EQ(stringOf(NSAppleEventDescriptor::listDescriptor()), "(nil)");
}

TEST(DescriptorCoercion, TurnsARecordIntoAListOfItsValuesAndIntoOtherRecords) {
    NSAppleEventDescriptor const record = NSAppleEventDescriptor::recordDescriptor();
    record.setDescriptor_forKeyword_(stringDescriptor("a"), AEKeyword("pnam"));
    EXPECT_EQ(stringOf(record.coerceToDescriptorType_(typeAEList)), "a");
    NSAppleEventDescriptor const specifier = record.coerceToDescriptorType_(typeObjectSpecifier);
    EXPECT_EQ(specifier.descriptorType(), typeObjectSpecifier);
    EXPECT_EQ(stringOf(specifier.descriptorForKeyword_(AEKeyword("pnam"))), "a");
    EXPECT_FALSE(canBe(record, typeUnicodeText));
    EXPECT_FALSE(canBe(record, typeAppleEvent));
    EXPECT_FALSE(canBe(stringDescriptor("a"), typeAERecord));
}

TEST(DescriptorCoercion, TurnsAnEventIntoTheRecordOfItsParameters) {
    NSAppleEventDescriptor const event =
        NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
            kCoreEventClass, kAEQuitApplication, nil, 1, 0);
    event.setParamDescriptor_forKeyword_(stringDescriptor("a"), keyDirectObject);
    NSAppleEventDescriptor const record = event.coerceToDescriptorType_(typeAERecord);
    EXPECT_EQ(record.numberOfItems(), 1);
    EXPECT_EQ(stringOf(record.descriptorForKeyword_(keyDirectObject)), "a");
}

TEST(DescriptorCoercion, LeavesAValueOfTheTypeAskedForAlone) {
    EXPECT_EQ(stringDescriptor("a").coerceToDescriptorType_(typeWildCard).descriptorType(), typeUnicodeText);
    EXPECT_TRUE(canBe(descriptorOfBytes(DescType("fork"), "x"), DescType("fork")));
    EXPECT_FALSE(canBe(descriptorOfBytes(DescType("fork"), "x"), DescType("spoo")));
    EXPECT_EQ(descriptorOfBytes(DescType("fork"), "x").coerceToDescriptorType_(typeData).data().length(), 1U);
}

TEST(DescriptorCoercion, AsksTheHandlerOfAPairFirst) {
    EXPECT_EQ(AEInstallCoercionHandler(DescType("tst1"), typeSInt32, answerSeven), noErr);
    EXPECT_EQ(descriptorOfBytes(DescType("tst1"), "x").int32Value(), 7);
    EXPECT_EQ(AEInstallCoercionHandler(DescType("tst1"), typeSInt32, refuse), noErr);
    EXPECT_FALSE(canBe(descriptorOfBytes(DescType("tst1"), "x"), typeSInt32));
    EXPECT_EQ(AEInstallCoercionHandler(DescType("tst1"), typeSInt32, nullptr), paramErr);
}

TEST(DescriptorCoercion, AnswersTheProceduralCallWithAnError) {
    AEDesc result = *stringDescriptor("x").aeDesc();
    EXPECT_EQ(AECoerceDesc(stringDescriptor("a").aeDesc(), typeSInt32, &result), errAECoercionFail);
    EXPECT_EQ(result.descriptorType, typeNull);
    EXPECT_EQ(AECoerceDesc(stringDescriptor("1").aeDesc(), typeSInt32, &result), noErr);
    EXPECT_EQ(result.descriptorType, typeSInt32);
    EXPECT_EQ(AECoerceDesc(nullptr, typeSInt32, &result), paramErr);
    EXPECT_EQ(AECoerceDesc(&result, typeSInt32, nullptr), paramErr);
}

} // namespace mac::test
