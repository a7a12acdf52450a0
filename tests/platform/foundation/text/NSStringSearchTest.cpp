#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/NSCharacterSet.h"
#include "platform/foundation/text/NSString.h"
#include "tests/support/SeededRandom.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>

namespace mac {

static void PrintTo(NSRange range, std::ostream* stream) {
    *stream << '{' << range.location << ", " << range.length << '}';
}

} // namespace mac

namespace mac::test {

namespace {

constexpr NSRange None{NSNotFound, 0};

struct Search {
    std::u16string_view text;
    std::u16string_view sought;
    NSUInteger options;
    NSRange range;
};

void expectRange(Search const& search) {
    NSString const text = units(search.text);
    NSString const sought = units(search.sought);
    EXPECT_EQ(search.range, text.rangeOfString_options_(sought, search.options))
        << sought.UTF8String() << " in " << text.UTF8String() << " with " << search.options;
}

TEST(NSStringSearch, FindsText) {
    for (Search const& search : {
             Search{u"abcabc", u"bc", 0, {1, 2}},
             Search{u"abcabc", u"bc", NSBackwardsSearch, {4, 2}},
             Search{u"abcabc", u"bd", 0, None},
             Search{u"abc", u"ab", NSAnchoredSearch, {0, 2}},
             Search{u"abc", u"bc", NSAnchoredSearch, None},
             Search{u"abc", u"bc", NSAnchoredSearch | NSBackwardsSearch, {1, 2}},
             Search{u"abc", u"ab", NSAnchoredSearch | NSBackwardsSearch, None},
             Search{u"ab", u"abc", 0, None},
             Search{u"ab", u"abc", NSAnchoredSearch | NSBackwardsSearch | NSCaseInsensitiveSearch, None},
         })
        expectRange(search);
}

TEST(NSStringSearch, NeverFindsTheEmptyString) {
    for (NSUInteger const options : {0, 1, 2, 4, 8, 12, 128}) {
        expectRange({u"abc", u"", options, None});
        expectRange({u"", u"", options, None});
        expectRange({u"", u"a", options, None});
    }
    EXPECT_FALSE(NSString("abc").hasPrefix_(""));
    EXPECT_FALSE(NSString("abc").hasSuffix_(""));
}

TEST(NSStringSearch, FindsEquivalentTextAndWholeCharacters) {
    for (Search const& search : {
             Search{u"caf\u00E9s", u"e\u0301", 0, {3, 1}},
             Search{u"cafe\u0301s", u"\u00E9", 0, {3, 2}},
             Search{u"cafe\u0301s", u"e", 0, None},
             Search{u"cafe\u0301 e", u"e", 0, {6, 1}},
             Search{u"caf\u00E9s", u"e", 0, None},
             Search{u"a\u0302\u0323b", u"\u1EAD", 0, {0, 3}},
             Search{u"a\u0302\u0323b", u"a\u0323", 0, None},
             Search{u"=\u0338", u"\u2260", 0, {0, 2}},
             Search{u"e\u0301 e\u0301", u"\u00E9", NSBackwardsSearch, {3, 2}},
             Search{u"e\u0301t\u00E9", u"\u00E9", NSAnchoredSearch, {0, 2}},
             Search{u"\u00E9te\u0301", u"\u00E9", NSAnchoredSearch | NSBackwardsSearch, {2, 2}},
             Search{u"e\u0301t", u"e", NSAnchoredSearch, None},
         })
        expectRange(search);
}

TEST(NSStringSearch, FindsCodeUnitsWhenLiteral) {
    for (Search const& search : {
             Search{u"cafe\u0301s", u"e", NSLiteralSearch, {3, 1}},
             Search{u"caf\u00E9s", u"e\u0301", NSLiteralSearch, None},
             Search{u"e\u0301", u"\u0301", NSLiteralSearch, {1, 1}},
             Search{u"caf\u00C9s", u"\u00E9", NSLiteralSearch | NSCaseInsensitiveSearch, {3, 1}},
             Search{u"e\u0301", u"E", NSLiteralSearch | NSCaseInsensitiveSearch, {0, 1}},
         })
        expectRange(search);
}

TEST(NSStringSearch, FoldsCaseWhereAsked) {
    for (Search const& search : {
             Search{u"Mirror Frame", u"FRAME", NSCaseInsensitiveSearch, {7, 5}},
             Search{u"xX", u"x", NSCaseInsensitiveSearch | NSBackwardsSearch, {1, 1}},
             Search{u"Stra\u00DFe", u"SS", NSCaseInsensitiveSearch, {4, 1}},
             Search{u"Stra\u00DFe", u"s", NSCaseInsensitiveSearch | NSBackwardsSearch, {0, 1}},
             Search{u"s\u00DF", u"ss", NSCaseInsensitiveSearch, {1, 1}},
             Search{u"STRASSE", u"\u00DF", NSCaseInsensitiveSearch, {4, 2}},
             Search{u"o\uFB01l", u"FI", NSCaseInsensitiveSearch, {1, 1}},
             Search{u"\u03BF\u03C2", u"\u03A3", NSCaseInsensitiveSearch, {1, 1}},
             Search{u"TITLE", u"\u0131", NSCaseInsensitiveSearch, None},
         })
        expectRange(search);
}

TEST(NSStringSearch, IgnoresMarksWhereAsked) {
    for (Search const& search : {
             Search{u"un \u00E9t\u00E9", u"ete", NSDiacriticInsensitiveSearch, {3, 3}},
             Search{u"e\u0301te\u0301.", u"ete", NSDiacriticInsensitiveSearch, {0, 5}},
             Search{u"\u0301", u"\u0301", NSDiacriticInsensitiveSearch, None},
         })
        expectRange(search);
}

// The first or last part, of whole characters, that is equal to the text sought.
NSRange rangeByEye(NSString const& text, NSString const& sought, NSUInteger options) {
    NSRange found = None;
    std::u16string_view const all = text.codeUnits();
    auto const isMark = [&](std::size_t index) { return index < all.size() && (all[index] & 0xFFC0) == 0x0300; };
    for (NSUInteger start = 0; start < all.size(); ++start) {
        for (NSUInteger end = start + 1; end <= all.size(); ++end) {
            NSRange const range{start, end - start};
            if (isMark(start) || isMark(end)) continue;
            if (text.compare_options_range_(sought, options & ~NSBackwardsSearch, range) != NSOrderedSame) continue;
            if ((options & NSBackwardsSearch) == 0) return range;
            found = range;
        }
    }
    return found;
}

TEST(NSStringSearch, FindsWhatComparingEachPartFinds) {
    std::mt19937 random = seededRandom(11);
    constexpr std::u16string_view letters = u"fsa\u00E9\u00DF\uFB00\u00C5\u6F22";
    constexpr std::u16string_view marks = u"\u0301\u0323\u030A";
    auto const textOf = [&](std::size_t length) {
        std::u16string text;
        while (text.size() < length) {
            bool const isMark = !text.empty() && random() % 3 == 0;
            text.push_back(isMark ? marks[random() % marks.size()] : letters[random() % letters.size()]);
        }
        return units(text);
    };
    for (int round = 0; round < 1500; ++round) {
        NSString const text = textOf(random() % 9);
        NSString const sought = textOf(1 + random() % 3);
        for (NSUInteger const options : {0U, 1U, 4U, 5U})
            EXPECT_EQ(text.rangeOfString_options_(sought, options), rangeByEye(text, sought, options))
                << sought.UTF8String() << " in " << text.UTF8String() << " with " << options;
    }
}

TEST(NSStringSearch, FindsTextFarBehind) {
    for (std::u16string_view const filling : {u"a", u"e\u0301", u"\u6F22", u"f"}) {
        std::u16string far;
        while (far.size() < 9000)
            far += filling;
        for (std::size_t const cut : {63, 64, 65, 66, 67, 68, 70, 255, 263, 280, 1088, 9000}) {
            std::u16string text = far.substr(0, cut);
            if (text.size() % filling.size() != 0) text.pop_back();
            auto const place = static_cast<NSUInteger>(text.size());
            text += u"x\u0323\u0301z";
            NSString const sought = units(u"x\u0301\u0323");
            EXPECT_EQ(units(text).rangeOfString_(sought), (NSRange{place, 3}));
            EXPECT_EQ(units(text).rangeOfString_("x"), None);
            EXPECT_EQ(units(text).rangeOfString_options_("Z", NSCaseInsensitiveSearch), (NSRange{place + 3, 1}));
            EXPECT_FALSE(units(text).hasPrefix_(sought));
            EXPECT_TRUE(units(text).hasSuffix_("z"));
        }
    }
}

// Each place would be a match, were it not for what stands before or behind it: looking at each anew has no end.
TEST(NSStringSearch, ComesToAnEndInTextsOfMarksAndLigatures) {
    auto const many = [](char16_t unit, std::size_t count) { return std::u16string(count, unit); };
    constexpr std::size_t length = 100000;
    NSString const ligatures = units(many(u'\uFB00', length));
    EXPECT_EQ(ligatures.rangeOfString_options_(units(many(u'f', length + 1)), NSCaseInsensitiveSearch), None);
    EXPECT_EQ(ligatures.rangeOfString_options_(units(many(u'f', length)), NSCaseInsensitiveSearch),
              (NSRange{0, length / 2}));
    NSString const marks = units(u"a" + many(u'\u0301', length));
    EXPECT_EQ(marks.rangeOfString_("a"), None);
    EXPECT_EQ(marks.rangeOfString_options_("a", NSDiacriticInsensitiveSearch), (NSRange{0, length + 1}));
    EXPECT_EQ(marks.rangeOfString_(units(u"a" + many(u'\u0301', length / 2))), None);
    NSString const letters = units(many(u'a', length));
    NSString const other = units(many(u'a', length / 2) + u"b");
    for (NSUInteger const options : {0U, 1U, 2U, 4U, 5U, 6U})
        EXPECT_EQ(letters.rangeOfString_options_(other, options), None);
}

TEST(NSStringSearch, SearchesARange) {
    NSString const text = "abcabc";
    EXPECT_EQ((NSRange{4, 2}), text.rangeOfString_options_range_("bc", 0, {2, 4}));
    EXPECT_EQ(None, text.rangeOfString_options_range_("bc", 0, {2, 3}));
    EXPECT_EQ(None, text.rangeOfString_options_range_("a", 0, {6, 0}));
    EXPECT_THROW(text.rangeOfString_options_range_("a", 0, {7, 0}), NSRangeException);
    EXPECT_THROW(text.rangeOfString_options_range_("a", 0, {1, 0xFFFFFFFF}), NSRangeException);
}

TEST(NSStringSearch, RaisesForNilAndIgnoresANilReceiver) {
    EXPECT_THROW(NSString("a").rangeOfString_(nil), NSInvalidArgumentException);
    EXPECT_THROW(NSString("a").hasPrefix_(nil), NSInvalidArgumentException);
    EXPECT_THROW(NSString("a").hasSuffix_(nil), NSInvalidArgumentException);
    EXPECT_EQ(NSRange{}, NSString(nil).rangeOfString_("a"));
}

TEST(NSStringSearch, TellsPrefixesAndSuffixes) {
    EXPECT_TRUE(NSString("abc").hasPrefix_("ab"));
    EXPECT_TRUE(NSString("abc").hasPrefix_("abc"));
    EXPECT_FALSE(NSString("abc").hasPrefix_("abcd"));
    EXPECT_FALSE(NSString("abc").hasPrefix_("b"));
    EXPECT_TRUE(NSString("abc").hasSuffix_("bc"));
    EXPECT_FALSE(NSString("abc").hasSuffix_("ab"));
    EXPECT_TRUE(units(u"e\u0301t").hasPrefix_(units(u"\u00E9")));
    EXPECT_FALSE(units(u"e\u0301t").hasPrefix_("e"));
    EXPECT_TRUE(units(u"te\u0301").hasSuffix_(units(u"\u00E9")));
    EXPECT_TRUE(units(u"\u30C6.app").hasSuffix_(".app"));
    EXPECT_TRUE(units(u"/\u30C6/\u30B9").hasPrefix_(units(u"/\u30C6/")));
}

TEST(NSStringSearch, FindsCharactersOfASet) {
    NSCharacterSet const digits = NSCharacterSet::characterSetWithCharactersInString_("0123456789");
    NSString const text = "ab12c3";
    EXPECT_EQ((NSRange{2, 1}), text.rangeOfCharacterFromSet_(digits));
    EXPECT_EQ((NSRange{5, 1}), text.rangeOfCharacterFromSet_options_range_(digits, NSBackwardsSearch, {0, 6}));
    EXPECT_EQ((NSRange{3, 1}), text.rangeOfCharacterFromSet_options_range_(digits, 0, {3, 2}));
    EXPECT_EQ(None, text.rangeOfCharacterFromSet_options_range_(digits, NSAnchoredSearch, {0, 6}));
    EXPECT_EQ(None, NSString("abc").rangeOfCharacterFromSet_(digits));
    EXPECT_EQ(None, NSString("").rangeOfCharacterFromSet_(digits));
    EXPECT_THROW(text.rangeOfCharacterFromSet_(nil), NSInvalidArgumentException);
    EXPECT_THROW(text.rangeOfCharacterFromSet_options_range_(digits, 0, {6, 1}), NSRangeException);
}

std::string bracketed(NSArray const& components) {
    std::string text;
    for (id const& component : components)
        text += "[" + as<NSString>(component).UTF8String() + "]";
    return text;
}

TEST(NSStringSearch, SplitsText) {
    EXPECT_EQ("[a][b][][c]", bracketed(NSString("a,b,,c").componentsSeparatedByString_(",")));
    EXPECT_EQ("[][]", bracketed(NSString(",").componentsSeparatedByString_(",")));
    EXPECT_EQ("[]", bracketed(NSString("").componentsSeparatedByString_(",")));
    EXPECT_EQ("[abc]", bracketed(NSString("abc").componentsSeparatedByString_("")));
    EXPECT_EQ("[][a]", bracketed(NSString("aaa").componentsSeparatedByString_("aa")));
    EXPECT_EQ("[x][\xCC\x81y]", bracketed(units(u"xe\u0301y").componentsSeparatedByString_("e")));
    EXPECT_THROW(NSString("a").componentsSeparatedByString_(nil), NSInvalidArgumentException);
}

TEST(NSStringSearch, TrimsCharactersOfASet) {
    NSCharacterSet const blanks = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    EXPECT_EQ("a b", units(u" \t\u00A0a b\u2028\n").stringByTrimmingCharactersInSet_(blanks).UTF8String());
    EXPECT_EQ("", NSString("  ").stringByTrimmingCharactersInSet_(blanks).UTF8String());
    EXPECT_EQ("", NSString("").stringByTrimmingCharactersInSet_(blanks).UTF8String());
    EXPECT_EQ(
        "\na",
        NSString(" \na ").stringByTrimmingCharactersInSet_(NSCharacterSet::whitespaceCharacterSet()).UTF8String());
}

} // namespace

} // namespace mac::test
