#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/propertylists/CFKeyedArchiverUID.h"
#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include "tests/support/Texts.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace mac::test {
namespace {

constexpr NSPropertyListFormat kFormats[]{NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0};

NSDictionary everyKind() {
    return NSDictionary::dictionaryWithObjectsAndKeys_(
        {NSArray::arrayWithObjects_({NSNumber::numberWithInt_(-1), NSNumber::numberWithDouble_(0.5), NSArray::array()}),
         "list", NSNumber::numberWithBool_(YES), "Yes", NSNumber::numberWithBool_(NO), "no",
         NSNumber::numberWithUnsignedLongLong_(18446744073709551615U), "large",
         NSDate::dateWithTimeIntervalSinceReferenceDate_(60), "date", bytes("0123456789"), "data", "a < b & c > d \"\"",
         "<&>", NSDictionary::dictionary(), "none", nil});
}

TEST(PropertyListWriting, WritesXMLInTheUsualLayout) {
    EXPECT_EQ(writeList(everyKind(), NSPropertyListXMLFormat_v1_0).bytes,
              R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>&lt;&amp;&gt;</key>
	<string>a &lt; b &amp; c &gt; d ""</string>
	<key>Yes</key>
	<true/>
	<key>data</key>
	<data>
	MDEyMzQ1Njc4OQ==
	</data>
	<key>date</key>
	<date>2001-01-01T00:01:00Z</date>
	<key>large</key>
	<integer>18446744073709551615</integer>
	<key>list</key>
	<array>
		<integer>-1</integer>
		<real>0.5</real>
		<array/>
	</array>
	<key>no</key>
	<false/>
	<key>none</key>
	<dict/>
</dict>
</plist>
)");
}

TEST(PropertyListWriting, BreaksDataAtColumn76) {
    std::string const text = writeList(bytes(std::string(60, '\0')), NSPropertyListXMLFormat_v1_0).bytes;
    EXPECT_NE(text.find("<data>\n" + std::string(76, 'A') + "\nAAAA\n</data>\n"), std::string::npos);
}

TEST(PropertyListWriting, EveryKindSurvives) {
    for (auto const format : kFormats) {
        Reading const reading = readList(writeList(everyKind(), format).bytes);
        EXPECT_EQ(dump(reading.list), dump(everyKind()));
        EXPECT_EQ(reading.format, format);
        EXPECT_TRUE(reading.list.isEqual_(everyKind()));
    }
}

TEST(PropertyListWriting, EqualListsBecomeEqualBytes) {
    auto const one = NSDictionary::dictionaryWithObjectsAndKeys_({"1", "a", "2", "b", nil});
    auto const other = NSDictionary::dictionaryWithObjectsAndKeys_({"2", "b", "1", "a", nil});
    for (auto const format : kFormats)
        EXPECT_EQ(writeList(one, format).bytes, writeList(other, format).bytes);
}

TEST(PropertyListWriting, WritesEqualLeavesOnceInBinary) {
    std::string const word(1000, 'x');
    NSString const string = NSString::stringWithUTF8String_(word);
    NSString const equal = NSString::stringWithUTF8String_(word);
    EXPECT_LT(
        writeList(NSArray::arrayWithObjects_({string, equal, string}), NSPropertyListBinaryFormat_v1_0).bytes.size(),
        1100U);
}

TEST(PropertyListWriting, KeepsOneAndTrueApartInBinary) {
    auto const list = NSArray::arrayWithObjects_({NSNumber::numberWithInt_(1), NSNumber::numberWithBool_(YES),
                                                  NSNumber::numberWithDouble_(1), NSNumber::numberWithInt_(1)});
    EXPECT_EQ(dump(readList(writeList(list, NSPropertyListBinaryFormat_v1_0).bytes).list), "[i1,true,r1,i1]");
}

TEST(PropertyListWriting, NumbersAtTheEndsOfTheirRangesSurvive) {
    std::vector<id> numbers;
    for (long long const value : {0LL, 255LL, 256LL, 65535LL, 65536LL, 4294967295LL, 4294967296LL, -1LL, -128LL,
                                  std::numeric_limits<long long>::max(), std::numeric_limits<long long>::min()})
        numbers.push_back(NSNumber::numberWithLongLong_(value));
    numbers.push_back(NSNumber::numberWithUnsignedLongLong_(9223372036854775808U));
    for (double const value : {0.1, -0.0, 5e-324, 1.7976931348623157e308, 1e21, 123456789012345680.0,
                               std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN()})
        numbers.push_back(NSNumber::numberWithDouble_(value));
    NSArray const list = NSArray::arrayWithVector(numbers);
    for (auto const format : kFormats)
        EXPECT_EQ(dump(readList(writeList(list, format).bytes).list), dump(list));
}

TEST(PropertyListWriting, XMLHasRealsAsTheMacWritesThem) {
    struct Row {
        double value;
        std::string_view text;
    };
    for (Row const& row :
         {Row{0, "<real>0.0</real>"}, Row{1, "<real>1</real>"}, Row{0.1, "<real>0.10000000000000001</real>"},
          Row{-2.5, "<real>-2.5</real>"}, Row{1e21, "<real>1e+21</real>"},
          Row{std::numeric_limits<double>::infinity(), "<real>+infinity</real>"}}) {
        Writing const writing = writeList(NSNumber::numberWithDouble_(row.value), NSPropertyListXMLFormat_v1_0);
        EXPECT_NE(std::string::npos, writing.bytes.find(row.text)) << writing.bytes;
    }
}

TEST(PropertyListWriting, IdentifiersOfKeyedArchivesSurvive) {
    std::vector<id> identifiers;
    for (std::uint32_t const value : {0U, 1U, 255U, 256U, 65535U, 65536U, 4294967295U})
        identifiers.push_back(CFKeyedArchiverUIDCreate(kCFAllocatorDefault, value));
    NSDictionary const list = NSDictionary::dictionaryWithObjectsAndKeys_(
        {NSArray::arrayWithVector(identifiers), "$objects", CFKeyedArchiverUIDCreate(kCFAllocatorDefault, 1), "$top",
         NSNumber::numberWithInt_(1), "number", nil});
    EXPECT_EQ(dump(list), "{\"$objects\":[u0,u1,u255,u256,u65535,u65536,u4294967295],\"$top\":u1,\"number\":i1}");
    for (auto const format : kFormats) {
        id const read = readList(writeList(list, format).bytes).list;
        EXPECT_EQ(dump(read), dump(list));
        EXPECT_TRUE(read.isEqual_(list));
    }
    EXPECT_NE(writeList(identifiers.front(), NSPropertyListXMLFormat_v1_0)
                  .bytes.find("<dict>\n\t<key>CF$UID</key>\n\t<integer>0</integer>\n</dict>\n"),
              std::string::npos);
    EXPECT_FALSE(NSPropertyListSerialization::propertyList_isValidForFormat_(list, NSPropertyListOpenStepFormat));
}

TEST(PropertyListWriting, AnIdentifierIsItsValueAndNoNumber) {
    CFKeyedArchiverUIDRef const seven = CFKeyedArchiverUIDCreate(kCFAllocatorDefault, 7);
    EXPECT_TRUE(seven.isEqual_(CFKeyedArchiverUIDCreate(kCFAllocatorDefault, 7)));
    EXPECT_EQ(seven.hash(), CFKeyedArchiverUIDCreate(kCFAllocatorDefault, 7).hash());
    EXPECT_FALSE(seven.isEqual_(CFKeyedArchiverUIDCreate(kCFAllocatorDefault, 8)));
    EXPECT_FALSE(seven.isEqual_(NSNumber::numberWithInt_(7)));
    EXPECT_FALSE(NSNumber::numberWithInt_(7).isEqual_(seven));
    EXPECT_EQ(CFKeyedArchiverUIDGetValue(nil), 0U);
}

TEST(PropertyListWriting, EveryCarriageReturnSurvives) {
    NSString const string = "a\r\nb\rc\n\td ";
    for (auto const format : kFormats)
        EXPECT_EQ(dump(readList(writeList(string, format).bytes).list), dump(string));
}

TEST(PropertyListWriting, BinaryCarriesEveryCodeUnit) {
    std::u16string units;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit)
        units += static_cast<char16_t>(unit);
    NSString const string = NSString::stringWithCodeUnits(units);
    Writing const writing = writeList(string, NSPropertyListBinaryFormat_v1_0);
    EXPECT_TRUE(string.isEqual_(readList(writing.bytes).list));
}

TEST(PropertyListWriting, XMLRefusesWhatItCannotCarry) {
    std::u16string const texts[]{u"\x01",
                                 std::u16string(1, u'\0'),
                                 u"\x1F",
                                 std::u16string(1, u'\xFFFE'),
                                 std::u16string(1, u'\xFFFF'),
                                 std::u16string(1, u'\xD800'),
                                 std::u16string(1, u'\xDC80'),
                                 std::u16string({u'\xD800', u'a'})};
    for (std::u16string const& text : texts) {
        NSString const string = NSString::stringWithCodeUnits(text);
        NSDictionary const keyed = NSDictionary::dictionaryWithObject_forKey_("value", string);
        for (id const& list : {id(string), id(keyed)}) {
            Writing const writing = writeList(list, NSPropertyListXMLFormat_v1_0);
            EXPECT_EQ(writing.bytes, "");
            EXPECT_EQ(writing.error, "A string holds characters that XML does not have");
            EXPECT_FALSE(
                NSPropertyListSerialization::propertyList_isValidForFormat_(list, NSPropertyListXMLFormat_v1_0));
            EXPECT_EQ(dump(readList(writeList(list, NSPropertyListBinaryFormat_v1_0).bytes).list), dump(list));
        }
    }
}

TEST(PropertyListWriting, XMLHasTheDatesOfTheYearsMinus9999To9999) {
    struct {
        double seconds;
        char const* expected;
    } const rows[]{{-63145526400.0, "0000-01-01T00:00:00Z"},
                   {252423993599.0, "9999-12-31T23:59:59Z"},
                   {-0.5, "2000-12-31T23:59:59Z"},
                   {-1e-144, "2000-12-31T23:59:59Z"},
                   {0.999, "2001-01-01T00:00:00Z"},
                   {-63145526401.0, "-0001-12-31T23:59:59Z"},
                   {-378683424000.0, "-9999-01-01T00:00:00Z"},
                   {-378683424001.0, nullptr},
                   {252423993600.0, nullptr},
                   {1e300, nullptr},
                   {std::numeric_limits<double>::quiet_NaN(), nullptr}};
    for (auto const& row : rows) {
        Writing const writing =
            writeList(NSDate::dateWithTimeIntervalSinceReferenceDate_(row.seconds), NSPropertyListXMLFormat_v1_0);
        if (row.expected) {
            EXPECT_NE(writing.bytes.find(row.expected), std::string::npos) << writing.bytes;
            NSDate const read = as<NSDate>(readList(writing.bytes).list);
            EXPECT_EQ(read.timeIntervalSinceReferenceDate(), std::floor(row.seconds));
        } else
            EXPECT_EQ(writing.error, "A date lies outside the years that XML has");
    }
}

TEST(PropertyListWriting, BinaryRefusesADateThatIsNoNumber) {
    NSDate const date = NSDate::dateWithTimeIntervalSinceReferenceDate_(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(writeList(date, NSPropertyListBinaryFormat_v1_0).error, "A date is no number");
}

TEST(PropertyListWriting, RefusesObjectsThatAreNoPropertyLists) {
    struct {
        id list;
        char const* expected;
    } const rows[]{
        {nil, "There is no object to write"},
        {NSNull::null(), "Property lists do not hold objects of the class NSNull"},
        {NSArray::arrayWithObject_(NSNull::null()), "Property lists do not hold objects of the class NSNull"},
        {NSDictionary::dictionaryWithObject_forKey_("value", NSNumber::numberWithInt_(1)),
         "A dictionary has a key that is no string"},
    };
    for (auto const& row : rows) {
        for (auto const format : kFormats) {
            EXPECT_EQ(writeList(row.list, format).error, row.expected);
            EXPECT_FALSE(NSPropertyListSerialization::propertyList_isValidForFormat_(row.list, format));
        }
    }
}

TEST(PropertyListWriting, SaysWhichListsOldStyleCouldHold) {
    auto const isValid = [](id const& list) {
        return NSPropertyListSerialization::propertyList_isValidForFormat_(list, NSPropertyListOpenStepFormat);
    };
    EXPECT_TRUE(isValid(NSDictionary::dictionaryWithObject_forKey_(NSArray::arrayWithObject_(bytes("x")), "key")));
    EXPECT_FALSE(isValid(NSArray::arrayWithObject_(NSNumber::numberWithInt_(1))));
    EXPECT_FALSE(isValid(NSDate::dateWithTimeIntervalSinceReferenceDate_(0)));
    EXPECT_FALSE(isValid(nil));
}

TEST(PropertyListReading, ComplainsOfNilAndEmptyData) {
    constexpr std::string_view kExpected = "Cannot parse a NULL or zero-length data";
    EXPECT_EQ(readList("").error, kExpected);
    NSString error;
    EXPECT_EQ(NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
                  nil, NSPropertyListImmutable, nullptr, &error) == nil,
              true);
    EXPECT_EQ(error.UTF8String(), kExpected);
}

TEST(PropertyListReading, TakesNullForTheFormatAndTheError) {
    for (std::string_view const text : {"<true/>", "<oops"})
        EXPECT_EQ(NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
                      bytes(text), NSPropertyListImmutable, nullptr, nullptr) == nil,
                  text == "<oops");
    EXPECT_EQ(NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(
                  nil, NSPropertyListXMLFormat_v1_0, nullptr) == nil,
              true);
}

TEST(PropertyListReading, SaysWhatBothParsersOfTextComplainOf) {
    EXPECT_EQ(readList("<plist>\n<dict>\n").error,
              "XML parser error:\n\tPremature end of document at line 3\n"
              "Old-style plist parser error:\n\tTwo hexadecimal digits or \">\" is missing before \"p\" at line 1\n");
}

TEST(PropertyListReading, MakesMutableWhatTheOptionSays) {
    std::string_view const texts[]{"<array><string>a</string><data/><dict/></array>", "(a,<>,{})"};
    for (std::string_view const text : texts) {
        struct {
            NSPropertyListMutabilityOptions option;
            bool hasMutableContainers;
            bool hasMutableLeaves;
        } const rows[]{{NSPropertyListImmutable, false, false},
                       {NSPropertyListMutableContainers, true, false},
                       {NSPropertyListMutableContainersAndLeaves, true, true}};
        for (auto const& row : rows) {
            auto const array = as<NSArray>(readList(text, row.option).list);
            EXPECT_EQ(as<NSMutableArray>(array) != nil, row.hasMutableContainers);
            EXPECT_EQ(as<NSMutableDictionary>(array.objectAtIndex_(2)) != nil, row.hasMutableContainers);
            EXPECT_EQ(as<NSMutableString>(array.objectAtIndex_(0)) != nil, row.hasMutableLeaves);
            EXPECT_EQ(as<NSMutableData>(array.objectAtIndex_(1)) != nil, row.hasMutableLeaves);
        }
    }
}

} // namespace
} // namespace mac::test
