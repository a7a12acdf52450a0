#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/NSCharacterSet.h"
#include "tests/support/ObjectTexts.h"
#include <array>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

NSCharacterSet set(NSString const& characters) {
    return NSCharacterSet::characterSetWithCharactersInString_(characters);
}

} // namespace

TEST(NSStringCharacters, FindsWholeCharactersOfASet) {
    NSString const text = "a\U0001F600b\U0001F600";
    EXPECT_EQ(text.rangeOfCharacterFromSet_(set("\U0001F600")), (NSRange{1, 2}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_(set("\U0001F600"), NSBackwardsSearch), (NSRange{4, 2}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_(set("\U0001F600"), NSAnchoredSearch), (NSRange{NSNotFound, 0}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_(set("\U0001F600"), NSAnchoredSearch | NSBackwardsSearch),
              (NSRange{4, 2}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_(set("b"), NSBackwardsSearch), (NSRange{3, 1}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_(set("a"), NSAnchoredSearch), (NSRange{0, 1}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_(set("\U0001F601")), (NSRange{NSNotFound, 0}));
    EXPECT_EQ(NSString("").rangeOfCharacterFromSet_(set("a")), (NSRange{NSNotFound, 0}));
    EXPECT_THROW(text.rangeOfCharacterFromSet_options_(nil, 0), NSInvalidArgumentException);
    EXPECT_EQ(NSString(nil).rangeOfCharacterFromSet_options_(set("a"), 0), (NSRange{0, 0}));
}

TEST(NSStringCharacters, SplitsAtEachCharacterOfASet) {
    EXPECT_EQ(joined(NSString("a,b;c").componentsSeparatedByCharactersInSet_(set(",;")), "|"), "a|b|c");
    EXPECT_EQ(joined(NSString(",a,;").componentsSeparatedByCharactersInSet_(set(",;")), "|"), "|a||");
    EXPECT_EQ(joined(NSString("a\U0001F600b").componentsSeparatedByCharactersInSet_(set("\U0001F600")), "|"), "a|b");
    EXPECT_EQ(joined(NSString("abc").componentsSeparatedByCharactersInSet_(set("x")), "|"), "abc");
    EXPECT_EQ(NSString("").componentsSeparatedByCharactersInSet_(set("x")).count(), 1U);
    EXPECT_THROW(NSString("a").componentsSeparatedByCharactersInSet_(nil), NSInvalidArgumentException);
    EXPECT_TRUE(NSString(nil).componentsSeparatedByCharactersInSet_(set("x")) == nil);
}

TEST(NSStringCharacters, TrimsWholeCharacters) {
    NSString const text = "\U0001F600a\U0001F600";
    EXPECT_EQ(text.stringByTrimmingCharactersInSet_(set("\U0001F600")).UTF8String(), "a");
    EXPECT_EQ(text.stringByTrimmingCharactersInSet_(set("\U0001F601")).UTF8String(), text.UTF8String());
}

TEST(NSStringCharacters, ComeFromABufferAndGoToOne) {
    std::array<unichar, 4> buffer{u'a', u'\u20AC', u'b', u'x'};
    NSString const text = NSString::stringWithCharacters_length_(buffer.data(), 3);
    EXPECT_EQ(text.codeUnits(), u"a\u20ACb");
    buffer.fill(0);
    text.getCharacters_(buffer.data());
    EXPECT_EQ(std::u16string_view(buffer.data()), u"a\u20ACb");
    text.getCharacters_range_(buffer.data(), {1, 2});
    EXPECT_EQ(std::u16string_view(buffer.data()), u"\u20ACbb");
    EXPECT_THROW(text.getCharacters_range_(buffer.data(), {2, 2}), NSRangeException);
    EXPECT_EQ(NSString::stringWithCharacters_length_(nullptr, 0).length(), 0U);
    EXPECT_THROW(NSString::stringWithCharacters_length_(nullptr, 1), NSInvalidArgumentException);
    NSString(nil).getCharacters_(nullptr);
}

TEST(NSStringCharacters, ArePaddedToALength) {
    NSString const text = "abc";
    EXPECT_EQ(text.stringByPaddingToLength_withString_startingAtIndex_(9, ".", 0).UTF8String(), "abc......");
    EXPECT_EQ(text.stringByPaddingToLength_withString_startingAtIndex_(2, ".", 0).UTF8String(), "ab");
    EXPECT_EQ(text.stringByPaddingToLength_withString_startingAtIndex_(9, ". ", 1).UTF8String(), "abc . . .");
    EXPECT_EQ(text.stringByPaddingToLength_withString_startingAtIndex_(3, nil, 9).UTF8String(), "abc");
    EXPECT_THROW(text.stringByPaddingToLength_withString_startingAtIndex_(4, nil, 0), NSInvalidArgumentException);
    EXPECT_THROW(text.stringByPaddingToLength_withString_startingAtIndex_(4, "", 0), NSInvalidArgumentException);
    EXPECT_THROW(text.stringByPaddingToLength_withString_startingAtIndex_(4, "x", 1), NSRangeException);
    EXPECT_TRUE(NSString(nil).stringByPaddingToLength_withString_startingAtIndex_(4, "x", 0) == nil);
}

TEST(NSStringCharacters, BecomeCapitalsAtTheStartOfWords) {
    struct Row {
        char const* text;
        char const* capitalized;
    };
    for (Row const& row : {
             Row{"the QUICK brown", "The Quick Brown"},
             Row{"don't o'neil", "Don't O'neil"},
             Row{"jean-luc/a.b", "Jean-Luc/A.B"},
             Row{"\u00E9t\u00C9 \u00DFa", "\u00C9t\u00E9 Ssa"},
             Row{"\u01C6x \uFB01x", "\u01C5x Fix"},
             Row{"\u0149x \u0149X", "\u02BCNx \u02BCNx"},
             Row{"\u1F80x \u1FB3 \u1FB7", "\u1F88x \u1FBC \u0391\u0342\u0345"},
             Row{"\u01C4x \u01F3 \uFB03x", "\u01C5x \u01F2 Ffix"},
             Row{"istanbul \u0131I \u0130I ijssel", "Istanbul Ii \u0130i Ijssel"},
             Row{"\u03A3\u0391\u03A3", "\u03A3\u03B1\u03C2"},
             Row{"e\u0301A", "E\u0301a"},
             Row{"\U00010428\U00010400", "\U00010400\U00010428"},
             Row{"", ""},
             Row{"\t a", "\t A"},
         })
        EXPECT_EQ(NSString::stringWithUTF8String_(row.text).capitalizedString().UTF8String(), row.capitalized);
    EXPECT_TRUE(NSString(nil).capitalizedString() == nil);
}

TEST(NSStringCharacters, TakeAFormatAtTheirEnd) {
    EXPECT_EQ(NSString("a").stringByAppendingFormat_("%d%@", 1, NSString("b")).UTF8String(), "a1b");
    EXPECT_TRUE(NSString(nil).stringByAppendingFormat_("%d", 1) == nil);
}

} // namespace mac::test
