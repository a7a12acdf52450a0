#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/NSString.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

TEST(NSMutableString, ChangesInPlace) {
    NSMutableString const text = NSMutableString::stringWithString_("ac");
    NSMutableString const same = text;
    text.insertString_atIndex_("b", 1);
    text.appendString_("d");
    text.appendFormat_("%d", 5);
    EXPECT_EQ("abcd5", same.UTF8String());
    text.deleteCharactersInRange_({0, 2});
    text.replaceCharactersInRange_withString_({0, 1}, "xyz");
    EXPECT_EQ("xyzd5", same.UTF8String());
    text.setString_("new");
    EXPECT_EQ("new", same.UTF8String());
}

TEST(NSMutableString, AppendsItself) {
    NSMutableString const text = NSMutableString::stringWithString_("a long enough text ");
    text.appendString_(text);
    text.insertString_atIndex_(text, 1);
    EXPECT_EQ(76U, text.length());
}

TEST(NSMutableString, CopiesAsAnImmutableString) {
    NSMutableString const text = NSMutableString::stringWithString_("a");
    id const copy = text.copy();
    EXPECT_FALSE(isSame(text, copy));
    EXPECT_TRUE(as<NSMutableString>(copy) == nil);
    text.appendString_("b");
    EXPECT_EQ("a", as<NSString>(copy).UTF8String());
    EXPECT_TRUE(as<NSMutableString>(copy.mutableCopy()) != nil);
}

TEST(NSMutableString, ChangesItsHashWithItsContents) {
    NSMutableString const text = NSMutableString::stringWithString_("a");
    EXPECT_EQ(NSString("a").hash(), text.hash());
    text.appendString_("b");
    EXPECT_EQ(NSString("ab").hash(), text.hash());
}

TEST(NSMutableString, RaisesForRangesPastTheEndAndStaysAsItIs) {
    NSMutableString const text = NSMutableString::stringWithString_("abc");
    EXPECT_THROW(text.insertString_atIndex_("x", 4), NSRangeException);
    EXPECT_THROW(text.deleteCharactersInRange_({3, 1}), NSRangeException);
    EXPECT_THROW(text.replaceCharactersInRange_withString_({4, 0}, "x"), NSRangeException);
    EXPECT_THROW(text.deleteCharactersInRange_({1, 0xFFFFFFFF}), NSRangeException);
    EXPECT_EQ("abc", text.UTF8String());
}

TEST(NSMutableString, RaisesForNil) {
    NSMutableString const text = NSMutableString::string();
    EXPECT_THROW(text.appendString_(nil), NSInvalidArgumentException);
    EXPECT_THROW(text.setString_(nil), NSInvalidArgumentException);
    EXPECT_THROW(text.insertString_atIndex_(nil, 0), NSInvalidArgumentException);
    EXPECT_THROW(text.replaceCharactersInRange_withString_({}, nil), NSInvalidArgumentException);
}

TEST(NSMutableString, IgnoresMessagesToNil) {
    NSMutableString const none = nil;
    none.appendString_("a");
    none.deleteCharactersInRange_({5, 5});
    none.setString_(nil);
    EXPECT_EQ(0U, none.length());
}

TEST(NSMutableString, StartsEmptyByAlloc) {
    NSMutableString const text = NSMutableString::alloc();
    text.appendString_("a");
    EXPECT_EQ("a", text.UTF8String());
}

} // namespace

} // namespace mac::test
