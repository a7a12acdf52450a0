#include "platform/icons/Picture.h"
#include "platform/system/BigEndian.h"
#include <algorithm>
#include <array>
#include <cstring>
#include <openjpeg.h>

namespace mac {

namespace {

// A code stream begins with its start marker and that of its sizes.
constexpr std::uint32_t StreamStart = 0xFF4FFF51;
constexpr std::uint32_t FileSignature = 0x0000000C;
constexpr std::uint32_t StreamBox = 0x6A703263;
constexpr std::size_t BoxHeader = 8;
// What is looked at of the sizes: up to the number of components, behind start, marker, length and capabilities.
constexpr std::size_t SizesPlace = 8;
constexpr std::size_t SizesEnd = SizesPlace + 8 * sizeof(std::uint32_t) + sizeof(std::uint16_t);
constexpr std::uint32_t MostTiles = 64;
constexpr std::uint32_t MostComponents = 4;
// Precincts and code blocks of at least 32 and 8 samples a side: the library makes room for all of them ahead.
constexpr unsigned LeastPrecinctExponent = 5;
// The exponent as the stream has it, which is less by 2.
constexpr unsigned LeastBlockExponent = 1;
// Each layer has a packet for each precinct, with a mark of its own from the beginning.
constexpr std::uint16_t MostLayers = 256;

constexpr std::uint16_t SizesMark = 0xFF51;
constexpr std::uint16_t CodingMark = 0xFF52;
constexpr std::uint16_t ComponentCodingMark = 0xFF53;
constexpr std::uint16_t TilePartMark = 0xFF90;
// Marker, length, index of the tile, length of the part, index and number of the parts.
constexpr std::size_t TilePartHeader = 12;
constexpr std::uint16_t DataMark = 0xFF93;
constexpr std::uint16_t EndMark = 0xFFD9;
// What else may stand in a header: capabilities, lengths of packets, quantization, regions of interest, order of
// progression, packed packet headers, registration, comments and transforms of components.
constexpr std::array<std::uint16_t, 16> OtherMarks{0xFF50, 0xFF55, 0xFF57, 0xFF58, 0xFF59, 0xFF5C, 0xFF5D, 0xFF5E,
                                                   0xFF5F, 0xFF60, 0xFF61, 0xFF63, 0xFF64, 0xFF74, 0xFF75, 0xFF77};

// The code stream in a JP2 file, or the bytes themselves if they are one; empty for what is neither.
std::span<std::byte const> codeStreamIn(std::span<std::byte const> bytes) {
    if (bytes.size() < BoxHeader) return {};
    if (bigEndian32(bytes, 0) == StreamStart) return bytes;
    if (bigEndian32(bytes, 0) != FileSignature) return {};
    while (bytes.size() >= BoxHeader) {
        std::size_t const length = bigEndian32(bytes, 0);
        // A length of 0 reaches to the end of the file.
        std::size_t const size = length == 0 ? bytes.size() : length;
        if (size < BoxHeader || size > bytes.size()) return {};
        if (bigEndian32(bytes, 4) == StreamBox) return bytes.subspan(BoxHeader, size - BoxHeader);
        bytes = bytes.subspan(size);
    }
    return {};
}

// Read before the library does, which makes room for all tiles and components that are announced.
bool hasUsableSizes(std::span<std::byte const> stream, int largestSide) {
    if (stream.size() < SizesEnd || bigEndian32(stream, 0) != StreamStart) return false;
    auto const number = [stream](std::size_t index) { return bigEndian32(stream, SizesPlace + 4 * index); };
    std::uint32_t const width = number(0);
    std::uint32_t const height = number(1);
    std::uint32_t const tileWidth = number(4);
    std::uint32_t const tileHeight = number(5);
    auto const largest = static_cast<std::uint32_t>(largestSide);
    bool const isSmall = width > 0 && height > 0 && width <= largest && height <= largest;
    // The picture and its tiles begin at the corner.
    bool const isAtCorner = number(2) == 0 && number(3) == 0 && number(6) == 0 && number(7) == 0;
    if (!isSmall || !isAtCorner || tileWidth == 0 || tileHeight == 0) return false;
    std::uint32_t const tiles = ((width - 1) / tileWidth + 1) * ((height - 1) / tileHeight + 1);
    std::uint16_t const components = bigEndian16(stream, SizesEnd - sizeof(std::uint16_t));
    return tiles <= MostTiles && components >= 1 && components <= MostComponents;
}

unsigned byteOfStreamAt(std::span<std::byte const> bytes, std::size_t place) {
    return place < bytes.size() ? std::to_integer<unsigned>(bytes[place]) : 0;
}

// The parameters behind the number of decomposition levels, at this place of the segment: sides of code blocks, two
// bytes of style, then the precincts of each resolution if they are announced.
bool hasUsableBlocks(std::span<std::byte const> segment, std::size_t place, bool hasPrecincts) {
    bool const areBlocksLarge = byteOfStreamAt(segment, place) >= LeastBlockExponent &&
                                byteOfStreamAt(segment, place + 1) >= LeastBlockExponent;
    if (!areBlocksLarge) return false;
    if (!hasPrecincts) return true;
    for (std::size_t precinct = place + 4; precinct < segment.size(); ++precinct) {
        unsigned const sides = byteOfStreamAt(segment, precinct);
        if ((sides & 15) < LeastPrecinctExponent || sides >> 4 < LeastPrecinctExponent) return false;
    }
    return true;
}

// The segment begins with its marker.
bool isUsableSegment(std::span<std::byte const> segment) {
    std::uint16_t const mark = bigEndian16(segment, 0);
    if (mark == CodingMark) {
        bool const isLayered = segment.size() >= 8 && bigEndian16(segment, 6) <= MostLayers;
        return isLayered && hasUsableBlocks(segment, 10, (byteOfStreamAt(segment, 4) & 1) != 0);
    }
    if (mark == ComponentCodingMark) return hasUsableBlocks(segment, 7, (byteOfStreamAt(segment, 5) & 1) != 0);
    // In a segment that it does not know the library looks for the next one.
    return mark == SizesMark || std::ranges::find(OtherMarks, mark) != OtherMarks.end();
}

// The main header and that of each part of a tile, whose data are passed over by the length that the part announces.
bool hasUsableSegments(std::span<std::byte const> stream) {
    std::size_t place = sizeof(std::uint16_t);
    // Behind the part of a tile whose header is being read; nothing in the main header.
    std::optional<std::size_t> partEnd;
    while (stream.size() - place >= 2 * sizeof(std::uint16_t)) {
        std::uint16_t const mark = bigEndian16(stream, place);
        if (mark == EndMark) return true;
        if (mark == DataMark) {
            if (!partEnd || *partEnd < place + sizeof mark) return false;
            place = *partEnd;
            partEnd.reset();
            continue;
        }
        std::size_t const length = sizeof mark + bigEndian16(stream, place + sizeof mark);
        if (length < 2 * sizeof mark || length > stream.size() - place) return false;
        std::span<std::byte const> const segment = stream.subspan(place, length);
        if (mark == TilePartMark) {
            if (partEnd || length != TilePartHeader) return false;
            std::size_t const partLength = bigEndian32(segment, 6);
            // A length of 0 reaches to the end of the stream.
            bool const isToEnd = partLength == 0 || partLength > stream.size() - place;
            partEnd = isToEnd ? stream.size() : place + partLength;
        } else if (!isUsableSegment(segment)) {
            return false;
        }
        place += length;
    }
    return true;
}

// The bytes that the library reads.
struct ByteSource {
    std::span<std::byte const> bytes;
    std::size_t position{0};
};

OPJ_SIZE_T readSource(void* buffer, OPJ_SIZE_T count, void* data) {
    auto& source = *static_cast<ByteSource*>(data);
    std::size_t const length = std::min(count, source.bytes.size() - source.position);
    if (length == 0) return static_cast<OPJ_SIZE_T>(-1);
    std::memcpy(buffer, source.bytes.data() + source.position, length);
    source.position += length;
    return length;
}

OPJ_BOOL seekSource(OPJ_OFF_T position, void* data) {
    auto& source = *static_cast<ByteSource*>(data);
    if (position < 0 || static_cast<std::size_t>(position) > source.bytes.size()) return OPJ_FALSE;
    source.position = static_cast<std::size_t>(position);
    return OPJ_TRUE;
}

OPJ_OFF_T skipSource(OPJ_OFF_T count, void* data) {
    auto& source = *static_cast<ByteSource*>(data);
    bool const isWithin = count >= 0 && static_cast<std::size_t>(count) <= source.bytes.size() - source.position;
    if (!isWithin) return -1;
    source.position += static_cast<std::size_t>(count);
    return count;
}

using Codec = std::unique_ptr<opj_codec_t, decltype(&opj_destroy_codec)>;
using Stream = std::unique_ptr<opj_stream_t, decltype(&opj_stream_destroy)>;
using DecodedImage = std::unique_ptr<opj_image_t, decltype(&opj_image_destroy)>;

Stream streamOf(ByteSource& source) {
    Stream stream(opj_stream_default_create(OPJ_TRUE), &opj_stream_destroy);
    if (!stream) return stream;
    opj_stream_set_user_data(stream.get(), &source, nullptr);
    opj_stream_set_user_data_length(stream.get(), source.bytes.size());
    opj_stream_set_read_function(stream.get(), &readSource);
    opj_stream_set_seek_function(stream.get(), &seekSource);
    opj_stream_set_skip_function(stream.get(), &skipSource);
    return stream;
}

DecodedImage decode(std::span<std::byte const> bytes) {
    DecodedImage none(nullptr, &opj_image_destroy);
    ByteSource source{bytes};
    Stream const stream = streamOf(source);
    Codec const codec(opj_create_decompress(OPJ_CODEC_J2K), &opj_destroy_codec);
    opj_dparameters_t parameters{};
    opj_set_default_decoder_parameters(&parameters);
    if (!stream || !codec || !opj_setup_decoder(codec.get(), &parameters)) return none;
    opj_image_t* header = nullptr;
    bool const isRead = opj_read_header(stream.get(), codec.get(), &header) == OPJ_TRUE;
    DecodedImage image(header, &opj_image_destroy);
    if (!isRead || !image || !opj_decode(codec.get(), stream.get(), image.get())) return none;
    return image;
}

bool isWhole(opj_image_t const& image) {
    if (image.numcomps < 1 || image.numcomps > MostComponents) return false;
    for (OPJ_UINT32 index = 0; index < image.numcomps; ++index) {
        opj_image_comp_t const& component = image.comps[index];
        bool const isEqual = component.w == image.comps[0].w && component.h == image.comps[0].h;
        if (!component.data || !isEqual || component.w == 0 || component.h == 0) return false;
        if (component.prec < 1 || component.prec > 16) return false;
    }
    return true;
}

// 0 to 255.
std::uint32_t levelAt(opj_image_comp_t const& component, std::size_t place) {
    std::int64_t const most = (std::int64_t{1} << component.prec) - 1;
    std::int64_t const level = std::int64_t{component.data[place]} + (component.sgnd ? (most + 1) / 2 : 0);
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(level, 0, most) * 255 / most);
}

} // namespace

std::optional<Picture> pictureInJPEG2000(std::span<std::byte const> bytes, int largestSide) {
    std::span<std::byte const> const stream = codeStreamIn(bytes);
    if (!hasUsableSizes(stream, largestSide) || !hasUsableSegments(stream)) return std::nullopt;
    DecodedImage const image = decode(stream);
    if (!image || !isWhole(*image)) return std::nullopt;
    opj_image_comp_t const* const components = image->comps;
    bool const isGrey = image->numcomps < 3;
    bool const hasOpacity = image->numcomps % 2 == 0;
    std::size_t const green = isGrey ? 0 : 1;
    std::size_t const blue = isGrey ? 0 : 2;
    Picture picture = emptyPicture(static_cast<int>(components[0].w), static_cast<int>(components[0].h));
    for (std::size_t place = 0; place < picture.pixels.size(); ++place) {
        std::uint32_t const opacity = hasOpacity ? levelAt(components[image->numcomps - 1], place) : 255;
        picture.pixels[place] = opacity << 24 | levelAt(components[0], place) << 16 |
                                levelAt(components[green], place) << 8 | levelAt(components[blue], place);
    }
    return picture;
}

} // namespace mac
