#include "platform/foundation/text/NSString.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

TEST(NSString, HoldsUTF16CodeUnits) {
    NSString const text = NSString::stringWithUTF8String_("a\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(4U, text.length());
    EXPECT_EQ(u"a\u00E9\U0001F600", text.codeUnits());
    EXPECT_EQ(0xD83D, text.characterAtIndex_(2));
    EXPECT_EQ("a\xC3\xA9\xF0\x9F\x98\x80", text.UTF8String());
}

TEST(NSString, ComesFromALiteral) {
    NSString const text = "text \xC3\xA9";
    id const object = "text \xC3\xA9";
    EXPECT_EQ(u"text \u00E9", text.codeUnits());
    EXPECT_TRUE(text.isEqual_(object));
    EXPECT_EQ(3U, NSString("a\0b").length());
}

TEST(NSString, IsNilForBytesThatAreNoUTF8) {
    for (std::string_view const bytes : {"\x80", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                                         "\xF5\x80\x80\x80", "a\xFFz", "\xF0\x9F\x98", "\xC3(", "\xE2\x82("})
        EXPECT_TRUE(NSString::stringWithUTF8String_(bytes) == nil) << testing::PrintToString(bytes);
}

TEST(NSString, HoldsAnyBytesOfAFileName) {
    for (std::string_view const bytes : {"plain", "\xC3\xA9", "caf\xE9", "\xFF\xFE", "\xED\xA0\x80", "\xF0\x9F\x98",
                                         "\xC3(", "a\x80z\xC3\xA9", "\xF4\x90\x80\x80"}) {
        NSString const text = NSString::stringWithFileSystemRepresentation_(bytes);
        EXPECT_EQ(bytes, text.fileSystemRepresentation().value_or("nothing")) << testing::PrintToString(bytes);
    }
    EXPECT_EQ(u"caf\xDCE9", NSString::stringWithFileSystemRepresentation_("caf\xE9").codeUnits());
}

TEST(NSString, HasNoFileSystemRepresentationWhereNoNameIsMeant) {
    EXPECT_FALSE(NSString(nil).fileSystemRepresentation());
    EXPECT_FALSE(NSString("").fileSystemRepresentation());
    EXPECT_FALSE(NSString("a\0b").fileSystemRepresentation());
    EXPECT_FALSE(units(u"\xD83D").fileSystemRepresentation());
    EXPECT_FALSE(units(u"a\xDC7F").fileSystemRepresentation());
    EXPECT_FALSE(units(u"a\xDD00").fileSystemRepresentation());
}

TEST(NSString, GivesNoTwoStringsTheSameFileSystemRepresentation) {
    EXPECT_EQ("\xC3\xA9", units(u"\u00E9").fileSystemRepresentation());
    EXPECT_FALSE(units(u"\xDCC3\xDCA9").fileSystemRepresentation());
}

TEST(NSString, WritesLoneSurrogatesAsReplacementCharacters) {
    EXPECT_EQ("a\xEF\xBF\xBD", units(u"a\xD800").UTF8String());
    EXPECT_EQ("\xEF\xBF\xBDz", units(u"\xDCFFz").UTF8String());
    EXPECT_EQ("\xEF\xBF\xBD\xEF\xBF\xBD", units(u"\xDC00\xD800").UTF8String());
}

TEST(NSString, IsEqualByCodeUnit) {
    EXPECT_TRUE(NSString("abc").isEqualToString_("abc"));
    EXPECT_TRUE(NSString("abc").isEqual_(id("abc")));
    EXPECT_FALSE(NSString("abc").isEqualToString_("abd"));
    EXPECT_FALSE(units(u"\u00E9").isEqualToString_(units(u"e\u0301")));
    EXPECT_FALSE(NSString("1").isEqual_(NSNumber::numberWithInt_(1)));
    EXPECT_FALSE(NSString("a").isEqualToString_(nil));
    EXPECT_FALSE(NSString(nil).isEqualToString_(nil));
    EXPECT_TRUE(NSString("a").isEqual_(NSMutableString::stringWithString_("a")));
    EXPECT_TRUE(NSMutableString::stringWithString_("a").isEqual_(NSString("a")));
}

TEST(NSString, HashesByContents) {
    EXPECT_EQ(NSString("abc").hash(), NSMutableString::stringWithString_("abc").hash());
    EXPECT_EQ(NSString("").hash(), NSString::string().hash());
    EXPECT_NE(NSString("abc").hash(), NSString("abd").hash());
    EXPECT_NE(NSString("a").hash(), NSString("a\0").hash());
    EXPECT_NE(NSString("abcd-1").hash(), NSString("abcd-2").hash());
}

TEST(NSString, IsItsOwnDescriptionAndCopy) {
    NSString const text = "text";
    EXPECT_TRUE(isSame(text, text.description()));
    EXPECT_TRUE(isSame(text, text.copy()));
}

TEST(NSString, RaisesForIndexesPastTheEnd) {
    NSString const text = "abc";
    EXPECT_THROW(text.characterAtIndex_(3), NSRangeException);
    EXPECT_THROW(text.substringFromIndex_(4), NSRangeException);
    EXPECT_THROW(text.substringToIndex_(4), NSRangeException);
    EXPECT_THROW(text.substringWithRange_({2, 2}), NSRangeException);
    EXPECT_THROW(text.substringWithRange_({1, 0xFFFFFFFF}), NSRangeException);
    EXPECT_THROW(text.substringWithRange_({NSNotFound, 0}), NSRangeException);
    EXPECT_THROW(text.characterAtIndex_(static_cast<NSUInteger>(-1)), NSRangeException);
}

TEST(NSString, CutsText) {
    NSString const text = "abc";
    EXPECT_EQ("bc", text.substringFromIndex_(1).UTF8String());
    EXPECT_EQ("", text.substringFromIndex_(3).UTF8String());
    EXPECT_EQ("ab", text.substringToIndex_(2).UTF8String());
    EXPECT_EQ("b", text.substringWithRange_({1, 1}).UTF8String());
    EXPECT_EQ("", text.substringWithRange_({3, 0}).UTF8String());
    EXPECT_EQ(u"\xD83D", units(u"\U0001F600").substringToIndex_(1).codeUnits());
}

TEST(NSString, AppendsText) {
    EXPECT_EQ("ab", NSString("a").stringByAppendingString_("b").UTF8String());
    EXPECT_THROW(NSString("a").stringByAppendingString_(nil), NSInvalidArgumentException);
}

TEST(NSString, RaisesForACopyOfNil) {
    EXPECT_THROW(NSString::stringWithString_(nil), NSInvalidArgumentException);
    EXPECT_THROW(NSMutableString::stringWithString_(nil), NSInvalidArgumentException);
}

TEST(NSString, AnswersNothingForNil) {
    NSString const none = nil;
    EXPECT_EQ(0U, none.length());
    EXPECT_EQ(0, none.characterAtIndex_(7));
    EXPECT_EQ("", none.UTF8String());
    EXPECT_EQ(0, none.intValue());
    EXPECT_EQ(0.0, none.doubleValue());
    EXPECT_FALSE(none.boolValue());
    EXPECT_TRUE(none.substringFromIndex_(1) == nil);
    EXPECT_TRUE(none.substringToIndex_(1) == nil);
    EXPECT_TRUE(none.substringWithRange_({1, 1}) == nil);
    EXPECT_TRUE(none.stringByAppendingString_("a") == nil);
    EXPECT_TRUE(none.lowercaseString() == nil);
    EXPECT_TRUE(none.uppercaseString() == nil);
    EXPECT_TRUE(none.lastPathComponent() == nil);
    EXPECT_TRUE(none.pathComponents() == nil);
    EXPECT_TRUE(none.componentsSeparatedByString_(",") == nil);
    EXPECT_TRUE(none.stringByStandardizingPath() == nil);
    EXPECT_TRUE(none.stringByResolvingSymlinksInPath() == nil);
    EXPECT_FALSE(none.hasPrefix_("a"));
    EXPECT_EQ(NSOrderedSame, none.compare_("a"));
    EXPECT_TRUE(none.copy() == nil);
}

struct CaseMapping {
    std::u16string_view text;
    std::u16string_view lower;
    std::u16string_view upper;
};

TEST(NSString, ChangesCaseWithoutALocale) {
    for (CaseMapping const& mapping : {
             CaseMapping{u"Title", u"title", u"TITLE"},
             CaseMapping{u"I\u0130i\u0131", u"ii\u0307i\u0131", u"I\u0130II"},
             CaseMapping{u"\u1E9E\u00DF", u"\u00DF\u00DF", u"\u1E9ESS"},
             CaseMapping{u"\u039F\u0394\u039F\u03A3", u"\u03BF\u03B4\u03BF\u03C2", u"\u039F\u0394\u039F\u03A3"},
             CaseMapping{u"\u03A3\u03B1", u"\u03C3\u03B1", u"\u03A3\u0391"},
             CaseMapping{u"\uFB01\u0149", u"\uFB01\u0149", u"FI\u02BCN"},
             CaseMapping{u"\xD800Z", u"\xD800z", u"\xD800Z"},
             CaseMapping{u"", u"", u""},
         }) {
        EXPECT_EQ(mapping.lower, units(mapping.text).lowercaseString().codeUnits());
        EXPECT_EQ(mapping.upper, units(mapping.text).uppercaseString().codeUnits());
    }
}

TEST(NSString, AnswersCommonMessagesBySelector) {
    EXPECT_EQ(12, as<NSNumber>(NSString("12").performSelector_("intValue")).intValue());
    EXPECT_TRUE(as<NSNumber>(NSString("YES").performSelector_("boolValue")).boolValue());
    EXPECT_EQ("b", as<NSString>(NSString("a/b").performSelector_("lastPathComponent")).UTF8String());
    EXPECT_EQ(-1, as<NSNumber>(NSString("a").performSelector_withObject_("compare:", "b")).intValue());
    EXPECT_TRUE(
        as<NSNumber>(NSMutableString::string().performSelector_withObject_("isEqualToString:", "")).boolValue());
}

TEST(NSString, ReadsCharactersWhereTheyLie) {
    std::u16string characters = u"name";
    NSString const string = NSString::stringWithCharactersNoCopy_length_(characters.data(), 4);
    id const copy = string.copy();
    EXPECT_EQ(string.hash(), copy.hash());
    characters[0] = u'g';
    EXPECT_TRUE(string.isEqualToString_("game"));
    EXPECT_TRUE(string.isEqual_("game"));
    EXPECT_TRUE(id("game").isEqual_(string));
    EXPECT_EQ(string.hash(), NSString("game").hash());
    EXPECT_TRUE(string.mutableCopy().isEqual_("game"));
    EXPECT_TRUE(string.description().isEqualToString_("game"));
    EXPECT_TRUE(copy.isEqual_("name"));
    EXPECT_EQ(NSString::stringWithCharactersNoCopy_length_(nullptr, 0).length(), 0U);
    EXPECT_THROW(NSString::stringWithCharactersNoCopy_length_(nullptr, 1), NSInvalidArgumentException);
}

} // namespace

} // namespace mac::test
