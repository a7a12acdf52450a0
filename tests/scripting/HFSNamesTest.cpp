#include "scripting/FileReferences.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

HFSUniStr255 filledName() {
    HFSUniStr255 name{};
    name.length = 77;
    name.unicode.fill(u'?');
    return name;
}

NSString repeated(char16_t unit, std::size_t count) {
    return NSString::stringWithCodeUnits(std::u16string(count, unit));
}

TEST(KRCStringBySwappingColonsAndSlashes, ExchangesThem) {
    EXPECT_EQ(fileSystemBytes(KRCStringBySwappingColonsAndSlashes("a/b:c")), "a:b/c");
    EXPECT_TRUE(KRCStringBySwappingColonsAndSlashes("").isEqualToString_(""));
    EXPECT_EQ(fileSystemBytes(KRCStringBySwappingColonsAndSlashes("n\xC3\xA9")), "n\xC3\xA9");
    EXPECT_TRUE(KRCStringBySwappingColonsAndSlashes(repeated(u':', 300)).isEqualToString_(repeated(u'/', 300)));
    NSString const lone = NSString::stringWithCodeUnits(u":\xD800/");
    EXPECT_TRUE(KRCStringBySwappingColonsAndSlashes(KRCStringBySwappingColonsAndSlashes(lone)).isEqualToString_(lone));
    EXPECT_TRUE(KRCStringBySwappingColonsAndSlashes(nil) == nil);
}

TEST(KRCStringBySwappingColonsAndSlashes, LeavesTheReceiverAlone) {
    NSMutableString const receiver = NSMutableString::stringWithString_("a:b");
    NSString const swapped = KRCStringBySwappingColonsAndSlashes(receiver);
    EXPECT_EQ(fileSystemBytes(receiver), "a:b");
    EXPECT_EQ(fileSystemBytes(swapped), "a/b");
}

TEST(KRCHFSUniStr255SwapColonsAndSlashes, DoesNothingWithoutAName) {
    EXPECT_NO_THROW(KRCHFSUniStr255SwapColonsAndSlashes_(nullptr));
}

TEST(KRCHFSUniStr255SwapColonsAndSlashes, ExchangesThemInPlaceUpToTheLength) {
    HFSUniStr255 name = filledName();
    KRCStringGetHFSUniStr255_("a/b:c", &name);
    name.unicode[5] = u':';
    KRCHFSUniStr255SwapColonsAndSlashes_(&name);
    EXPECT_EQ(fileSystemBytes(KRCStringWithHFSUniStr255_(&name)), "a:b/c");
    EXPECT_EQ(name.unicode[5], u':');
    name.length = 0xFFFF;
    KRCHFSUniStr255SwapColonsAndSlashes_(&name);
    EXPECT_EQ(name.unicode[5], u'/');
}

TEST(KRCStringGetHFSUniStr255, CopiesTheCharacters) {
    HFSUniStr255 name = filledName();
    KRCStringGetHFSUniStr255_("a/b", &name);
    EXPECT_EQ(name.length, 3);
    EXPECT_EQ(name.unicode[1], u'/');
    EXPECT_EQ(name.unicode[3], u'?');
    KRCStringGetHFSUniStr255_("", &name);
    EXPECT_EQ(name.length, 0);
    KRCStringGetHFSUniStr255_("a", {});
}

TEST(KRCStringGetHFSUniStr255, EmptiesANameThatIsTooLong) {
    HFSUniStr255 name = filledName();
    KRCStringGetHFSUniStr255_(repeated(u'n', 255), &name);
    EXPECT_EQ(name.length, 255);
    KRCStringGetHFSUniStr255_(repeated(u'n', 256), &name);
    EXPECT_EQ(name.length, 0);
    NSString const faces = path("\xF0\x9F\x98\x80");
    NSString const face127 = NSString::stringWithCodeUnits([&] {
        std::u16string units;
        for (int index = 0; index < 127; ++index)
            units += faces.codeUnits();
        return units;
    }());
    KRCStringGetHFSUniStr255_(face127.stringByAppendingString_("n"), &name);
    EXPECT_EQ(name.length, 255);
    KRCStringGetHFSUniStr255_(face127.stringByAppendingString_(faces), &name);
    EXPECT_EQ(name.length, 0);
}

TEST(KRCStringGetHFSUniStr255, EmptiesTheNameForNil) {
    HFSUniStr255 name = filledName();
    KRCStringGetHFSUniStr255_(nil, &name);
    EXPECT_EQ(name.length, 0);
}

TEST(KRCPathNameGetHFSUniStr255, GivesTheNameAsHFSHoldsIt) {
    HFSUniStr255 name = filledName();
    KRCPathNameGetHFSUniStr255_("12:30 notes", &name);
    EXPECT_EQ(fileSystemBytes(KRCStringWithHFSUniStr255_(&name)), "12/30 notes");
    KRCPathNameGetHFSUniStr255_(repeated(u':', 256), &name);
    EXPECT_EQ(name.length, 0);
    KRCPathNameGetHFSUniStr255_("a", {});
    KRCPathNameGetHFSUniStr255_(nil, &name);
    EXPECT_EQ(name.length, 0);
}

TEST(KRCStringWithHFSUniStr255, MakesAStringOfItsOwn) {
    HFSUniStr255 name = filledName();
    KRCStringGetHFSUniStr255_("name", &name);
    NSString const string = KRCStringWithHFSUniStr255_(&name);
    name.unicode[0] = u'g';
    EXPECT_EQ(fileSystemBytes(string), "name");
    name.length = 0;
    EXPECT_TRUE(KRCStringWithHFSUniStr255_(&name).isEqualToString_(""));
    EXPECT_TRUE(KRCStringWithHFSUniStr255_({}) == nil);
    name.length = 0xFFFF;
    EXPECT_EQ(KRCStringWithHFSUniStr255_(&name).length(), 255U);
}

TEST(KRCStringWithHFSUniStr255NoCopy, ReadsTheNameWhereItLies) {
    HFSUniStr255 name = filledName();
    KRCStringGetHFSUniStr255_("name", &name);
    NSString const string = KRCStringWithHFSUniStr255NoCopy_(&name);
    NSString const copied = NSString::stringWithString_(string);
    std::uint64_t const hash = string.hash();
    EXPECT_EQ(hash, copied.hash());
    name.unicode[0] = u'g';
    EXPECT_EQ(fileSystemBytes(string), "game");
    EXPECT_TRUE(string.isEqual_("game"));
    EXPECT_EQ(string.hash(), NSString("game").hash());
    EXPECT_EQ(fileSystemBytes(as<NSString>(string.mutableCopy())), "game");
    EXPECT_EQ(fileSystemBytes(copied), "name");
    name.length = 0;
    EXPECT_TRUE(KRCStringWithHFSUniStr255NoCopy_(&name).isEqualToString_(""));
    EXPECT_TRUE(KRCStringWithHFSUniStr255NoCopy_({}) == nil);
}

} // namespace
} // namespace mac::test
