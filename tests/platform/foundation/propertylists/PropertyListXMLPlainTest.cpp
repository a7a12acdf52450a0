#include "platform/foundation/propertylists/PropertyListXML.h"
#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

constexpr std::u16string_view UsualProlog =
    u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    u"\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n";

std::string plainlyRead(std::u16string_view text) {
    std::optional<id> const list = readPlainPropertyListXML(text, NSPropertyListImmutable);
    return list ? dump(*list) : "not plain";
}

std::string plainValue(std::u16string_view value) {
    return plainlyRead(std::u16string(UsualProlog) + std::u16string(value) + u"\n</plist>\n");
}

TEST(PropertyListXMLPlain, ReadsWhatProgramsWrite) {
    EXPECT_EQ(plainValue(u"<dict>\n\t<key>a</key>\n\t<string>b c</string>\n\t<key>d</key>\n\t<array>\n\t\t<true/>\n"
                         "\t\t<integer>-5</integer>\n\t\t<real>1.5</real>\n\t</array>\n</dict>"),
              "{\"a\":\"b c\",\"d\":[true,i-5,r1.5]}");
    EXPECT_EQ(plainValue(u"<data>\n\tAAH/\n\t</data>"), "<0001ff>");
    EXPECT_EQ(plainValue(u"<date>2001-01-01T00:00:00Z</date>"), "d0");
    EXPECT_EQ(plainValue(u"<dict><key>CF$UID</key><integer>5</integer></dict>"), "u5");
    EXPECT_EQ(plainValue(u"<array><dict/><array/><string/><false></false></array>"), "[{},[],\"\",false]");
    EXPECT_EQ(plainValue(u"<string>&lt;&gt;&amp;&quot;&apos;x &amp;amp;</string>"), "\"<>&\\u0022'x &amp;\"");
    EXPECT_EQ(plainValue(u"<string>\u00e9 ] > ]]</string>"), "\"\\u00e9 ] > ]]\"");
}

TEST(PropertyListXMLPlain, NeedsNoProlog) {
    EXPECT_EQ(plainlyRead(u"<plist><true/></plist>"), "true");
    EXPECT_EQ(plainlyRead(u"\n <plist version=\"1.0\"><true/></plist>"), "true");
}

TEST(PropertyListXMLPlain, LeavesTheRestToTheParser) {
    for (std::u16string_view const value : {u"<!-- c --><true/>",
                                            u"<true /><true/>",
                                            u"<string>&#65;</string>",
                                            u"<string>&unknown;</string>",
                                            u"<string>a&</string>",
                                            u"<string>a\r</string>",
                                            u"<string>]]></string>",
                                            u"<string>&amp;]]></string>",
                                            u"<string><![CDATA[a]]></string>",
                                            u"<string>a\u0001</string>",
                                            u"<string>\uFFFF</string>",
                                            u"<string a=\"b\">c</string>",
                                            u"<string>a</key>",
                                            u"<string>a<b/></string>",
                                            u"<true>x</true>",
                                            u"<unknown/>",
                                            u"<plist/>",
                                            u"text",
                                            u"",
                                            u"<dict><key>a</key></dict>",
                                            u"<dict><true/></dict>",
                                            u"<dict></array>",
                                            u"</dict>",
                                            u"<true/><true/>",
                                            u"<key>a</key>",
                                            u"<integer>x</integer>",
                                            u"<string>a"})
        EXPECT_EQ(plainValue(value), "not plain") << testing::PrintToString(std::u16string(value));
    char16_t const loneSurrogate[] = {u'<', u's', u't', u'r', u'i', u'n', u'g', u'>', 0xDC80, 0};
    EXPECT_EQ(plainValue(std::u16string(loneSurrogate) + u"</string>"), "not plain");
}

TEST(PropertyListXMLPlain, LeavesOtherFramesToTheParser) {
    for (std::u16string_view const text :
         {u"", u"<true/>", u"<plist><true/></plist>x", u"<plist><true/></plist><plist/>", u"<plist><true/>",
          u"<plist a=\"b\"><true/></plist>", u"<?xml version=\"1.1\"?><plist><true/></plist>",
          u"<!DOCTYPE plist><plist><true/></plist>", u"<plist><true/></plist", u"<plist>", u"<", u"<plist><"})
        EXPECT_EQ(plainlyRead(text), "not plain") << testing::PrintToString(std::u16string(text));
}

TEST(PropertyListXMLPlain, KeepsTheBoundOfDepth) {
    std::u16string deep;
    std::u16string ends;
    for (int depth = 0; depth < 512; ++depth) {
        deep += u"<array>";
        ends += u"</array>";
    }
    EXPECT_NE(plainValue(deep + ends), "not plain");
    EXPECT_EQ(plainValue(deep + u"<array>" + ends + u"</array>"), "not plain");
}

} // namespace
} // namespace mac::test
