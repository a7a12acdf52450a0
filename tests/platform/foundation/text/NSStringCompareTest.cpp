#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/NSString.h"
#include "tests/support/Texts.h"
#include <algorithm>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

struct Comparison {
    std::u16string_view first;
    std::u16string_view second;
    int order;
};

// Both ways round.
void expectOrder(Comparison const& comparison, NSUInteger options) {
    NSString const first = units(comparison.first);
    NSString const second = units(comparison.second);
    std::string const pair = first.UTF8String() + " : " + second.UTF8String();
    EXPECT_EQ(comparison.order, first.compare_options_(second, options)) << pair;
    EXPECT_EQ(-comparison.order, second.compare_options_(first, options)) << pair;
}

TEST(NSStringCompare, OrdersByCodePoint) {
    for (Comparison const& comparison : {
             Comparison{u"", u"", 0},
             Comparison{u"", u"a", -1},
             Comparison{u"a", u"b", -1},
             Comparison{u"a", u"ab", -1},
             Comparison{u"Z", u"a", -1},
             Comparison{u"z", u"\u00E9", 1},
             Comparison{u"caf\u00E9a", u"caf\u00E9b", -1},
             Comparison{u"\uFF5E", u"\U0001F600", -1},
             Comparison{u"\U0001F600", u"\U0001F601", -1},
             Comparison{u"10", u"9", -1},
         })
        expectOrder(comparison, 0);
}

TEST(NSStringCompare, TreatsCanonicallyEquivalentTextAsEqual) {
    for (Comparison const& comparison : {
             Comparison{u"\u00E9", u"e\u0301", 0},
             Comparison{u"caf\u00E9s", u"cafe\u0301s", 0},
             Comparison{u"\u212B", u"\u00C5", 0},
             Comparison{u"a\u0323\u0302", u"a\u0302\u0323", 0},
             Comparison{u"\uAC00", u"\u1100\u1161", 0},
             Comparison{u"\u2260", u"=\u0338", 0},
             Comparison{u"\u037E", u";", 0},
             Comparison{u"\uFB01", u"fi", 1},
             Comparison{u"e\u0301", u"e", 1},
             Comparison{u"e\u0301", u"f", -1},
             Comparison{u"\u00E9", u"f", -1},
             Comparison{u"\u00E9a", u"e\u0301b", -1},
             Comparison{u"e\u0323", u"e\u0323\u0321", 1},
         })
        expectOrder(comparison, 0);
}

TEST(NSStringCompare, TellsEquivalentTextApartWhenLiteral) {
    for (Comparison const& comparison : {
             Comparison{u"\u00E9", u"e\u0301", 1},
             Comparison{u"abc", u"abc", 0},
             Comparison{u"abc", u"abcd", -1},
             Comparison{u"\uFF5E", u"\U0001F600", 1},
             Comparison{u"a\uE000", u"a\U0010FFFF", 1},
             Comparison{u"\uD7FF", u"\U00010000", -1},
             Comparison{u"\U0001F600", u"\U0001F601", -1},
             Comparison{u"\U0001F600", u"\xD83D", 1},
         })
        expectOrder(comparison, NSLiteralSearch);
}

TEST(NSStringCompare, GoesByCodeUnitWhenLiteralWhateverElseIsAsked) {
    for (NSUInteger const option : {NSCaseInsensitiveSearch, NSNumericSearch}) {
        expectOrder({u"\uFF5E", u"\U0001F600", 1}, NSLiteralSearch | option);
        expectOrder({u"\U0001F600", u"\U0001F601", -1}, NSLiteralSearch | option);
        expectOrder({u"\uFF5E", u"\U0001F600", -1}, option);
    }
}

TEST(NSStringCompare, FoldsCaseFully) {
    for (Comparison const& comparison : {
             Comparison{u"ABC", u"abc", 0},
             Comparison{u"Stra\u00DFe", u"STRASSE", 0},
             Comparison{u"\u1E9E", u"ss", 0},
             Comparison{u"\uFB01", u"FI", 0},
             Comparison{u"\u03C3", u"\u03C2", 0},
             Comparison{u"\u03A3", u"\u03C2", 0},
             Comparison{u"\u017F", u"S", 0},
             Comparison{u"\u212A", u"k", 0},
             Comparison{u"\u00C9", u"e\u0301", 0},
             Comparison{u"\u0130", u"i\u0307", 0},
             Comparison{u"\u0131", u"i", 1},
             Comparison{u"\U00010400", u"\U00010428", 0},
             Comparison{u"\u1F80", u"\u1F00\u03B9", 0},
             Comparison{u"I", u"i", 0},
             Comparison{u"a", u"B", -1},
             Comparison{u"_", u"A", -1},
             Comparison{u"abC", u"ABd", -1},
             Comparison{u"stra\u00DFe", u"strasz", -1},
         })
        expectOrder(comparison, NSCaseInsensitiveSearch);
}

TEST(NSStringCompare, FoldsCaseAlsoWhenLiteral) {
    expectOrder({u"ABC", u"abc", 0}, NSCaseInsensitiveSearch | NSLiteralSearch);
    expectOrder({u"\u00C9", u"\u00E9", 0}, NSCaseInsensitiveSearch | NSLiteralSearch);
    expectOrder({u"\u00C9", u"e\u0301", 1}, NSCaseInsensitiveSearch | NSLiteralSearch);
}

TEST(NSStringCompare, ComparesRunsOfDigitsByValue) {
    for (Comparison const& comparison : {
             Comparison{u"file2", u"file10", -1},
             Comparison{u"file02", u"file2", 0},
             Comparison{u"1.10", u"1.9", 1},
             Comparison{u"a1b2", u"a1b10", -1},
             Comparison{u"99999999999999999999998", u"99999999999999999999999", -1},
             Comparison{u"000", u"0", 0},
             Comparison{u"1", u"a", -1},
             Comparison{u"2", u"10a", -1},
         })
        expectOrder(comparison, NSNumericSearch);
}

TEST(NSStringCompare, IgnoresMarksWhereAsked) {
    expectOrder({u"\u00E9t\u00E9", u"ete", 0}, NSDiacriticInsensitiveSearch);
    expectOrder({u"e\u0301", u"E", 0}, NSDiacriticInsensitiveSearch | NSCaseInsensitiveSearch);
    expectOrder({u"\u00E9a", u"eb", -1}, NSDiacriticInsensitiveSearch);
}

TEST(NSStringCompare, IgnoresWidthWhereAsked) {
    expectOrder({u"\uFF21", u"A", 0}, NSWidthInsensitiveSearch);
    expectOrder({u"\uFF76\uFF9E", u"\u30AC", 0}, NSWidthInsensitiveSearch);
    expectOrder({u"\uFF21", u"A", 1}, 0);
}

TEST(NSStringCompare, ForcesAnOrderOnWhatIsEqualOnlyByOptions) {
    expectOrder({u"a", u"A", 1}, NSCaseInsensitiveSearch | NSForcedOrderingSearch);
    expectOrder({u"a", u"a", 0}, NSCaseInsensitiveSearch | NSForcedOrderingSearch);
    expectOrder({u"01", u"1", -1}, NSNumericSearch | NSForcedOrderingSearch);
}

TEST(NSStringCompare, TakesNilForTheEmptyString) {
    EXPECT_EQ(NSOrderedDescending, NSString("a").compare_(nil));
    EXPECT_EQ(NSOrderedSame, NSString("").compare_(nil));
    EXPECT_EQ(NSOrderedSame, NSString(nil).caseInsensitiveCompare_("a"));
}

TEST(NSStringCompare, TakesARangeOfTheReceiver) {
    EXPECT_EQ(NSString("xabcx").compare_options_range_("abc", 0, {1, 3}), NSOrderedSame);
    EXPECT_EQ(NSString("xabcx").compare_options_range_("ABC", NSCaseInsensitiveSearch, {1, 3}), NSOrderedSame);
    EXPECT_EQ(NSString("xabcx").compare_options_range_("abc", 0, {1, 2}), NSOrderedAscending);
    EXPECT_EQ(NSString("x").compare_options_range_("", 0, {1, 0}), NSOrderedSame);
    EXPECT_THROW(NSString("x").compare_options_range_("x", 0, {1, 1}), NSRangeException);
    EXPECT_EQ(NSString(nil).compare_options_range_("x", 0, {0, 5}), NSOrderedSame);
}

// What every language agrees on: the tests run in several.
TEST(NSStringCompare, FollowsTheUsersLanguageWhereAsked) {
    EXPECT_EQ(NSString("a").localizedCompare_("b"), NSOrderedAscending);
    EXPECT_EQ(NSString("b").localizedCompare_("a"), NSOrderedDescending);
    EXPECT_EQ(NSString("a").localizedCompare_("a"), NSOrderedSame);
    EXPECT_EQ(NSString("e\u0301").localizedCompare_("\u00E9"), NSOrderedSame);
    EXPECT_EQ(NSString("a").localizedCompare_(nil), NSOrderedDescending);
    EXPECT_EQ(NSString("a").localizedCaseInsensitiveCompare_("b"), NSOrderedAscending);
    EXPECT_EQ(NSString("c").localizedCaseInsensitiveCompare_("c"), NSOrderedSame);
    EXPECT_EQ(NSString(nil).localizedCompare_("a"), NSOrderedSame);
    EXPECT_EQ(NSString(nil).localizedCaseInsensitiveCompare_("a"), NSOrderedSame);
}

struct CommonPrefix {
    std::u16string_view first;
    std::u16string_view second;
    NSUInteger options;
    std::u16string_view prefix;
};

TEST(NSStringCompare, KnowsTheCommonPrefix) {
    for (CommonPrefix const& row : {
             CommonPrefix{u"abcd", u"abxd", 0, u"ab"},
             CommonPrefix{u"abc", u"abc", 0, u"abc"},
             CommonPrefix{u"abc", u"", 0, u""},
             CommonPrefix{u"ABc", u"abx", 0, u""},
             CommonPrefix{u"ABc", u"abx", NSCaseInsensitiveSearch, u"AB"},
             CommonPrefix{u"a\u00E9b", u"ae\u0301c", 0, u"a\u00E9"},
             CommonPrefix{u"ae\u0301c", u"a\u00E9b", 0, u"ae\u0301"},
             CommonPrefix{u"a\u00E9b", u"ae\u0301c", NSLiteralSearch, u"a"},
             CommonPrefix{u"ae", u"ae\u0301", 0, u"a"},
             CommonPrefix{u"ae", u"ae\u0301", NSLiteralSearch, u"ae"},
             CommonPrefix{u"stra\u00DFe", u"STRASx", NSCaseInsensitiveSearch, u"stra"},
             CommonPrefix{u"stra\u00DFe", u"STRASSx", NSCaseInsensitiveSearch, u"stra\u00DF"},
             CommonPrefix{u"\U0001F600", u"\U0001F601", NSLiteralSearch, u""},
         })
        EXPECT_EQ(NSString::stringWithCodeUnits(row.first)
                      .commonPrefixWithString_options_(NSString::stringWithCodeUnits(row.second), row.options)
                      .codeUnits(),
                  row.prefix);
    EXPECT_THROW(NSString("a").commonPrefixWithString_options_(nil, 0), NSInvalidArgumentException);
    EXPECT_TRUE(NSString(nil).commonPrefixWithString_options_("a", 0) == nil);
}

TEST(NSStringCompare, HoldsForLoneSurrogates) {
    expectOrder({u"a\xDCFF", u"a\xDCFF", 0}, 0);
    expectOrder({u"a\xDCFE", u"a\xDCFF", -1}, NSCaseInsensitiveSearch);
    for (NSUInteger const options : {0U, 1U, 2U}) {
        expectOrder({u"\xD83D", u"\xD83D\xDE00", -1}, options);
        expectOrder({u"\xD83D"
                     u"A",
                     u"\xD83D\u0130", -1},
                    options);
    }
    expectOrder({u"\xD83D\uFFEE", u"\xD83D\xDE00", -1}, 0);
    expectOrder({u"\xD83D\uFFEE", u"\xD83D\xDE00", -1}, NSCaseInsensitiveSearch);
    expectOrder({u"\xD83D\uFFEE", u"\xD83D\xDE00", 1}, NSLiteralSearch);
}

constexpr std::u16string_view Texts[]{
    u"",
    u"a",
    u"A",
    u"a\u0301",
    u"\u00E1",
    u"b",
    u"ab",
    u"\u00DF",
    u"ss",
    u"s",
    u"st",
    u"\u017Ft",
    u"\uFB06",
    u"\u0301",
    u"e\u0323",
    u"e\u0323\u0321",
    u"e\u0323\u0301z",
    u"\u1EB9\u0301",
    u"\u03B1\u0345\u0301",
    u"\u1FB4",
    u"\u03AC\u03B9",
    u"\xD83D",
    u"\U0001F600",
    u"\uFF5E",
};

int orderOf(std::u16string_view text, std::u16string_view compared, NSUInteger options) {
    return units(text).compare_options_(units(compared), options);
}

// How many texts stand between the two in the wrong order.
std::ptrdiff_t contradictions(std::u16string_view first, std::u16string_view last, NSUInteger options) {
    return std::ranges::count_if(Texts, [&](std::u16string_view middle) {
        return orderOf(first, middle, options) <= 0 && orderOf(middle, last, options) <= 0 &&
               orderOf(first, last, options) > 0;
    });
}

// Whatever shortcut is taken, the order is the one of whole folded texts: so it is transitive.
class NSStringOrder : public testing::TestWithParam<NSUInteger> {};

INSTANTIATE_TEST_SUITE_P(OfOptions, NSStringOrder,
                         testing::Values(0U, NSCaseInsensitiveSearch, NSLiteralSearch, NSNumericSearch));

TEST_P(NSStringOrder, IsTotal) {
    for (std::u16string_view const first : Texts) {
        for (std::u16string_view const other : Texts) {
            EXPECT_EQ(-orderOf(first, other, GetParam()), orderOf(other, first, GetParam()));
            EXPECT_EQ(0, contradictions(first, other, GetParam()));
        }
    }
}

} // namespace

} // namespace mac::test
