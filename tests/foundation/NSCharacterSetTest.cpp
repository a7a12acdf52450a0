#include "platform/foundation/NSCharacterSet.h"
#include "platform/foundation/Exceptions.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(NSCharacterSet, HoldsTheCodeUnitsOfAString) {
    NSCharacterSet const set =
        NSCharacterSet::characterSetWithCharactersInString_(NSString::stringWithCodeUnits(u"ab\u20AC\U0001F600"));
    for (char16_t const member : {u'a', u'b', u'\u20AC', static_cast<char16_t>(0xD83D), static_cast<char16_t>(0xDE00)})
        EXPECT_TRUE(set.characterIsMember_(member));
    EXPECT_FALSE(set.characterIsMember_(u'c'));
    EXPECT_FALSE(set.characterIsMember_(u'\0'));
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
