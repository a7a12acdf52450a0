#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/NSString.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

struct Replacement {
    std::string_view text;
    std::string_view target;
    std::string_view replacement;
    NSUInteger options;
    std::string_view result;
    NSUInteger count;
};

} // namespace

TEST(NSStringReplacing, ReplacesWhatTheSearchFinds) {
    for (Replacement const& row : {
             Replacement{"a.b.c", ".", "--", 0, "a--b--c", 2},
             Replacement{"aaaaa", "aa", "b", 0, "bba", 2},
             Replacement{"aaaaa", "aa", "b", NSBackwardsSearch, "abb", 2},
             Replacement{"aAbBa", "a", "x", NSCaseInsensitiveSearch, "xxbBx", 3},
             Replacement{"aAbBa", "A", "", 0, "abBa", 1},
             Replacement{"abc", "", "x", 0, "abc", 0},
             Replacement{"", "a", "x", 0, "", 0},
             Replacement{"aaba", "a", "x", NSAnchoredSearch, "xxba", 2},
             Replacement{"abaa", "a", "x", NSAnchoredSearch | NSBackwardsSearch, "abxx", 2},
             Replacement{"\u00E9 e\u0301 e", "e\u0301", "x", 0, "x x e", 2},
             Replacement{"\u00E9 e\u0301 e", "e\u0301", "x", NSLiteralSearch, "\u00E9 x e", 1},
             Replacement{"e\u0301 e", "e", "x", 0, "e\u0301 x", 1},
             Replacement{"e\u0301 e", "e", "x", NSLiteralSearch, "x\u0301 x", 2},
             Replacement{"STRASSE straße", "strasse", "x", NSCaseInsensitiveSearch, "x x", 2},
             Replacement{"\u00E9\u00E9\u00E9", "\u00E9\u00E9", "x", NSBackwardsSearch, "\u00E9x", 1},
         }) {
        SCOPED_TRACE(row.text);
        NSMutableString const text = NSMutableString::stringWithString_(utf8(row.text));
        EXPECT_EQ(text.replaceOccurrencesOfString_withString_options_range_(utf8(row.target), utf8(row.replacement),
                                                                            row.options, {0, text.length()}),
                  row.count);
        EXPECT_EQ(text.UTF8String(), row.result);
        NSString const original = utf8(row.text);
        EXPECT_EQ(original
                      .stringByReplacingOccurrencesOfString_withString_options_range_(
                          utf8(row.target), utf8(row.replacement), row.options, {0, original.length()})
                      .UTF8String(),
                  row.result);
    }
}

TEST(NSStringReplacing, KeepsToTheRange) {
    NSString const text = "a.a.a.a";
    EXPECT_EQ(text.stringByReplacingOccurrencesOfString_withString_options_range_("a", "bb", 0, {1, 5}).UTF8String(),
              "a.bb.bb.a");
    EXPECT_EQ(text.stringByReplacingOccurrencesOfString_withString_(".", "").UTF8String(), "aaaa");
    EXPECT_EQ(text.stringByReplacingCharactersInRange_withString_({1, 5}, "x").UTF8String(), "axa");
    EXPECT_EQ(text.stringByReplacingCharactersInRange_withString_({7, 0}, "!").UTF8String(), "a.a.a.a!");
}

TEST(NSStringReplacing, TakesTheTextItselfForAReplacement) {
    NSMutableString const text = NSMutableString::stringWithString_("ab");
    EXPECT_EQ(text.replaceOccurrencesOfString_withString_options_range_("a", text, 0, {0, 2}), 1U);
    EXPECT_EQ(text.UTF8String(), "abb");
}

TEST(NSStringReplacing, RaisesForNilAndRangesPastTheEnd) {
    NSMutableString const text = NSMutableString::stringWithString_("ab");
    EXPECT_THROW(text.replaceOccurrencesOfString_withString_options_range_(nil, "x", 0, {0, 2}),
                 NSInvalidArgumentException);
    EXPECT_THROW(text.replaceOccurrencesOfString_withString_options_range_("a", nil, 0, {0, 2}),
                 NSInvalidArgumentException);
    EXPECT_THROW(text.replaceOccurrencesOfString_withString_options_range_("a", "x", 0, {1, 2}), NSRangeException);
    EXPECT_THROW(text.stringByReplacingOccurrencesOfString_withString_(nil, "x"), NSInvalidArgumentException);
    EXPECT_THROW(text.stringByReplacingCharactersInRange_withString_({3, 0}, "x"), NSRangeException);
    EXPECT_THROW(text.stringByReplacingCharactersInRange_withString_({0, 0}, nil), NSInvalidArgumentException);
    EXPECT_EQ(text.UTF8String(), "ab");
}

TEST(NSStringReplacing, AnswersNothingForNil) {
    NSMutableString const none = nil;
    EXPECT_EQ(none.replaceOccurrencesOfString_withString_options_range_("a", "b", 0, {0, 0}), 0U);
    EXPECT_TRUE(none.stringByReplacingOccurrencesOfString_withString_("a", "b") == nil);
    EXPECT_TRUE(none.stringByReplacingCharactersInRange_withString_({0, 0}, "b") == nil);
}

TEST(NSStringReplacing, ComesToAnEndBackwardsAndAnchored) {
    constexpr std::size_t length = 40000;
    for (NSUInteger const options :
         {NSUInteger{NSBackwardsSearch}, NSUInteger{NSAnchoredSearch}, NSUInteger{NSAnchoredSearch | NSBackwardsSearch},
          NSUInteger{NSAnchoredSearch | NSCaseInsensitiveSearch}, NSUInteger{NSBackwardsSearch | NSLiteralSearch}}) {
        for (char16_t const letter : {u'a', u'\u00E9', u'\u65E5'}) {
            NSMutableString const text =
                NSMutableString::stringWithString_(NSString::stringWithCodeUnits(std::u16string(length, letter)));
            NSUInteger const count = text.replaceOccurrencesOfString_withString_options_range_(
                NSString::stringWithCodeUnits(std::u16string(2, letter)), "b", options, {0, text.length()});
            EXPECT_EQ(count, length / 2);
            EXPECT_TRUE(text.isEqualToString_(NSString::stringWithCodeUnits(std::u16string(length / 2, u'b'))));
        }
    }
}

TEST(NSStringReplacing, TakesNoLongerForManyPlacesInFoldedText) {
    std::u16string text;
    for (int count = 0; count < 50'000; ++count)
        text += u"\u00E9x";
    NSString const result =
        NSString::stringWithCodeUnits(text).stringByReplacingOccurrencesOfString_withString_("e\u0301", "a");
    EXPECT_EQ(result.length(), 100'000U);
    EXPECT_TRUE(result.hasPrefix_("axax"));
}

} // namespace mac::test
