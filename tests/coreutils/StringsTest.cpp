#include "coreutils/Strings.h"
#include "platform/foundation/collections/WordSum.h"
#include "platform/foundation/numbers/NSNumberFormatter.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/support/Texts.h"
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <set>

namespace mac::test {
namespace {

NSData bytes(std::initializer_list<unsigned char> list) {
    return NSData::dataWithBytes_length_(std::data(list), static_cast<NSUInteger>(list.size()));
}

// The steps as they are given, one word at a time.
int checksumStepByStep(std::span<std::byte const> data) {
    std::int32_t sum = 0;
    auto const add = [&](std::uint16_t word) {
        sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum) + word);
    };
    std::size_t index = 0;
    for (; data.size() - index > 1; index += 2) {
        std::uint16_t word = 0;
        std::memcpy(&word, data.data() + index, 2);
        add(word);
    }
    if (index < data.size()) {
        std::uint16_t word = 0;
        std::memcpy(&word, data.data() + index, 1);
        add(word);
    }
    sum = (sum >> 16) + (sum & 0xFFFF);
    sum += sum >> 16;
    return ~sum & 0xFFFF;
}

std::vector<std::byte> randomBytes(std::size_t count) {
    std::mt19937_64 random(count);
    std::vector<std::byte> data(count);
    std::ranges::generate(data, [&] { return static_cast<std::byte>(random() >> 56); });
    return data;
}

TEST(PxCountOf, CountsWithoutOverlaps) {
    EXPECT_EQ(pxCountOf_("aaaa", "aa"), 2U);
    EXPECT_EQ(pxCountOf_("aaaaa", "aa"), 2U);
    EXPECT_EQ(pxCountOf_("abcabcab", "abc"), 2U);
    EXPECT_EQ(pxCountOf_("abc", "abc"), 1U);
    EXPECT_EQ(pxCountOf_("ab", "abc"), 0U);
}

TEST(PxCountOf, CountsNothingWithoutTexts) {
    EXPECT_EQ(pxCountOf_("aaaa", ""), 0U);
    EXPECT_EQ(pxCountOf_("aaaa", nil), 0U);
    EXPECT_EQ(pxCountOf_("", "a"), 0U);
    EXPECT_EQ(pxCountOf_(nil, "a"), 0U);
}

TEST(PxCountOf, IsLiteralAndMindsTheCase) {
    EXPECT_EQ(pxCountOf_("aAa", "a"), 2U);
    EXPECT_EQ(pxCountOf_("e\u0301e", "e"), 2U);
    EXPECT_EQ(pxCountOf_("\u00E9", "e\u0301"), 0U);
    EXPECT_EQ(pxCountOf_(units(u"\xDC41\xD800\xDC41"), units(u"\xDC41")), 2U);
}

TEST(PxCountOf, TakesNoLongerForATextThatNearlyRepeats) {
    std::u16string const text(200'000, u'a');
    std::u16string const sought = std::u16string(100'000, u'a') + u'b';
    EXPECT_EQ(pxCountOf_(units(text), units(sought)), 0U);
    EXPECT_EQ(pxCountOf_(units(text), units(std::u16string(50'000, u'a'))), 4U);
}

TEST(PxContainsCharactersInString, FindsOneOfThem) {
    EXPECT_TRUE(pxContainsCharactersInString_("a/b", ":/"));
    EXPECT_FALSE(pxContainsCharactersInString_("ab", ":/"));
    EXPECT_FALSE(pxContainsCharactersInString_("ab", ""));
    EXPECT_TRUE(pxContainsCharactersInString_("e\u0301", "e"));
}

TEST(PxContainsCharactersInString, IsFalseForAnEmptyReceiverWhateverTheArgument) {
    EXPECT_FALSE(pxContainsCharactersInString_("", "a"));
    EXPECT_FALSE(pxContainsCharactersInString_("", ""));
    EXPECT_FALSE(pxContainsCharactersInString_("", nil));
    EXPECT_FALSE(pxContainsCharactersInString_(nil, "a"));
    EXPECT_THROW(pxContainsCharactersInString_("a", nil), NSInvalidArgumentException);
}

TEST(PxStringByRemovingCharactersInSet, LeavesTheOthersInTheirOrder) {
    NSCharacterSet const vowels = NSCharacterSet::characterSetWithCharactersInString_("aeiou");
    EXPECT_EQ(pxStringByRemovingCharactersInSet_("education x", vowels).UTF8String(), "dctn x");
    EXPECT_EQ(pxStringByRemovingCharactersInSet_("aei", vowels).UTF8String(), "");
    EXPECT_EQ(pxStringByRemovingCharactersInSet_("", vowels).UTF8String(), "");
    EXPECT_EQ(pxStringByRemovingCharactersInSet_("abc", nil).UTF8String(), "abc");
    EXPECT_TRUE(pxStringByRemovingCharactersInSet_(nil, vowels) == nil);
}

TEST(PxStringByRemovingCharactersInSet, AnswersAnImmutableText) {
    NSMutableString const text = NSMutableString::stringWithString_("abc");
    NSString const result = pxStringByRemovingCharactersInSet_(text, NSCharacterSet::whitespaceCharacterSet());
    text.setString_("x");
    EXPECT_EQ(result.UTF8String(), "abc");
    EXPECT_FALSE(result.isKindOfClass_(classOf<NSMutableString>()));
}

TEST(PxStringByRemovingCharactersInSet, KeepsSupplementaryCharacters) {
    NSString const text = "a\U0001F600b";
    NSCharacterSet const faces = NSCharacterSet::characterSetWithCharactersInString_("\U0001F600");
    EXPECT_EQ(pxStringByRemovingCharactersInSet_(text, faces).UTF8String(), "a\U0001F600b");
}

TEST(PxStringBySubstituting, ReplacesEachOccurrence) {
    EXPECT_EQ(pxStringBySubstituting_with_("a.b.c", ".", "--").UTF8String(), "a--b--c");
    EXPECT_EQ(pxStringBySubstituting_with_(".a.", ".", "").UTF8String(), "a");
    EXPECT_EQ(pxStringBySubstituting_with_("aaaaa", "aa", "b").UTF8String(), "bba");
    EXPECT_EQ(pxStringBySubstituting_with_("aaa", "a", "aa").UTF8String(), "aaaaaa");
    EXPECT_EQ(pxStringBySubstituting_with_("abc", "abc", "").UTF8String(), "");
}

TEST(PxStringBySubstituting, DoublesEveryBackslash) {
    EXPECT_EQ(pxStringBySubstituting_with_(R"(a\b\\c\)", "\\", "\\\\").UTF8String(), R"(a\\b\\\\c\\)");
}

TEST(PxStringBySubstituting, AnswersAnEqualTextWhenNothingOccurs) {
    EXPECT_EQ(pxStringBySubstituting_with_("abc", "x", "y").UTF8String(), "abc");
    EXPECT_EQ(pxStringBySubstituting_with_("abc", "", "y").UTF8String(), "abc");
    EXPECT_EQ(pxStringBySubstituting_with_("abc", "B", "y").UTF8String(), "abc");
    EXPECT_EQ(pxStringBySubstituting_with_("", "x", "y").UTF8String(), "");
}

TEST(PxStringBySubstituting, TakesNilAsThePlatformDoes) {
    EXPECT_EQ(pxStringBySubstituting_with_("abc", "b", nil).UTF8String(), "ac");
    EXPECT_THROW(pxStringBySubstituting_with_("abc", nil, "x"), NSInvalidArgumentException);
    EXPECT_TRUE(pxStringBySubstituting_with_(nil, "a", "b") == nil);
}

TEST(PxUUID, HasTheFormOfOne) {
    std::string const uuid = pxUUID().UTF8String();
    ASSERT_EQ(uuid.size(), 36U);
    for (std::size_t index = 0; index < uuid.size(); ++index) {
        bool const isHyphen = index == 8 || index == 13 || index == 18 || index == 23;
        std::string_view const allowed = isHyphen ? "-" : "0123456789ABCDEF";
        EXPECT_NE(allowed.find(uuid[index]), std::string_view::npos) << uuid;
    }
    EXPECT_EQ(uuid[14], '4');
    EXPECT_NE(std::string_view("89AB").find(uuid[19]), std::string::npos) << uuid;
}

TEST(PxUUID, IsAnotherEachTime) {
    std::set<std::string> uuids;
    for (int count = 0; count < 1000; ++count)
        uuids.insert(pxUUID().UTF8String());
    EXPECT_EQ(uuids.size(), 1000U);
}

TEST(PxChecksum, AddsWordsInTheOrderOfTheMachine) {
    std::uint16_t word = 0;
    std::memcpy(&word, "\1\2", 2);
    EXPECT_EQ(pxChecksum(bytes({1, 2})), 0xFFFF - word);
    std::memcpy(&word, "\1\0", 2);
    EXPECT_EQ(pxChecksum(bytes({1})), 0xFFFF - word);
}

// The bytes of RFC 1071, section 3, whose words add up to ddf2 in network order: the sum of the swapped words is the
// swapped sum.
TEST(PxChecksum, IsThatOfTheStandardsExample) {
    std::uint16_t expected = 0;
    std::memcpy(&expected, "\xDD\xF2", 2);
    EXPECT_EQ(pxChecksum(bytes({0x00, 0x01, 0xF2, 0x03, 0xF4, 0xF5, 0xF6, 0xF7})), 0xFFFF - expected);
}

TEST(PxChecksum, OfNoBytesIsAllOnes) {
    EXPECT_EQ(pxChecksum(NSData::data()), 65535);
    EXPECT_EQ(pxChecksum(nil), 0);
}

TEST(PxChecksum, WrapsAt32Bits) {
    std::vector<std::byte> const ones(std::size_t{600} << 10, std::byte{0xFF});
    EXPECT_EQ(pxChecksum(NSData::dataWithBytes(ones)), checksumStepByStep(ones));
    // 65,537 words of all ones make the largest sum that does not wrap, and one more wraps.
    constexpr std::size_t largest = std::size_t{2} * 65537;
    std::span<std::byte const> const wrapping(ones.data(), largest + 2);
    EXPECT_EQ(pxChecksum(NSData::dataWithBytes(wrapping)), checksumStepByStep(wrapping));
    EXPECT_EQ(pxChecksum(NSData::dataWithBytes(wrapping.first(largest))), 0x0001);
}

TEST(PxChecksum, FollowsTheStepsForEveryLengthAndAlignment) {
    std::vector<std::byte> const data = randomBytes(1200);
    for (std::size_t start = 0; start < 4; ++start) {
        for (std::size_t length = 0; length <= 600; ++length) {
            std::span<std::byte const> const part(data.data() + start, length);
            ASSERT_EQ(pxChecksum(NSData::dataWithBytes(part)), checksumStepByStep(part)) << start << " " << length;
        }
    }
}

TEST(WordSum, IsTheSameWithAllInstructionsOfTheProcessor) {
    std::vector<std::byte> const data = randomBytes(1 << 20);
    ASSERT_FALSE(wordSummations().empty());
    for (std::size_t start = 0; start < 33; ++start) {
        for (std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{63}, std::size_t{64}, std::size_t{127},
                                   std::size_t{128}, std::size_t{129}, std::size_t{999}, data.size() - 33}) {
            std::span<std::byte const> const part = std::span(data).subspan(start, length);
            for (WordSummation const sum : wordSummations())
                ASSERT_EQ(sum(part), sumOfWordsPlainly(part)) << start << " " << length;
        }
    }
}

// The text with the decimal separator of the locale that the tests run in.
std::string localized(std::string text) {
    NSNumberFormatter const formatter = NSNumberFormatter::alloc().init();
    formatter.setLocalizesFormat_(YES);
    std::size_t const point = text.find('.');
    return point == std::string::npos ? text : text.replace(point, 1, formatter.decimalSeparator().UTF8String());
}

struct Size {
    std::uint64_t bytes;
    char const* text;
};

TEST(PxFormattedStringWithSize, UsesTheLargestUnitThatIsExceeded) {
    constexpr std::uint64_t kilobyte = 1024;
    constexpr std::uint64_t megabyte = kilobyte * kilobyte;
    constexpr std::uint64_t gigabyte = megabyte * kilobyte;
    constexpr std::uint64_t terabyte = gigabyte * kilobyte;
    for (Size const& row : {
             Size{0, "0 Bytes"},
             Size{1, "1 Bytes"},
             Size{1023, "1023 Bytes"},
             Size{kilobyte, "1024 Bytes"},
             Size{kilobyte + 1, "1 KB"},
             Size{1536, "1 KB"},
             Size{2047, "1 KB"},
             Size{2048, "2 KB"},
             Size{megabyte - 1, "1023 KB"},
             Size{megabyte, "1024 KB"},
             Size{megabyte + 1, "1.0 MB"},
             Size{1572864, "1.5 MB"},
             Size{megabyte * 5 / 4, "1.2 MB"},
             Size{megabyte * 7 / 4, "1.8 MB"},
             Size{gigabyte, "1024.0 MB"},
             Size{gigabyte + 1, "1.0 GB"},
             Size{terabyte, "1024.0 GB"},
             Size{terabyte + 1, "1.0 TB"},
             Size{UINT64_MAX, "16777216.0 TB"},
         })
        EXPECT_EQ(pxFormattedStringWithSize_(row.bytes).UTF8String(), localized(row.text));
}

TEST(PxDescriptionOfSystemErrorCode, ShowsItsFields) {
    EXPECT_EQ(pxDescriptionOfSystemErrorCode_(-43).UTF8String(),
              "FFFFFFD5(sys=0000003F sub=00000FFF code=00003FD5=16341)");
    EXPECT_EQ(pxDescriptionOfSystemErrorCode_(1).UTF8String(), "00000001(sys=00000000 sub=00000000 code=00000001=1)");
    EXPECT_EQ(pxDescriptionOfSystemErrorCode_(INT32_MIN).UTF8String(),
              "80000000(sys=00000020 sub=00000000 code=00000000=0)");
    EXPECT_EQ(pxDescriptionOfSystemErrorCode_(0x00004000).UTF8String(),
              "00004000(sys=00000000 sub=00000001 code=00000000=0)");
}

TEST(PxDescriptionOfSystemErrorCode, IsNilForNoError) { EXPECT_TRUE(pxDescriptionOfSystemErrorCode_(0) == nil); }

TEST(Strings, AreMessagesToo) {
    id const text = "a.b";
    EXPECT_EQ(as<NSNumber>(text.performSelector_withObject_("pxCountOf:", ".")).intValue(), 1);
    EXPECT_EQ(as<NSNumber>(id(bytes({1, 2})).performSelector_("pxChecksum")).intValue(), pxChecksum(bytes({1, 2})));
    EXPECT_EQ(text.performSelector_withObject_withObject_("pxStringBySubstituting:with:", ".", "-")
                  .description()
                  .UTF8String(),
              "a-b");
}

} // namespace
} // namespace mac::test
