#include "platform/icons/Picture.h"
#include "platform/system/BigEndian.h"
#include <algorithm>
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
    if (!hasUsableSizes(stream, largestSide)) return std::nullopt;
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
