#include "platform/icons/IconPictures.h"
#include "tests/platform/icons/IconBytes.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

std::vector<Picture> picturesIn(std::string const& family) {
    return picturesInIconFile(std::as_bytes(std::span(family)));
}

std::string contentsOf(Picture const& picture) {
    std::vector<std::byte> const bytes = contentsOfPNG(picture);
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

Picture coloredPicture(int side, std::uint32_t pixel) {
    Picture picture = emptyPicture(side, side);
    picture.pixels.assign(picture.pixels.size(), pixel);
    return picture;
}

std::uint32_t onlyPixelOf(std::vector<Picture> const& pictures) {
    return pictures.size() == 1 ? pictures.front().pixels.front() : 0;
}

TEST(IconPictures, OfPackedPixelsAreOpaqueWithoutMask) {
    std::vector<Picture> const pictures = picturesIn(iconFamily(iconPiece("is32", packedPixels(16, 0x112233))));
    ASSERT_EQ(pictures.size(), 1U);
    EXPECT_EQ(pictures[0], coloredPicture(16, 0xFF112233));
}

TEST(IconPictures, OfPackedPixelsHaveTheOpacityOfTheirMask) {
    std::string const mask(16 * 16, '\x40');
    EXPECT_EQ(
        onlyPixelOf(picturesIn(iconFamily(iconPiece("is32", packedPixels(16, 0x112233)) + iconPiece("s8mk", mask)))),
        0x40112233U);
    // A mask of another size, and one that is cut, do not count.
    EXPECT_EQ(
        onlyPixelOf(picturesIn(iconFamily(iconPiece("is32", packedPixels(16, 0x112233)) + iconPiece("l8mk", mask)))),
        0xFF112233U);
    EXPECT_EQ(onlyPixelOf(picturesIn(
                  iconFamily(iconPiece("is32", packedPixels(16, 0x112233)) + iconPiece("s8mk", mask.substr(1))))),
              0xFF112233U);
}

TEST(IconPictures, OfPackedPixelsTakeTheMaskOfOneBitWithoutALargerOne) {
    // The picture's bits, then the mask's, of which the first is not seen.
    std::string const bits = std::string(32, '\0') + "\x7F" + std::string(31, '\xFF');
    std::vector<Picture> const pictures =
        picturesIn(iconFamily(iconPiece("is32", packedPixels(16, 0x112233)) + iconPiece("ics#", bits)));
    ASSERT_EQ(pictures.size(), 1U);
    EXPECT_EQ(pictures[0].pixels[0], 0x00112233U);
    EXPECT_EQ(pictures[0].pixels[1], 0xFF112233U);
}

TEST(IconPictures, OfLargestPackedPixelsBeginBehindFourBytes) {
    EXPECT_EQ(
        onlyPixelOf(picturesIn(iconFamily(iconPiece("it32", std::string(4, '\0') + packedPixels(128, 0x445566))))),
        0xFF445566U);
    EXPECT_TRUE(picturesIn(iconFamily(iconPiece("it32", packedPixels(128, 0x445566)))).empty());
}

TEST(IconPictures, MayHaveTheirPixelsUnpacked) {
    std::string pixels;
    for (int index = 0; index < 256; ++index)
        pixels += std::string("\0\x01\x02\x03", 4);
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(iconPiece("is32", pixels)))), 0xFF010203U);
}

TEST(IconPictures, MayHaveTheirOpacityPackedWithThem) {
    std::string const packed =
        "ARGB" + packedRun(256, 0x80) + packedRun(256, 0x10) + packedRun(256, 0x20) + packedRun(256, 0x30);
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(iconPiece("ic04", packed)))), 0x80102030U);
}

TEST(IconPictures, OfNumbersHaveTheSystemsColors) {
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(iconPiece("ics8", std::string(256, '\0'))))), 0xFFFFFFFFU);
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(iconPiece("ics8", std::string(256, '\xFF'))))), 0xFF000000U);
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(iconPiece("ics8", std::string(256, '\x05'))))), 0xFFFFFF00U);
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(iconPiece("ics8", std::string(256, '\xD7'))))), 0xFFEE0000U);
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(iconPiece("ics4", std::string(128, '\x11'))))), 0xFFFCF305U);
    // The bit 1 is black.
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(iconPiece("ics#", std::string(64, '\xFF'))))), 0xFF000000U);
}

TEST(IconPictures, OfOneSizeAreThoseOfTheMostColors) {
    std::string const small = iconPiece("ics#", std::string(64, '\xFF'));
    std::string const number = iconPiece("ics8", std::string(256, '\x05'));
    std::string const packed = iconPiece("is32", packedPixels(16, 0x112233));
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(small + number))), 0xFFFFFF00U);
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(packed + number))), 0xFF112233U);
    std::string const file = iconPiece("icp4", contentsOf(coloredPicture(16, 0xFF00FF00)));
    EXPECT_EQ(onlyPixelOf(picturesIn(iconFamily(packed + file))), 0xFF00FF00U);
}

TEST(IconPictures, StandInTheOrderOfTheirPiecesWithTheirScale) {
    std::string const dense = iconPiece("ic11", contentsOf(coloredPicture(32, 0xFF00FF00)));
    std::vector<Picture> const pictures =
        picturesIn(iconFamily(dense + iconPiece("is32", packedPixels(16, 0)) + iconPiece("il32", packedPixels(32, 0))));
    ASSERT_EQ(pictures.size(), 3U);
    EXPECT_EQ(pictures[0].width, 32);
    EXPECT_EQ(pictures[0].size, NSMakeSize(16, 16));
    EXPECT_EQ(pictures[1].width, 16);
    EXPECT_EQ(pictures[2].size, NSMakeSize(32, 32));
}

TEST(IconPictures, ThatAreCutOrTooLargeArePassedOver) {
    std::string const packed = packedPixels(16, 0x112233);
    for (std::size_t length = 0; length < packed.size(); ++length)
        EXPECT_TRUE(picturesIn(iconFamily(iconPiece("is32", packed.substr(0, length)))).empty()) << length;
    std::string const large = contentsOf(emptyPicture(1025, 1));
    EXPECT_EQ(picturesIn(iconFamily(iconPiece("ic10", large) + iconPiece("is32", packed))).size(), 1U);
    EXPECT_TRUE(picturesIn(iconFamily(iconPiece("ic07", "no picture") + iconPiece("zzzz", packed))).empty());
    EXPECT_TRUE(picturesIn("no icon").empty());
}

} // namespace
} // namespace mac::test
