#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/NSString.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

struct Composed {
    std::u16string_view text;
    NSUInteger index;
    NSRange range;
};

} // namespace

TEST(NSStringComposed, KnowsWhatPeopleSeeAsOneCharacter) {
    for (Composed const& row : {
             Composed{u"abc", 1, {1, 1}},
             Composed{u"\r\n", 0, {0, 1}},
             Composed{u"\r\n", 1, {1, 1}},
             Composed{u"ae\u0301b", 1, {1, 2}},
             Composed{u"ae\u0301b", 2, {1, 2}},
             Composed{u"ae\u0301\u0327b", 3, {1, 3}},
             Composed{u"ae\u0301b", 3, {3, 1}},
             Composed{u"\U0001F600x", 0, {0, 2}},
             Composed{u"\U0001F600x", 1, {0, 2}},
             Composed{u"x\U0001F468\u200D\U0001F469", 4, {1, 5}},
             Composed{u"\u1112\u1161\u11AB", 1, {0, 3}},
             Composed{u"\u65E5\u672C", 1, {1, 1}},
             Composed{u"\u0301a", 0, {0, 1}},
             Composed{u"1\uFE0F\u20E3", 2, {0, 3}},
             Composed{u"\u65E5\u672C\u3099\u8A9E", 2, {1, 2}},
             Composed{u"\u65E5\u672C\u3099\u8A9E", 3, {3, 1}},
             Composed{u"\uAC00\uAC00\u11AB\uAC01", 1, {1, 2}},
             Composed{u"\uAC00\uAC00\u11AB\uAC01", 3, {3, 1}},
             Composed{u"\u0600\u65E5\u672C", 1, {0, 2}},
             Composed{u"\u0600\u65E5\u672C", 2, {2, 1}},
             Composed{u"\U0001F600\U0001F601", 3, {2, 2}},
             Composed{u"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", 5, {4, 4}},
             Composed{u"\u0915\u093F\u0916", 1, {0, 2}},
             Composed{u"\u65E5\U0001F468\u200D\U0001F469\u65E5", 2, {1, 5}},
         })
        EXPECT_EQ(units(row.text).rangeOfComposedCharacterSequenceAtIndex_(row.index), row.range) << row.index;
    EXPECT_EQ(units(u"a\xDC80").rangeOfComposedCharacterSequenceAtIndex_(1), (NSRange{1, 1}));
}

// A text without blanks, whose every character would have the whole of it looked at.
TEST(NSStringComposed, ComesToTheEndOfALongTextWithoutBlanks) {
    for (std::u16string_view const character : {u"\u65E5", u"\uAC00", u"\u65E5\u3099", u"\U0001F600", u"\U00020000"}) {
        std::u16string text;
        while (text.size() < 20000)
            text += character;
        NSString const string = units(text);
        auto const length = static_cast<NSUInteger>(character.size());
        NSUInteger place = 0;
        for (; place < string.length(); place += length)
            ASSERT_EQ(string.rangeOfComposedCharacterSequenceAtIndex_(place), (NSRange{place, length}));
        EXPECT_EQ(place, string.length());
    }
}

TEST(NSStringComposed, WidensARangeToWholeCharacters) {
    NSString const text = units(u"ae\u0301b\U0001F600");
    EXPECT_EQ(text.rangeOfComposedCharacterSequencesForRange_({2, 3}), (NSRange{1, 5}));
    EXPECT_EQ(text.rangeOfComposedCharacterSequencesForRange_({2, 0}), (NSRange{1, 2}));
    EXPECT_EQ(text.rangeOfComposedCharacterSequencesForRange_({0, 1}), (NSRange{0, 1}));
    EXPECT_EQ(text.rangeOfComposedCharacterSequencesForRange_({6, 0}), (NSRange{6, 0}));
    EXPECT_THROW(text.rangeOfComposedCharacterSequencesForRange_({6, 1}), NSRangeException);
    EXPECT_THROW(text.rangeOfComposedCharacterSequenceAtIndex_(6), NSRangeException);
    EXPECT_EQ(NSString(nil).rangeOfComposedCharacterSequenceAtIndex_(0), (NSRange{0, 0}));
    EXPECT_EQ(NSString(nil).rangeOfComposedCharacterSequencesForRange_({0, 1}), (NSRange{0, 0}));
}

struct Line {
    std::u16string_view text;
    NSRange range;
    NSUInteger start, end, contentsEnd;
};

TEST(NSStringComposed, FindsTheLinesOfARange) {
    for (Line const& row : {
             Line{u"one\ntwo\nthree", {5, 0}, 4, 8, 7},
             Line{u"one\ntwo\nthree", {3, 1}, 0, 4, 3},
             Line{u"one\ntwo\nthree", {3, 0}, 0, 4, 3},
             Line{u"one\ntwo\nthree", {4, 0}, 4, 8, 7},
             Line{u"one\ntwo\nthree", {2, 4}, 0, 8, 7},
             Line{u"one\ntwo\nthree", {9, 0}, 8, 13, 13},
             Line{u"one\ntwo\nthree", {13, 0}, 8, 13, 13},
             Line{u"one\n", {4, 0}, 4, 4, 4},
             Line{u"a\r\nb", {0, 1}, 0, 3, 1},
             Line{u"a\r\nb", {2, 0}, 0, 3, 1},
             Line{u"a\r\nb", {2, 1}, 0, 3, 1},
             Line{u"a\r\nb", {3, 0}, 3, 4, 4},
             Line{u"a\u2028b\u0085c\u2029d", {2, 0}, 2, 4, 3},
             Line{u"", {0, 0}, 0, 0, 0},
         }) {
        SCOPED_TRACE(row.range.location);
        NSUInteger start = 99;
        NSUInteger end = 99;
        NSUInteger contentsEnd = 99;
        units(row.text).getLineStart_end_contentsEnd_forRange_(&start, &end, &contentsEnd, row.range);
        EXPECT_EQ(start, row.start);
        EXPECT_EQ(end, row.end);
        EXPECT_EQ(contentsEnd, row.contentsEnd);
        EXPECT_EQ(units(row.text).lineRangeForRange_(row.range), (NSRange{row.start, row.end - row.start}));
    }
    EXPECT_THROW(NSString("a").lineRangeForRange_({2, 0}), NSRangeException);
    EXPECT_EQ(NSString(nil).lineRangeForRange_({0, 5}), (NSRange{0, 0}));
    NSString("a").getLineStart_end_contentsEnd_forRange_(nullptr, nullptr, nullptr, {0, 1});
}

TEST(NSStringComposed, HasFourNormalForms) {
    NSString const text = units(u"\u00E9\uFB01e\u0301");
    EXPECT_EQ(text.decomposedStringWithCanonicalMapping().codeUnits(), u"e\u0301\uFB01e\u0301");
    EXPECT_EQ(text.precomposedStringWithCanonicalMapping().codeUnits(), u"\u00E9\uFB01\u00E9");
    EXPECT_EQ(text.decomposedStringWithCompatibilityMapping().codeUnits(), u"e\u0301fie\u0301");
    EXPECT_EQ(text.precomposedStringWithCompatibilityMapping().codeUnits(), u"\u00E9fi\u00E9");
    EXPECT_EQ(NSString("abc").decomposedStringWithCanonicalMapping().UTF8String(), "abc");
    EXPECT_EQ(NSString("").precomposedStringWithCanonicalMapping().UTF8String(), "");
    EXPECT_EQ(units(u"\xDCE4").decomposedStringWithCanonicalMapping().codeUnits(), std::u16string_view(u"\xDCE4"));
    EXPECT_TRUE(NSString(nil).decomposedStringWithCanonicalMapping() == nil);
    EXPECT_TRUE(NSString(nil).precomposedStringWithCanonicalMapping() == nil);
    EXPECT_TRUE(NSString(nil).decomposedStringWithCompatibilityMapping() == nil);
    EXPECT_TRUE(NSString(nil).precomposedStringWithCompatibilityMapping() == nil);
}

} // namespace mac::test
