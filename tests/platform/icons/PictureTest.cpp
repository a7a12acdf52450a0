#include "platform/icons/Picture.h"
#include "platform/foundation/running/EventLoop.h"
#include "tests/platform/icons/IconBytes.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

// 16 pixels a side, the left half 0xDD0000, the right one 0x0000EE.
constexpr std::string_view TwoColors =
    "ff4fff51002f000000000010000000100000000000000000000000100000001000000000000000000003070101070101070101ff52000c0000"
    "0001000004040001ff5c00044040ff640025000143726561746564206279204f70656e4a5045472076657273696f6e20322e352e30ff90000a"
    "0000000001070001ff93df83f03b0d0d2bfa7aae65cb8399be0000000611ac3ec7e8a708fb94d11f729a23ee53447dca688fb94d11f729a23e"
    "e53447dca688fb94d11f729a23ee53447dca688fb94d11f729a23ee53447dca688fb94d11f729a23ee53447dca688fb94d1212fe4a26000000"
    "c237a7e8fd14e11f729a23ee53447dca688fb94d11f729a23fdf8038115054aff4c87fdf8358115053190aaeae7a0abea5f61f800000030909"
    "7f0bb1000000000308cd9f23f453847dca688fb94d11f729a23ee53447dca688fb94d11f729a23ee53447dca688fb94d11f729a23ee53447dc"
    "a688fb94d11f729a23ee53447dca688fb94d11f729a23ee53447dca689097fffd9";

std::string bytesOfHex(std::string_view hex) {
    std::string bytes;
    for (std::size_t place = 0; place + 1 < hex.size(); place += 2)
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(place, 2)), nullptr, 16));
    return bytes;
}

std::span<std::byte const> spanOf(std::string const& text) { return std::as_bytes(std::span(text)); }

std::optional<Picture> jpeg2000(std::string const& bytes, int largest = 1024) {
    return pictureInJPEG2000(spanOf(bytes), largest);
}

std::string box(std::string const& type, std::string const& contents) {
    return bigEndianText(static_cast<std::uint32_t>(contents.size() + 8), 4) + type + contents;
}

std::string withNumber(std::string bytes, std::size_t place, std::uint32_t number) {
    return bytes.replace(place, 4, bigEndianText(number, 4));
}

TEST(Picture, IsReadFromJPEG2000) {
    std::string const stream = bytesOfHex(TwoColors);
    for (std::string const& file : {stream, box("jP  ", "\r\n\x87\n") + box("ftyp", "jp2 ") + box("jp2c", stream)}) {
        std::optional<Picture> const picture = jpeg2000(file);
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->width, 16);
        EXPECT_EQ(picture->height, 16);
        EXPECT_EQ(picture->pixels.front(), 0xFFDD0000U);
        EXPECT_EQ(picture->pixels.back(), 0xFF0000EEU);
    }
}

TEST(Picture, IsNotReadFromJPEG2000ThatContradictsItself) {
    std::string const stream = bytesOfHex(TwoColors);
    EXPECT_FALSE(jpeg2000(stream, 15));
    EXPECT_FALSE(jpeg2000(""));
    EXPECT_FALSE(jpeg2000("neither"));
    for (std::size_t length = 0; length < 100; ++length)
        EXPECT_FALSE(jpeg2000(stream.substr(0, length))) << length;
    // Width, height, and the sides of tiles.
    EXPECT_FALSE(jpeg2000(withNumber(withNumber(stream, 8, 100000), 12, 100000), 2048));
    EXPECT_FALSE(jpeg2000(withNumber(stream, 8, 0)));
    EXPECT_FALSE(jpeg2000(withNumber(withNumber(stream, 24, 1), 28, 1)));
    EXPECT_FALSE(jpeg2000(withNumber(stream, 24, 0)));
    EXPECT_FALSE(jpeg2000(box("jP  ", "\r\n\x87\n") + box("ftyp", "jp2 ")));
}

// The places of the segments in the stream of two colours.
constexpr std::size_t CodingPlace = 51;
constexpr std::size_t PartPlace = 110;
constexpr std::size_t DataPlace = 122;

// With this segment at the end of the header of the only part of a tile.
std::string withPartSegment(std::string const& stream, std::string const& segment) {
    auto const length = static_cast<std::uint32_t>(0x107 + segment.size());
    return withNumber(stream, PartPlace + 6, length).insert(DataPlace, segment);
}

TEST(Picture, IsNotReadFromJPEG2000OfTinyPrecincts) {
    std::string const stream = bytesOfHex(TwoColors);
    for (int const exponent : {15, 5, 4, 0}) {
        std::string const precinct(1, static_cast<char>(exponent << 4 | exponent));
        std::string const narrow(1, static_cast<char>(0xF0 | exponent));
        std::string const low(1, static_cast<char>(exponent << 4 | 0xF));
        for (std::string const& sides : {precinct, narrow, low}) {
            std::string const plain = bytesOfHex("ff52000d01000001000004040001") + sides;
            std::string const component = bytesOfHex("ff53000a00010004040001") + sides;
            bool const isRead = exponent >= 5;
            std::string whole = stream;
            EXPECT_EQ(jpeg2000(whole.replace(CodingPlace, 14, plain)).has_value(), isRead) << exponent;
            whole = stream;
            EXPECT_EQ(jpeg2000(whole.insert(CodingPlace + 14, component)).has_value(), isRead) << exponent;
            EXPECT_EQ(jpeg2000(withPartSegment(stream, plain)).has_value(), isRead) << exponent;
            EXPECT_EQ(jpeg2000(withPartSegment(stream, component)).has_value(), isRead) << exponent;
        }
    }
}

TEST(Picture, IsNotReadFromJPEG2000OfTinyBlocksOrManyLayers) {
    std::string const stream = bytesOfHex(TwoColors);
    for (char const* const coding :
         {"ff52000c00000001000000040001", "ff52000c00000001000004000001", "ff52000c0000ffff000004040001"}) {
        std::string changed = stream;
        EXPECT_FALSE(jpeg2000(changed.replace(CodingPlace, 14, bytesOfHex(coding)))) << coding;
    }
}

TEST(Picture, IsNotReadFromJPEG2000WithWhatIsNoSegment) {
    std::string const stream = bytesOfHex(TwoColors);
    std::string changed = stream;
    EXPECT_FALSE(jpeg2000(changed.insert(CodingPlace, bytesOfHex("ff400004ff52"))));
    EXPECT_TRUE(jpeg2000(stream + "behind the end"));
    EXPECT_TRUE(jpeg2000(withNumber(stream, PartPlace + 6, 0)));
}

TEST(Picture, ComesBackFromPNG) {
    Picture picture = emptyPicture(3, 2);
    picture.pixels = {0xFF010203, 0x80FF0000, 0x00000000, 0xFFFFFFFF, 0x01020304, 0xFF000000};
    std::vector<std::byte> const file = contentsOfPNG(picture);
    EXPECT_EQ(pictureInPNG(file, 3), picture);
    EXPECT_FALSE(pictureInPNG(file, 2));
    EXPECT_FALSE(pictureInPNG(std::span(file).first(40), 3));
    EXPECT_EQ(picturesInImageFile(file), std::vector{picture});
}

TEST(Picture, IsReadInTheFormatsOfTheImageLibrary) {
    std::string pixels;
    for (int index = 0; index < 16; ++index)
        pixels += "\x30\x20\x10";
    pixels += std::string(8, '\0') + "TRUEVISION-XFILE." + std::string(1, '\0');
    std::string targa(18, '\0');
    targa[2] = 2;
    targa[12] = 4;
    targa[14] = 4;
    targa[16] = 24;
    std::vector<Picture> const read = picturesInImageFile(spanOf(targa + pixels));
    ASSERT_EQ(read.size(), 1U);
    EXPECT_EQ(read[0].pixels, std::vector<std::uint32_t>(16, 0xFF102030));
    // The largest sides that the format has.
    targa.replace(12, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_TRUE(picturesInImageFile(spanOf(targa + pixels)).empty());
}

// Little-endian, grey, each page of one pixel a side.
std::string tiff(std::vector<std::uint32_t> const& sides, std::uint32_t dotsPerInch) {
    auto const number = [](std::uint32_t value, int bytes) {
        std::string text = bigEndianText(value, bytes);
        return std::string(text.rbegin(), text.rend());
    };
    std::string const resolution = number(dotsPerInch, 4) + number(1, 4);
    std::string file = std::string("II*\0", 4);
    for (std::uint32_t const side : sides) {
        // The pixels and the resolution stand before the page's tags.
        std::string const pixels(std::size_t{side} * side <= 4096 ? side * side : 1, '\x7F');
        std::uint32_t const dataPlace = static_cast<std::uint32_t>(file.size()) + 4;
        auto const resolutionPlace = static_cast<std::uint32_t>(dataPlace + pixels.size());
        file += number(resolutionPlace + 8, 4) + pixels + resolution;
        auto const tag = [&](std::uint32_t key, std::uint32_t type, std::uint32_t value) {
            return number(key, 2) + number(type, 2) + number(1, 4) + number(value, 4);
        };
        file += number(12, 2) + tag(256, 4, side) + tag(257, 4, side) + tag(258, 3, 8) + tag(259, 3, 1) +
                tag(262, 3, 1) + tag(273, 4, dataPlace) + tag(277, 3, 1) + tag(278, 4, side) +
                tag(279, 4, static_cast<std::uint32_t>(pixels.size())) + tag(282, 5, resolutionPlace) +
                tag(283, 5, resolutionPlace) + tag(296, 3, 2);
    }
    return file + number(0, 4);
}

TEST(Picture, IsReadFromEachPageWithItsResolution) {
    std::vector<Picture> const pages = picturesInImageFile(spanOf(tiff({16, 32}, 144)));
    ASSERT_EQ(pages.size(), 2U);
    EXPECT_EQ(pages[0].width, 16);
    EXPECT_EQ(pages[0].size, NSMakeSize(8, 8));
    EXPECT_EQ(pages[1].width, 32);
    EXPECT_EQ(pages[1].pixels.back(), 0xFF7F7F7FU);
    EXPECT_EQ(pages[1].size, NSMakeSize(16, 16));
}

TEST(Picture, OfAHugeSizeIsRefused) {
    EXPECT_TRUE(picturesInImageFile(spanOf(tiff({100000}, 72))).empty());
    EXPECT_TRUE(picturesInImageFile(spanOf(tiff({16, 100000}, 72))).empty());
}

std::string littleEndianText(std::uint32_t value, int bytes) {
    std::string const text = bigEndianText(value, bytes);
    return {text.rbegin(), text.rend()};
}

// Each entry of the directory announces this side, and has the same data.
std::string windowsIcon(int entries, int announcedSide, std::string const& data) {
    std::string file = std::string("\0\0\1\0", 4) + littleEndianText(static_cast<std::uint32_t>(entries), 2);
    for (int entry = 0; entry < entries; ++entry)
        file += std::string(2, static_cast<char>(announcedSide)) + std::string("\0\0\1\0\x20\0", 6) +
                littleEndianText(static_cast<std::uint32_t>(data.size()), 4) +
                littleEndianText(static_cast<std::uint32_t>(6 + 16 * entries), 4);
    return file + data;
}

std::string pngOfSide(int side) {
    std::vector<std::byte> const bytes = contentsOfPNG(emptyPicture(side, side));
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

// Black and white, with the double height that stands for colours and mask. REQUIRES: the side divides by 32.
std::string bitmapOfSide(std::uint32_t side) {
    return littleEndianText(40, 4) + littleEndianText(side, 4) + littleEndianText(side * 2, 4) +
           std::string("\1\0\1\0", 4) + std::string(24, '\0') + std::string("\0\0\0\0\xFF\xFF\xFF\0", 8) +
           std::string(std::size_t{side} * side / 4, '\0');
}

TEST(Picture, IsReadFromEachSizeOfAnIconOfWindows) {
    std::vector<Picture> const pictures = picturesInImageFile(spanOf(windowsIcon(3, 16, pngOfSide(16))));
    ASSERT_EQ(pictures.size(), 3U);
    EXPECT_EQ(pictures[2].width, 16);
    std::vector<Picture> const bitmaps = picturesInImageFile(spanOf(windowsIcon(2, 32, bitmapOfSide(32))));
    ASSERT_EQ(bitmaps.size(), 2U);
    EXPECT_EQ(bitmaps[1].height, 32);
}

TEST(Picture, LargerThanItsIconOfWindowsSaysCountsAsItIs) {
    EXPECT_TRUE(picturesInImageFile(spanOf(windowsIcon(1, 16, pngOfSide(6000)))).empty());
    EXPECT_TRUE(picturesInImageFile(spanOf(windowsIcon(1, 0, bitmapOfSide(6016)))).empty());
}

TEST(Picture, IsDrawnOnItsOwnSide) {
    std::string const drawing = R"(<svg xmlns="http://www.w3.org/2000/svg" width="2" height="1">)"
                                R"(<rect width="2" height="1" fill="#0000ff"/></svg>)";
    std::optional<Picture> const picture = pictureOfDrawing(spanOf(drawing), 32);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 32);
    EXPECT_EQ(picture->height, 32);
    EXPECT_EQ(picture->pixels[std::size_t{16} * 32 + 16], 0xFF0000FFU);
    EXPECT_EQ(picture->pixels[std::size_t{2} * 32 + 16], 0U);
    EXPECT_TRUE(picturesInImageFile(spanOf(drawing)).empty());
    EXPECT_FALSE(pictureOfDrawing(spanOf(drawing), 0));
    EXPECT_FALSE(pictureOfDrawing(spanOf(drawing), 100000));
    EXPECT_FALSE(pictureOfDrawing(spanOf("<svg"), 32));
}

std::string drawingWith(std::string const& contents) {
    return R"(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" width="8" height="8">)" +
           contents + "</svg>";
}

bool isDrawn(std::string const& drawing) { return pictureOfDrawing(spanOf(drawing), 32).has_value(); }

TEST(Picture, ThatReadsFilesIsNotDrawn) {
    EXPECT_FALSE(isDrawn(drawingWith("<image xlink:href='/tmp/a.png' width='8' height='8'/>")));
    EXPECT_FALSE(isDrawn(drawingWith("<image xlink:href = \"&#47;tmp/a.png\" width='8' height='8'/>")));
    EXPECT_FALSE(isDrawn(drawingWith("<image href='file:///tmp/a.png' width='8' height='8'/>")));
    EXPECT_FALSE(isDrawn(drawingWith("<style>@import 'a.css';</style>")));
    EXPECT_FALSE(isDrawn(drawingWith("<rect width='8' height='8' fill='url(/tmp/a.svg#b)'/>")));
    EXPECT_FALSE(isDrawn("<?xml-stylesheet type=\"text/css\" href=\"a.css\"?>" + drawingWith("")));
    EXPECT_FALSE(isDrawn("<!DOCTYPE svg [<!ENTITY a 'b'>]>" + drawingWith("")));
    EXPECT_FALSE(isDrawn("<!DOCTYPE svg [<!ATTLIST image xlink:href CDATA '/tmp/a.png'>]>" + drawingWith("")));
    // A drawing within the drawing has references of its own.
    EXPECT_FALSE(isDrawn(drawingWith("<image xlink:href='data:image/png;base64,PHN2Zz4=' width='8' height='8'/>")));
    EXPECT_FALSE(isDrawn(drawingWith("<image xlink:href='data:a;base64,iVBORw0KGgobase64,PHN2Zz4='/>")));
    EXPECT_FALSE(isDrawn(drawingWith("<image xlink:href='data:a;base64,iVBORw0KGgobase64&#44;PHN2Zz4='/>")));
}

TEST(Picture, OfADrawingThatKeepsToItselfIsDrawn) {
    EXPECT_TRUE(isDrawn("\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" +
                        drawingWith("<defs><linearGradient id='a'/><linearGradient id='b' xlink:href='#a'/></defs>"
                                    "<rect width='8' height='8' fill='url(#a)' stroke='url( \"#b\" )'/>")));
    EXPECT_TRUE(isDrawn(drawingWith("<style>rect { fill: url(&quot;#a&quot;) } .href { fill: red }</style>")));
    EXPECT_TRUE(
        isDrawn(drawingWith("<image width='1' height='1' xlink:href='data:image/png;base64,\n"
                            "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJ"
                            "RU5ErkJggg=='/>")));
}

TEST(Picture, OfADrawingInAnotherEncodingIsRefused) {
    std::string const drawing = drawingWith("");
    std::string wide = "\xFF\xFE";
    for (char const unit : drawing)
        wide += std::string(1, unit) + std::string(1, '\0');
    EXPECT_FALSE(isDrawn(wide));
    EXPECT_FALSE(isDrawn("<?xml version='1.0' encoding='UTF-16'?>" + drawing));
    EXPECT_TRUE(isDrawn("<?xml version='1.0' encoding='utf-8'?>" + drawing));
    EXPECT_TRUE(isDrawn("<?xml version='1.0'?>" + drawing));
}

TEST(Picture, WithTextIsNoneWithoutAnApplicationObject) {
    for (std::string const& text :
         {std::string("<text>a</text>"), std::string("<s:text xmlns:s='http://www.w3.org/2000/svg'>a</s:text>")})
        EXPECT_FALSE(pictureOfDrawing(
            spanOf("<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'>" + text + "</svg>"), 32));
}

TEST(Picture, WithTextIsNoneInAProgramWithAnEventLoopAlone) {
    requireEventLoop();
    EXPECT_FALSE(pictureOfDrawing(
        spanOf("<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'><text>a</text></svg>"), 32));
}

TEST(Picture, IsScaledAndDrawnOverAnother) {
    Picture red = emptyPicture(2, 2);
    red.pixels.assign(4, 0xFFFF0000);
    EXPECT_EQ(scaledPicture(red, 8, 8).pixels, std::vector<std::uint32_t>(64, 0xFFFF0000));
    Picture canvas = emptyPicture(4, 4);
    // From the lower left.
    drawPicture(canvas, NSMakeRect(0, 0, 2, 2), red);
    EXPECT_EQ(canvas.pixels[12], 0xFFFF0000U);
    EXPECT_EQ(canvas.pixels[3], 0U);
    EXPECT_EQ(canvas.size, NSMakeSize(4, 4));
}

} // namespace
} // namespace mac::test
