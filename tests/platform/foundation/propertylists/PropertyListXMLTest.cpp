#include "platform/foundation/collections/NSDictionary.h"
#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

std::string plist(std::string_view value) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n" +
           std::string(value) + "\n</plist>\n";
}

// The XML parser's part of the error.
std::string xmlComplaint(std::string_view text) {
    std::string const error = readList(text).error;
    constexpr std::string_view kHead = "XML parser error:\n\t";
    constexpr std::string_view kNext = "\nOld-style plist parser error:\n\t";
    if (!error.starts_with(kHead) || error.find(kNext) == std::string::npos) return "not both complaints: " + error;
    return error.substr(kHead.size(), error.find(kNext) - kHead.size());
}

struct XMLRow {
    char const* text;
    char const* expected;
};

void PrintTo(XMLRow const& row, std::ostream* out) { *out << row.text; }

class XMLValue : public testing::TestWithParam<XMLRow> {};

TEST_P(XMLValue, IsRead) {
    Reading const reading = readList(plist(GetParam().text));
    EXPECT_EQ(reading.error, "");
    EXPECT_EQ(dump(reading.list), GetParam().expected);
    EXPECT_EQ(reading.format, NSPropertyListXMLFormat_v1_0);
}

// Text that is written in the usual way has a reader of its own; the comment gives it to the parser.
TEST_P(XMLValue, IsReadByTheParserAlike) {
    Reading const reading = readList(plist(GetParam().text) + "<!-- -->");
    EXPECT_EQ(reading.error, "");
    EXPECT_EQ(dump(reading.list), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    PropertyListXML, XMLValue,
    testing::Values(
        XMLRow{"<string>a</string>", "\"a\""}, XMLRow{"<string/>", "\"\""}, XMLRow{"<string>  </string>", "\"  \""},
        XMLRow{"<string>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;</string>", "\"<>&\\u0022'AB\""},
        XMLRow{"<string>a<![CDATA[<b>&amp;]]>c</string>", "\"a<b>&amp;c\""},
        XMLRow{"<string>&#13;</string>", "\"\\u000d\""},
        XMLRow{"<string>\xC3\xA9\xF0\x9F\x98\x80</string>", "\"\\u00e9\\ud83d\\ude00\""},
        XMLRow{"<integer>0</integer>", "i0"}, XMLRow{"<integer>-0</integer>", "i0"},
        XMLRow{"<integer>+7</integer>", "i7"}, XMLRow{"<integer>0x1F</integer>", "i31"},
        XMLRow{"<integer>-0X1f</integer>", "i-31"},
        XMLRow{"<integer>9223372036854775807</integer>", "i9223372036854775807"},
        XMLRow{"<integer>9223372036854775808</integer>", "i9223372036854775808"},
        XMLRow{"<integer>18446744073709551615</integer>", "i18446744073709551615"},
        XMLRow{"<integer>-9223372036854775808</integer>", "i-9223372036854775808"}, XMLRow{"<real>1.5</real>", "r1.5"},
        XMLRow{"<real>1</real>", "r1"}, XMLRow{"<real>-0</real>", "r-0"}, XMLRow{"<real>+1E-3</real>", "r0.001"},
        XMLRow{"<real>nan</real>", "rnan"}, XMLRow{"<real>inf</real>", "rinf"},
        XMLRow{"<real>-Infinity</real>", "r-inf"}, XMLRow{"<real>+infinity</real>", "rinf"}, XMLRow{"<true/>", "true"},
        XMLRow{"<false></false>", "false"}, XMLRow{"<date>2001-01-01T00:00:00Z</date>", "d0"},
        XMLRow{"<date>2000-12-31T23:59:59Z</date>", "d-1"}, XMLRow{"<date>2024-02-29T12:34:56Z</date>", "d730902896"},
        XMLRow{"<date>-0001-01-01T00:00:00Z</date>", "d-63177062400"},
        XMLRow{"<date>2000-13-01T00:00:00Z</date>", "d0"}, XMLRow{"<date>1998-37-01T00:00:00Z</date>", "d0"},
        XMLRow{"<date>-0001-13-01T00:00:00Z</date>", "d-63145526400"},
        XMLRow{"<string>a\x01\x0B\x1F z</string>", "\"a\\u0001\\u000b\\u001f z\""},
        XMLRow{"<string>&#1;&#x1b;&#x00000C;</string>", "\"\\u0001\\u001b\\u000c\""},
        XMLRow{"<string><![CDATA[&#1;\x02]]>&#1;</string>", "\"&#1;\\u0002\\u0001\""},
        XMLRow{"<array><!-- \x01 &#1; --><string>\x01\xEE\x80\x80</string></array>", "[\"\\u0001\\ue000\"]"},
        XMLRow{"<dict><key>\x01</key><true/></dict>", "{\"\\u0001\":true}"},
        XMLRow{"<dict><key>CF$UID</key><integer>5</integer></dict>", "u5"},
        XMLRow{"<dict><key>CF$UID</key><integer>4294967295</integer></dict>", "u4294967295"},
        XMLRow{"<dict><key>CF$UID</key><integer>4294967296</integer></dict>", "{\"CF$UID\":i4294967296}"},
        XMLRow{"<dict><key>CF$UID</key><integer>-1</integer></dict>", "{\"CF$UID\":i-1}"},
        XMLRow{"<dict><key>CF$UID</key><true/></dict>", "{\"CF$UID\":true}"},
        XMLRow{"<dict><key>CF$UID</key><integer>1</integer><key>a</key><true/></dict>", "{\"CF$UID\":i1,\"a\":true}"},
        XMLRow{"<data></data>", "<>"}, XMLRow{"<data>AAH/</data>", "<0001ff>"},
        XMLRow{"<data>\n\tAA\n\tE=\n\t</data>", "<0001>"}, XMLRow{"<data>AA==</data>", "<00>"},
        XMLRow{"<array/>", "[]"}, XMLRow{"<array><!-- c --><true/> <?pi x?><integer>1</integer></array>", "[true,i1]"},
        XMLRow{"<dict/>", "{}"},
        XMLRow{"<dict><key>b</key><true/><key>a</key><array><dict/></array></dict>", "{\"a\":[{}],\"b\":true}"},
        XMLRow{"<dict><key></key><string>empty</string></dict>", "{\"\":\"empty\"}"},
        XMLRow{"<dict><key>a</key><integer>1</integer><key>a</key><integer>2</integer></dict>", "{\"a\":i2}"}));

class XMLMistake : public testing::TestWithParam<XMLRow> {};

TEST_P(XMLMistake, IsRefusedWithItsLine) {
    EXPECT_EQ(readList(GetParam().text).list == nil, true);
    EXPECT_EQ(xmlComplaint(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    PropertyListXML, XMLMistake,
    testing::Values(
        XMLRow{"<plist>\n<integer> 1</integer></plist>", "There is an <integer> that is no 64-bit integer at line 2"},
        XMLRow{"<plist><integer>1 </integer></plist>", "There is an <integer> that is no 64-bit integer at line 1"},
        XMLRow{"<plist><integer>1.5</integer></plist>", "There is an <integer> that is no 64-bit integer at line 1"},
        XMLRow{"<plist><integer></integer></plist>", "There is an <integer> that is no 64-bit integer at line 1"},
        XMLRow{"<plist><integer>-</integer></plist>", "There is an <integer> that is no 64-bit integer at line 1"},
        XMLRow{"<plist><integer>--1</integer></plist>", "There is an <integer> that is no 64-bit integer at line 1"},
        XMLRow{"<plist><integer>0x</integer></plist>", "There is an <integer> that is no 64-bit integer at line 1"},
        XMLRow{"<plist><integer>18446744073709551616</integer></plist>",
               "There is an <integer> that is no 64-bit integer at line 1"},
        XMLRow{"<plist><integer>-9223372036854775809</integer></plist>",
               "There is an <integer> that is no 64-bit integer at line 1"},
        XMLRow{"<plist><integer>\xD9\xA1</integer></plist>",
               "There is an <integer> that is no 64-bit integer at line 1"},
        XMLRow{"<plist><real/></plist>", "There is a <real> that is no number at line 1"},
        XMLRow{"<plist><real>1,5</real></plist>", "There is a <real> that is no number at line 1"},
        XMLRow{"<plist><real>0x1p3</real></plist>", "There is a <real> that is no number at line 1"},
        XMLRow{"<plist><real>+-1</real></plist>", "There is a <real> that is no number at line 1"},
        XMLRow{"<plist><real>1e999</real></plist>", "There is a <real> that is no number at line 1"},
        XMLRow{"<plist><date>2001-01-01</date></plist>", "There is a <date> that is no date at line 1"},
        XMLRow{"<plist><date>2001-02-30T00:00:00Z</date></plist>", "There is a <date> that is no date at line 1"},
        XMLRow{"<plist><date>2001-01-01T24:00:00Z</date></plist>", "There is a <date> that is no date at line 1"},
        XMLRow{"<plist><date>2001-00-01T00:00:00Z</date></plist>", "There is a <date> that is no date at line 1"},
        XMLRow{"<plist><date>9999-13-01T00:00:00Z</date></plist>", "There is a <date> that is no date at line 1"},
        XMLRow{"<plist><date>2001-14-30T00:00:00Z</date></plist>", "There is a <date> that is no date at line 1"},
        XMLRow{"<plist><date>--001-01-01T00:00:00Z</date></plist>", "There is a <date> that is no date at line 1"},
        XMLRow{"<plist>\x01<true/></plist>", "There is text outside of a value at line 1"},
        XMLRow{"<plist>\n<integer>1\x01</integer></plist>",
               "There is an <integer> that is no 64-bit integer at line 2"},
        XMLRow{"\n \n<?xml version=\"1.0\"?>\n<plist>\n<real/></plist>",
               "There is a <real> that is no number at line 5"},
        XMLRow{"<plist><data>A</data></plist>", "There is <data> that is not in base 64 at line 1"},
        XMLRow{"<plist><data>A===</data></plist>", "There is <data> that is not in base 64 at line 1"},
        XMLRow{"<plist><data>AA=A</data></plist>", "There is <data> that is not in base 64 at line 1"},
        XMLRow{"<plist><data>AA*=</data></plist>", "There is <data> that is not in base 64 at line 1"},
        XMLRow{"<plist><true>x</true></plist>", "There is text in a <true> or <false> at line 1"},
        XMLRow{"<plist><string>a<!-- b --></string></plist>",
               "There is something other than text in <string> at line 1"},
        XMLRow{"<plist><string>a<b/></string></plist>", "There is something other than text in <string> at line 1"},
        XMLRow{"<plist>\n<string/>\n<string/></plist>",
               "There is more than one value outside of all containers at line 3"},
        XMLRow{"<plist/>\n", "The list is empty at line 2"},
        XMLRow{"<plist><dict>\n<key>a</key>\n</dict></plist>", "The last key of a dictionary has no value at line 3"},
        XMLRow{"<plist><dict><key>a</key><key>b</key></dict></plist>", "A key in a dictionary has no value at line 1"},
        XMLRow{"<plist><dict>\n\n<true/></dict></plist>", "A value in a dictionary has no key at line 3"},
        XMLRow{"<plist><dict><dict/></dict></plist>", "A value in a dictionary has no key at line 1"},
        XMLRow{"<plist><array><key>a</key></array></plist>", "There is a key outside of a dictionary at line 1"},
        XMLRow{"<plist><array>stray</array></plist>", "There is text outside of a value at line 1"},
        XMLRow{"<plist>stray<true/></plist>", "There is text outside of a value at line 1"},
        XMLRow{"<plist><dict><plist/></dict></plist>", "There is a <plist> within another element at line 1"},
        XMLRow{"<plist><set/></plist>", "There is no element <set> in property lists at line 1"},
        XMLRow{"<plist><p:dict xmlns:p='x'/></plist>", "There is no element <p:dict> in property lists at line 1"},
        XMLRow{"<plist>&file;</plist>", "Entity 'file' not declared at line 1"},
        XMLRow{"<plist><dict>\n<key>a</key>\n", "Premature end of document at line 3"}));

TEST(PropertyListXML, ReadsAListWithoutThePlistElement) {
    EXPECT_EQ(dump(readList("<dict><key>a</key><true/></dict>").list), "{\"a\":true}");
}

TEST(PropertyListXML, ReadsAListBehindBlanks) {
    EXPECT_EQ(dump(readList(" \t\r\n" + plist("<true/>")).list), "true");
    EXPECT_EQ(dump(readList("\n<?xml version='1.0' encoding='ISO-8859-1'?><string>\xE9</string>").list), "\"\\u00e9\"");
    EXPECT_EQ(dump(readList("\xEF\xBB\xBF\n<?xml version='1.0'?><true/>").list), "true");
}

TEST(PropertyListXML, IgnoresTextBehindTheRoot) {
    for (std::string const& text :
         {std::string("stray"), std::string("\n \nstray < & <true/>"), std::string(3, '\0'), std::string("\x01"),
          std::string("&file;"), std::string("]]>"), std::string("<!-- c --> stray"), std::string("<?pi x?>stray"),
          std::string("<!-- c -->")}) {
        EXPECT_EQ(dump(readList(plist("<array><true/></array>") + text).list), "[true]") << text;
        EXPECT_EQ(dump(readList("<string>a</string>" + text).list), "\"a\"") << text;
    }
}

TEST(PropertyListXML, KeepsPrivateCharactersBesideControlCharacters) {
    std::string all;
    for (unsigned unit = 0xE000; unit < 0xF8FF; ++unit) {
        all += static_cast<char>(0xE0 | unit >> 12);
        all += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
        all += static_cast<char>(0x80 | (unit & 0x3F));
    }
    std::string const told = dump(readList(plist("<string>\x01" + all + "A</string>")).list);
    EXPECT_TRUE(told.starts_with("\"\\u0001\\ue000")) << told.substr(0, 20);
    EXPECT_TRUE(told.ends_with("\\uf8feA\""));
    EXPECT_EQ(xmlComplaint("<string>\x01" + all + "\xEF\xA3\xBF</string>").empty(), false);
}

TEST(PropertyListXML, KeepsReferencesToPrivateCharactersBesideControlCharacters) {
    EXPECT_EQ(dump(readList(plist("<string>&#xE000;B&#1;</string>")).list), "\"\\ue000B\\u0001\"");
    EXPECT_EQ(dump(readList(plist("<string>&#57344;\xC4\x82&#x1;</string>")).list), "\"\\ue000\\u0102\\u0001\"");
    EXPECT_EQ(dump(readList(plist("<string>&#x0000000000e000;\xC4\x82\x02</string>")).list),
              "\"\\ue000\\u0102\\u0002\"");
    EXPECT_EQ(dump(readList(plist("<string>&#1;&#xE001;\xC4\x82\xEE\x80\x80\xC4\x82</string>")).list),
              "\"\\u0001\\ue001\\u0102\\ue000\\u0102\"");
}

TEST(PropertyListXML, MakesNoMarkupOfControlCharacters) {
    EXPECT_EQ(dump(readList(plist("<string>a\x1C]&gt;b</string>")).list), "\"a\\u001c]>b\"");
    EXPECT_EQ(dump(readList(plist("<string>a\x1C]>b</string>")).list), "\"a\\u001c]>b\"");
    EXPECT_EQ(dump(readList(plist("<string><![CDATA[a\x1C]><b>]]></string>")).list), "\"a\\u001c]><b>\"");
}

TEST(PropertyListXML, RefusesReferencesOfOtherDigits) {
    EXPECT_FALSE(xmlComplaint(plist("<string>&#\xC4\xB1;</string>")).empty());
    EXPECT_TRUE(readList(plist("<string>&#\xC4\xB1;</string>")).list == nil);
}

TEST(PropertyListXML, RefusesASecondRoot) {
    EXPECT_EQ(xmlComplaint("<plist><true/></plist>\n<plist><true/></plist>"),
              "Extra content at end of document at line 2");
}

TEST(PropertyListXML, RefusesDeclarationsOfEntities) {
    std::string const list = "<!DOCTYPE plist [\n<!ENTITY a \"b\">\n]>\n<plist><string>&a;</string></plist>";
    EXPECT_EQ(xmlComplaint(list), "There are declarations in the document type at line 1");
}

TEST(PropertyListXML, RefusesABillionLaughsAtOnce) {
    std::string list = "<?xml version=\"1.0\"?>\n<!DOCTYPE plist [<!ENTITY a0 \"laugh\">";
    for (int level = 1; level < 30; ++level)
        list += "<!ENTITY a" + std::to_string(level) + " \"&a" + std::to_string(level - 1) + ";&a" +
                std::to_string(level - 1) + ";\">";
    EXPECT_EQ(xmlComplaint(list + "]><plist><string>&a29;</string></plist>"),
              "There are declarations in the document type at line 2");
}

TEST(PropertyListXML, LooksAtNothingOutsideForADocumentType) {
    std::string const list = "<!DOCTYPE plist SYSTEM \"file:///dev/zero\"><plist><string>a</string></plist>";
    EXPECT_EQ(dump(readList(list).list), "\"a\"");
}

TEST(PropertyListXML, RefusesExternalEntities) {
    std::string const list =
        "<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/hostname\">]><plist><string>&a;</string></plist>";
    EXPECT_EQ(xmlComplaint(list), "There are declarations in the document type at line 1");
}

TEST(PropertyListXML, RefusesATagOfAMillionAttributes) {
    std::string list = "<plist";
    for (int index = 0; index < 1000000; ++index)
        list += " a" + std::to_string(index) + "=''";
    EXPECT_EQ(xmlComplaint(list + "><true/></plist>"), "There is a tag that is too long at line 1");
}

TEST(PropertyListXML, TakesLongTextBetweenTagsForNoTag) {
    std::string const text(100000, 'x');
    EXPECT_EQ(dump(readList(plist("<!-- < " + text + " --><string><![CDATA[<" + text + "]]></string>")).list),
              "\"<" + text + "\"");
}

struct EncodingRow {
    char const* name;
    std::string bytes;
    char const* expected;
};

void PrintTo(EncodingRow const& row, std::ostream* out) { *out << row.name; }

std::string wide(std::string_view ascii, bool isBigEndian) {
    std::string bytes;
    for (char const character : ascii)
        bytes += isBigEndian ? std::string{'\0', character} : std::string{character, '\0'};
    return bytes;
}

constexpr std::string_view kDeclared16 = R"(<?xml version="1.0" encoding="UTF-16"?><string>a</string>)";

std::string wide32(std::string_view ascii, bool isBigEndian) {
    std::string bytes;
    for (char const character : ascii)
        bytes += isBigEndian ? std::string{'\0', '\0', '\0', character} : std::string{character, '\0', '\0', '\0'};
    return bytes;
}

constexpr std::string_view kDeclared32 = R"(<?xml version="1.0" encoding="UTF-32"?><string>a</string>)";

class XMLEncoding : public testing::TestWithParam<EncodingRow> {};

TEST_P(XMLEncoding, IsRead) { EXPECT_EQ(dump(readList(GetParam().bytes).list), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    PropertyListXML, XMLEncoding,
    testing::Values(
        EncodingRow{"UTF-8", "<string>\xC3\xA9</string>", "\"\\u00e9\""},
        EncodingRow{"UTF-8 with a mark", "\xEF\xBB\xBF<string>\xC3\xA9</string>", "\"\\u00e9\""},
        EncodingRow{"UTF-16, big, marked", "\xFE\xFF" + wide(kDeclared16, true), "\"a\""},
        EncodingRow{"UTF-16, little, marked", "\xFF\xFE" + wide(kDeclared16, false), "\"a\""},
        EncodingRow{"UTF-16, big, bare", wide(kDeclared16, true), "\"a\""},
        EncodingRow{"UTF-16, little, bare", wide(kDeclared16, false), "\"a\""},
        EncodingRow{"UTF-32, big, marked", std::string("\0\0\xFE\xFF", 4) + wide32(kDeclared32, true), "\"a\""},
        EncodingRow{"UTF-32, little, marked", std::string("\xFF\xFE\0\0", 4) + wide32(kDeclared32, false), "\"a\""},
        EncodingRow{"Latin-1", "<?xml version='1.0' encoding='ISO-8859-1'?><string>\xE9</string>", "\"\\u00e9\""},
        EncodingRow{"Mac OS Roman", "<?xml version='1.0' encoding='macintosh'?><string>\x8E</string>", "\"\\u00e9\""},
        EncodingRow{"a declared UTF-8", "<?xml version='1.0' encoding='utf-8'?><string>\xC3\xA9</string>",
                    "\"\\u00e9\""}));

TEST(PropertyListXML, RefusesBytesThatAreNotUTF8WithTheirLine) {
    EXPECT_EQ(xmlComplaint("<plist>\n<string>\xE9</string></plist>"),
              "The text is not valid in its encoding, UTF-8, at line 2");
}

TEST(PropertyListXML, RefusesUTF16ThatIsCutInAUnit) {
    EXPECT_EQ(xmlComplaint("\xFE\xFF" + wide("<true/>", true) + std::string(1, '\0')),
              "The text is not valid in its encoding, UTF-16BE, at line 1");
}

TEST(PropertyListXML, RefusesUTF32ThatIsCutOrBeyondUnicode) {
    EXPECT_EQ(xmlComplaint(std::string("\0\0\xFE\xFF", 4) + wide32("<true/>", true) + std::string(2, '\0')),
              "The text is not valid in its encoding, UTF-32BE, at line 1");
    EXPECT_EQ(xmlComplaint(std::string("\xFF\xFE\0\0\0\0\x11\0", 8)),
              "The text is not valid in its encoding, UTF-32LE, at line 1");
}

TEST(PropertyListXML, RefusesEncodingsInWhichMarkupIsNotASCII) {
    for (char const* name : {"UTF-7", "ISO-2022-JP", "ebcdic-cp-us", "UTF-16", "no-such-encoding", "SCSU"}) {
        std::string const text = std::string("<?xml version='1.0' encoding='") + name + "'?><true/>";
        EXPECT_EQ(xmlComplaint(text), std::string("The text's encoding \"") + name + "\" is not supported at line 1");
    }
}

} // namespace
} // namespace mac::test
