#include "platform/foundation/text/NSString.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

std::string const noText = "(none)";

std::string textOrNone(NSString const& string) { return string == nil ? noText : string.UTF8String(); }

std::string escaped(NSString const& string, NSStringEncoding encoding = NSUTF8StringEncoding) {
    return textOrNone(string.stringByAddingPercentEscapesUsingEncoding_(encoding));
}

std::string unescaped(NSString const& string, NSStringEncoding encoding = NSUTF8StringEncoding) {
    return textOrNone(string.stringByReplacingPercentEscapesUsingEncoding_(encoding));
}

} // namespace

TEST(NSStringPercentEscapes, AreAddedToWhatNoURLMayHave) {
    EXPECT_EQ(escaped("azAZ09-_.!~*'();/?:@&=+$,"), "azAZ09-_.!~*'();/?:@&=+$,");
    EXPECT_EQ(escaped(" \"#%<>[\\]^`{|}"), "%20%22%23%25%3C%3E%5B%5C%5D%5E%60%7B%7C%7D");
    EXPECT_EQ(escaped("\n\x7F"), "%0A%7F");
    EXPECT_EQ(escaped(NSString::stringWithCodeUnits(std::u16string_view(u"a\0b", 3))), "a%00b");
    EXPECT_EQ(escaped("\u00E9\u20AC\U0001F600"), "%C3%A9%E2%82%AC%F0%9F%98%80");
    EXPECT_EQ(escaped("%20"), "%2520");
    EXPECT_EQ(escaped(""), "");
}

TEST(NSStringPercentEscapes, AreOfTheEncodingsBytes) {
    EXPECT_EQ(escaped("\u00E9 ", NSISOLatin1StringEncoding), "%E9%20");
    EXPECT_EQ(escaped("\u00E9", NSMacOSRomanStringEncoding), "%8E");
    EXPECT_EQ(escaped("\u20AC", NSISOLatin1StringEncoding), noText);
    EXPECT_EQ(escaped("\u00E9", NSASCIIStringEncoding), noText);
    EXPECT_EQ(escaped("a b", NSASCIIStringEncoding), "a%20b");
    EXPECT_EQ(unescaped("%E9%20", NSISOLatin1StringEncoding), "\u00E9 ");
    EXPECT_EQ(unescaped("%8E", NSMacOSRomanStringEncoding), "\u00E9");
    EXPECT_EQ(unescaped("%E9", NSASCIIStringEncoding), noText);
}

TEST(NSStringPercentEscapes, AreReplacedByTheirCharacters) {
    EXPECT_EQ(unescaped("a%20b%2fc%2F"), "a b/c/");
    EXPECT_EQ(unescaped("%C3%A9%E2%82%ac"), "\u00E9\u20AC");
    EXPECT_EQ(unescaped("\u00E9%20\u00E9"), "\u00E9 \u00E9");
    EXPECT_EQ(unescaped("%2520"), "%20");
    EXPECT_EQ(unescaped("plain+text"), "plain+text");
    EXPECT_EQ(unescaped(""), "");
    EXPECT_EQ(NSString("%EF%BB%BFa").stringByReplacingPercentEscapesUsingEncoding_(NSUTF8StringEncoding).codeUnits(),
              u"\uFEFFa");
}

TEST(NSStringPercentEscapes, OfNoTextAreNil) {
    for (std::string_view const bad : {"%", "a%2", "%zz", "%2z", "%C3", "%C3x%A9", "%E4", "%FF%FE"})
        EXPECT_EQ(unescaped(NSString::stringWithUTF8String_(bad)), noText) << bad;
}

TEST(NSStringPercentEscapes, CarryTheBytesOfFileNames) {
    EXPECT_EQ(escaped(NSString::stringWithFileSystemRepresentation_("a\xE4\xFF")), "a%E4%FF");
    EXPECT_EQ(escaped(NSString::stringWithCodeUnits(u"\xD800")), noText);
}

TEST(NSStringPercentEscapes, OfNilAreNil) {
    EXPECT_EQ(escaped(nil), noText);
    EXPECT_EQ(unescaped(nil), noText);
}

} // namespace mac::test
