#include "platform/icons/IconFamily.h"
#include "tests/platform/icons/IconBytes.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

std::optional<std::vector<IconPart>> read(std::string_view bytes) {
    return readIconFamily(std::as_bytes(std::span(bytes)));
}

std::string textOf(IconPart const& part) {
    return {reinterpret_cast<char const*>(part.bytes.data()), part.bytes.size()};
}

TEST(IconFamily, HasItsPiecesInOrder) {
    std::optional<std::vector<IconPart>> const parts =
        read(iconFamily(iconPiece("TOC ", "12345678") + iconPiece("is32", "abc") + iconPiece("s8mk", "")));
    ASSERT_TRUE(parts);
    ASSERT_EQ(parts->size(), 2U);
    EXPECT_EQ((*parts)[0].type, OSType("is32"));
    EXPECT_EQ(textOf((*parts)[0]), "abc");
    EXPECT_EQ((*parts)[1].type, OSType("s8mk"));
    EXPECT_EQ(textOf((*parts)[1]), "");
}

TEST(IconFamily, OfPiecesOfOneTypeCountsTheFirst) {
    std::optional<std::vector<IconPart>> const parts =
        read(iconFamily(iconPiece("is32", "one") + iconPiece("is32", "two")));
    ASSERT_TRUE(parts);
    ASSERT_EQ(parts->size(), 1U);
    EXPECT_EQ(textOf(parts->front()), "one");
}

TEST(IconFamily, MayBeEmptyAndHaveBytesBehindIt) {
    EXPECT_EQ(read(iconFamily(""))->size(), 0U);
    EXPECT_EQ(read(iconFamily(iconPiece("is32", "a")) + "more")->size(), 1U);
}

TEST(IconFamily, ThatContradictsItselfIsRefused) {
    EXPECT_FALSE(read(""));
    EXPECT_FALSE(read("icns"));
    EXPECT_FALSE(read(iconPiece("icnt", "")));
    std::string const whole = iconFamily(iconPiece("is32", "abc"));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(read(whole.substr(0, length))) << length;
    EXPECT_FALSE(read(iconFamily("is32" + bigEndianText(7, 4))));
    EXPECT_FALSE(read(iconFamily("is32" + bigEndianText(9, 4))));
    EXPECT_FALSE(read(iconFamily("is32" + bigEndianText(0xFFFFFFFF, 4))));
    EXPECT_FALSE(read(iconFamily("abc")));
}

TEST(IconFamily, OfThousandsOfPiecesIsRefused) {
    std::string pieces;
    for (std::uint32_t number = 0; number < 5000; ++number)
        pieces += iconPiece(bigEndianText(number, 4), "");
    EXPECT_FALSE(read(iconFamily(pieces)));
}

} // namespace
} // namespace mac::test
