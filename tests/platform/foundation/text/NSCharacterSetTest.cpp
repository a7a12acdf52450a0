#include "platform/foundation/text/NSCharacterSet.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/objects/Exceptions.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(NSCharacterSet, HoldsTheCharactersOfAString) {
    NSCharacterSet const set =
        NSCharacterSet::characterSetWithCharactersInString_(NSString::stringWithCodeUnits(u"ab\u20AC\U0001F600\xDC80"));
    for (char16_t const member : {u'a', u'b', u'\u20AC', static_cast<char16_t>(0xDC80)})
        EXPECT_TRUE(set.characterIsMember_(member));
    for (char16_t const other : {u'c', u'\0', static_cast<char16_t>(0xD83D), static_cast<char16_t>(0xDE00)})
        EXPECT_FALSE(set.characterIsMember_(other));
    EXPECT_TRUE(set.longCharacterIsMember_(U'\U0001F600'));
    EXPECT_FALSE(set.longCharacterIsMember_(U'\U0001F601'));
    EXPECT_FALSE(set.longCharacterIsMember_(0x110000));
    EXPECT_TRUE(set.hasMemberInPlane_(1));
    EXPECT_FALSE(set.hasMemberInPlane_(2));
    EXPECT_FALSE(set.hasMemberInPlane_(17));
}

TEST(NSCharacterSet, HoldsARange) {
    NSCharacterSet const set = NSCharacterSet::characterSetWithRange_({0xFFFE, 4});
    EXPECT_FALSE(set.longCharacterIsMember_(0xFFFD));
    EXPECT_TRUE(set.longCharacterIsMember_(0xFFFE));
    EXPECT_TRUE(set.longCharacterIsMember_(0x10001));
    EXPECT_FALSE(set.longCharacterIsMember_(0x10002));
    EXPECT_FALSE(NSCharacterSet::characterSetWithRange_({u'a', 0}).characterIsMember_(u'a'));
    EXPECT_TRUE(NSCharacterSet::characterSetWithRange_({0, 0x110000}).longCharacterIsMember_(0x10FFFF));
    EXPECT_THROW(NSCharacterSet::characterSetWithRange_({1, 0x110000}), NSInvalidArgumentException);
}

struct Category {
    NSCharacterSet set;
    std::u32string_view members;
    std::u32string_view others;
};

TEST(NSCharacterSet, KnowsUnicodesCategories) {
    for (Category const& row : {
             Category{NSCharacterSet::alphanumericCharacterSet(), U"aZ5é٣²\u0301\U00010400", U" -_\U0001F600"},
             Category{NSCharacterSet::letterCharacterSet(), U"aZéßあ\u0301ǅ\U00010400", U"5²-"},
             Category{NSCharacterSet::lowercaseLetterCharacterSet(), U"aßé\U00010428", U"Aǅ5"},
             Category{NSCharacterSet::uppercaseLetterCharacterSet(), U"AÉǅ\U00010400", U"aß5"},
             Category{NSCharacterSet::capitalizedLetterCharacterSet(), U"ǅᾈ", U"Aa"},
             Category{NSCharacterSet::decimalDigitCharacterSet(), U"09٣\U0001D7CE", U"²½a"},
             Category{NSCharacterSet::nonBaseCharacterSet(), U"\u0301\u20DD", U"aé"},
             Category{NSCharacterSet::decomposableCharacterSet(), U"éÅ\uAC00\U0001D15E", U"aeß"},
             Category{NSCharacterSet::controlCharacterSet(), U"\n\u007F\u00AD\u200D", U" a"},
             Category{NSCharacterSet::punctuationCharacterSet(), U"!-_«»¿", U"$+<a"},
             Category{NSCharacterSet::symbolCharacterSet(), U"$+<€\U0001F600", U"!-a"},
             Category{NSCharacterSet::illegalCharacterSet(), U"\uFFFE\U0010FFFF\u0378", U"a\uE000"},
             Category{NSCharacterSet::newlineCharacterSet(), U"\n\r\u0085\u2028", U" \t"},
         }) {
        for (char32_t const member : row.members)
            EXPECT_TRUE(row.set.longCharacterIsMember_(member)) << static_cast<unsigned>(member);
        for (char32_t const other : row.others)
            EXPECT_FALSE(row.set.longCharacterIsMember_(other)) << static_cast<unsigned>(other);
    }
}

TEST(NSCharacterSet, IsInvertedOverAllCharacters) {
    NSCharacterSet const set = NSCharacterSet::characterSetWithCharactersInString_("ab").invertedSet();
    EXPECT_FALSE(set.characterIsMember_(u'a'));
    EXPECT_TRUE(set.characterIsMember_(u'c'));
    EXPECT_TRUE(set.longCharacterIsMember_(0x10FFFF));
    EXPECT_TRUE(set.invertedSet().isEqual_(NSCharacterSet::characterSetWithCharactersInString_("ba")));
}

TEST(NSCharacterSet, IsASupersetOfItsParts) {
    NSCharacterSet const letters = NSCharacterSet::letterCharacterSet();
    EXPECT_TRUE(letters.isSupersetOfSet_(NSCharacterSet::lowercaseLetterCharacterSet()));
    EXPECT_TRUE(letters.isSupersetOfSet_(letters));
    EXPECT_FALSE(NSCharacterSet::lowercaseLetterCharacterSet().isSupersetOfSet_(letters));
}

TEST(NSCharacterSet, TravelsAsABitmap) {
    NSCharacterSet const set = NSCharacterSet::characterSetWithCharactersInString_("a\u20AC\U0001F600\U0010FFFF");
    NSData const bitmap = set.bitmapRepresentation();
    ASSERT_EQ(bitmap.length(), 8192U + 2 * 8193U);
    EXPECT_EQ(bitmap.bytes()['a' / 8], std::byte{1 << 'a' % 8});
    EXPECT_EQ(bitmap.bytes()[8192], std::byte{1});
    EXPECT_EQ(bitmap.bytes()[8192 + 8193], std::byte{16});
    EXPECT_TRUE(NSCharacterSet::characterSetWithBitmapRepresentation_(bitmap).isEqual_(set));
    NSCharacterSet const simple = NSCharacterSet::characterSetWithCharactersInString_("a");
    EXPECT_EQ(simple.bitmapRepresentation().length(), 8192U);
}

TEST(NSCharacterSet, TakesAnyBytesForABitmap) {
    EXPECT_TRUE(NSCharacterSet::characterSetWithBitmapRepresentation_(NSData::data())
                    .isEqual_(NSCharacterSet::characterSetWithCharactersInString_("")));
    std::vector<std::byte> bytes(13, std::byte{0});
    bytes[12] = std::byte{2};
    EXPECT_TRUE(NSCharacterSet::characterSetWithBitmapRepresentation_(NSData::dataWithBytes(bytes))
                    .isEqual_(NSCharacterSet::characterSetWithCharactersInString_("a")));
    bytes.resize(8192);
    bytes.push_back(std::byte{200});
    bytes.push_back(std::byte{0xFF});
    EXPECT_TRUE(NSCharacterSet::characterSetWithBitmapRepresentation_(NSData::dataWithBytes(bytes))
                    .isEqual_(NSCharacterSet::characterSetWithCharactersInString_("a")));
    EXPECT_THROW(NSCharacterSet::characterSetWithBitmapRepresentation_(nil), NSInvalidArgumentException);
}

TEST(NSMutableCharacterSet, GainsAndLosesCharacters) {
    NSMutableCharacterSet const set = as<NSMutableCharacterSet>(NSCharacterSet::newlineCharacterSet().mutableCopy());
    set.addCharactersInString_("abc\U0001F600");
    set.addCharactersInRange_({u'x', 2});
    set.removeCharactersInString_("b\n");
    set.removeCharactersInRange_({u'y', 1});
    EXPECT_TRUE(set.characterIsMember_(u'a'));
    EXPECT_TRUE(set.characterIsMember_(u'x'));
    EXPECT_TRUE(set.characterIsMember_(u'\r'));
    EXPECT_TRUE(set.longCharacterIsMember_(U'\U0001F600'));
    EXPECT_FALSE(set.characterIsMember_(u'b'));
    EXPECT_FALSE(set.characterIsMember_(u'y'));
    EXPECT_FALSE(set.characterIsMember_(u'\n'));
    NSCharacterSet const copy = as<NSCharacterSet>(set.copy());
    set.invert();
    EXPECT_FALSE(set.characterIsMember_(u'a'));
    EXPECT_TRUE(copy.characterIsMember_(u'a'));
    EXPECT_FALSE(copy.isKindOfClass_(classOf<NSMutableCharacterSet>()));
}

TEST(NSMutableCharacterSet, UnitesAndIntersects) {
    NSMutableCharacterSet const set = NSMutableCharacterSet::alloc();
    set.formUnionWithCharacterSet_(NSCharacterSet::letterCharacterSet());
    set.formUnionWithCharacterSet_(NSCharacterSet::decimalDigitCharacterSet());
    EXPECT_TRUE(set.characterIsMember_(u'5'));
    set.formIntersectionWithCharacterSet_(NSCharacterSet::characterSetWithCharactersInString_("5-"));
    EXPECT_TRUE(set.isEqual_(NSCharacterSet::characterSetWithCharactersInString_("5")));
    set.formIntersectionWithCharacterSet_(NSCharacterSet::letterCharacterSet());
    EXPECT_TRUE(set.isEqual_(NSCharacterSet::characterSetWithCharactersInString_("")));
    EXPECT_EQ(set.hash(), NSCharacterSet::characterSetWithCharactersInString_("").hash());
}

TEST(NSMutableCharacterSet, RaisesForNilAndRangesOutside) {
    NSMutableCharacterSet const set = NSMutableCharacterSet::alloc();
    EXPECT_THROW(set.addCharactersInString_(nil), NSInvalidArgumentException);
    EXPECT_THROW(set.removeCharactersInString_(nil), NSInvalidArgumentException);
    EXPECT_THROW(set.formUnionWithCharacterSet_(nil), NSInvalidArgumentException);
    EXPECT_THROW(set.formIntersectionWithCharacterSet_(nil), NSInvalidArgumentException);
    EXPECT_THROW(set.addCharactersInRange_({0x110000, 1}), NSInvalidArgumentException);
    EXPECT_THROW(set.removeCharactersInRange_({1, 0xFFFFFFFF}), NSInvalidArgumentException);
}

TEST(NSMutableCharacterSet, DoesNothingWhenNil) {
    NSMutableCharacterSet const none = nil;
    none.addCharactersInRange_({0, 1});
    none.removeCharactersInRange_({0, 1});
    none.addCharactersInString_("a");
    none.removeCharactersInString_("a");
    none.formUnionWithCharacterSet_(NSCharacterSet::letterCharacterSet());
    none.formIntersectionWithCharacterSet_(NSCharacterSet::letterCharacterSet());
    none.invert();
    EXPECT_TRUE(none.invertedSet() == nil);
    EXPECT_TRUE(none.bitmapRepresentation() == nil);
    EXPECT_FALSE(none.hasMemberInPlane_(0));
    EXPECT_FALSE(none.isSupersetOfSet_(nil));
}

TEST(NSCharacterSet, TellsWhitespaceFromNewlines) {
    NSCharacterSet const blanks = NSCharacterSet::whitespaceCharacterSet();
    NSCharacterSet const all = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    for (char16_t const unit : {u' ', u'\t', u'\u00A0', u'\u2003', u'\u200B', u'\u3000'}) {
        EXPECT_TRUE(blanks.characterIsMember_(unit)) << static_cast<unsigned>(unit);
        EXPECT_TRUE(all.characterIsMember_(unit)) << static_cast<unsigned>(unit);
    }
    for (char16_t const unit : {u'\n', u'\v', u'\f', u'\r', u'\u0085', u'\u2028', u'\u2029'}) {
        EXPECT_FALSE(blanks.characterIsMember_(unit)) << static_cast<unsigned>(unit);
        EXPECT_TRUE(all.characterIsMember_(unit)) << static_cast<unsigned>(unit);
    }
    for (char16_t const unit : {u'a', u'\0', u'\u200C', u'\uFEFF'})
        EXPECT_FALSE(all.characterIsMember_(unit)) << static_cast<unsigned>(unit);
}

TEST(NSCharacterSet, IsEqualByMembers) {
    NSCharacterSet const first = NSCharacterSet::characterSetWithCharactersInString_("ab");
    NSCharacterSet const second = NSCharacterSet::characterSetWithCharactersInString_("bab");
    EXPECT_TRUE(first.isEqual_(second));
    EXPECT_EQ(first.hash(), second.hash());
    EXPECT_FALSE(first.isEqual_(NSCharacterSet::characterSetWithCharactersInString_("a")));
    EXPECT_TRUE(isSame(first, first.copy()));
}

TEST(NSCharacterSet, HasNoMembersWhenNilOrEmpty) {
    EXPECT_FALSE(NSCharacterSet(nil).characterIsMember_(u'a'));
    EXPECT_FALSE(NSCharacterSet::characterSetWithCharactersInString_("").characterIsMember_(u'a'));
    EXPECT_THROW(NSCharacterSet::characterSetWithCharactersInString_(nil), NSInvalidArgumentException);
}

} // namespace mac::test
