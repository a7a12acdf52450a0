#include "platform/icons/IconPictures.h"
#include "platform/system/BigEndian.h"
#include <algorithm>
#include <functional>

namespace mac {

namespace {

using PieceBytes = std::span<std::byte const>;

enum class Form {
    // A PNG or JPEG 2000 file, or, where the piece is small, packed pixels.
    File,
    // Red, green and blue one behind the other, packed; 0xXXRRGGBB if the piece has just that length.
    Packed,
    // Opacity, red, green and blue one behind the other, packed, behind the letters ARGB.
    PackedWithOpacity,
    EightBits,
    FourBits,
    // One bit for each pixel, then one bit for each pixel of a mask.
    OneBit,
};

struct PieceKind {
    OSType type;
    Form form;
    // In pixels.
    int width;
    int height;
    // Pixels to a point.
    int scale{1};
};

constexpr std::array Kinds{
    PieceKind{OSType("icm#"), Form::OneBit, 16, 12},
    PieceKind{OSType("icm4"), Form::FourBits, 16, 12},
    PieceKind{OSType("icm8"), Form::EightBits, 16, 12},
    PieceKind{OSType("ics#"), Form::OneBit, 16, 16},
    PieceKind{OSType("ics4"), Form::FourBits, 16, 16},
    PieceKind{OSType("ics8"), Form::EightBits, 16, 16},
    PieceKind{OSType("is32"), Form::Packed, 16, 16},
    PieceKind{OSType("icp4"), Form::File, 16, 16},
    PieceKind{OSType("ic04"), Form::PackedWithOpacity, 16, 16},
    PieceKind{OSType("ICN#"), Form::OneBit, 32, 32},
    PieceKind{OSType("icl4"), Form::FourBits, 32, 32},
    PieceKind{OSType("icl8"), Form::EightBits, 32, 32},
    PieceKind{OSType("il32"), Form::Packed, 32, 32},
    PieceKind{OSType("icp5"), Form::File, 32, 32},
    PieceKind{OSType("ic05"), Form::PackedWithOpacity, 32, 32, 2},
    PieceKind{OSType("ic11"), Form::File, 32, 32, 2},
    PieceKind{OSType("ich#"), Form::OneBit, 48, 48},
    PieceKind{OSType("ich4"), Form::FourBits, 48, 48},
    PieceKind{OSType("ich8"), Form::EightBits, 48, 48},
    PieceKind{OSType("ih32"), Form::Packed, 48, 48},
    PieceKind{OSType("icp6"), Form::File, 64, 64},
    PieceKind{OSType("ic12"), Form::File, 64, 64, 2},
    PieceKind{OSType("it32"), Form::Packed, 128, 128},
    PieceKind{OSType("ic07"), Form::File, 128, 128},
    PieceKind{OSType("ic08"), Form::File, 256, 256},
    PieceKind{OSType("ic13"), Form::File, 256, 256, 2},
    PieceKind{OSType("ic09"), Form::File, 512, 512},
    PieceKind{OSType("ic14"), Form::File, 512, 512, 2},
    PieceKind{OSType("ic10"), Form::File, 1024, 1024, 2},
};

// The masks of 8 bits a pixel, by the side of their pictures.
struct MaskKind {
    OSType type;
    int side;
};
constexpr std::array Masks{MaskKind{OSType("s8mk"), 16}, MaskKind{OSType("l8mk"), 32}, MaskKind{OSType("h8mk"), 48},
                           MaskKind{OSType("t8mk"), 128}};

std::uint32_t byteAt(PieceBytes bytes, std::size_t place) { return std::to_integer<std::uint32_t>(bytes[place]); }

PieceBytes bytesOfType(std::vector<IconPart> const& parts, OSType type) {
    auto const part = std::ranges::find(parts, type, &IconPart::type);
    return part == parts.end() ? PieceBytes() : PieceBytes(part->bytes);
}

// Unpacks `count` bytes from runs: from 0x80 on a byte says how often, less 125, the next one is repeated; below, how
// many, less one, follow as they are. Empty where they are too few.
std::vector<std::byte> unpacked(PieceBytes packed, std::size_t count) {
    constexpr std::size_t firstRun = 0x80;
    constexpr std::size_t shortestRun = 3;
    std::vector<std::byte> bytes;
    bytes.reserve(count);
    std::size_t place = 0;
    while (bytes.size() < count && place < packed.size()) {
        std::size_t const head = byteAt(packed, place++);
        if (head >= firstRun) {
            if (place == packed.size()) return {};
            bytes.insert(bytes.end(), head - firstRun + shortestRun, packed[place++]);
            continue;
        }
        std::size_t const length = head + 1;
        if (length > packed.size() - place) return {};
        PieceBytes const literal = packed.subspan(place, length);
        bytes.insert(bytes.end(), literal.begin(), literal.end());
        place += length;
    }
    if (bytes.size() < count) return {};
    bytes.resize(count);
    return bytes;
}

// The channels lie one behind the other, as many as there are; without opacity the pixels are opaque.
std::optional<Picture> pictureOfChannels(PieceKind const& kind, std::vector<std::byte> const& bytes,
                                         std::size_t channels) {
    Picture picture = emptyPicture(kind.width, kind.height);
    std::size_t const count = picture.pixels.size();
    if (bytes.size() != count * channels) return std::nullopt;
    for (std::size_t place = 0; place < count; ++place) {
        std::uint32_t pixel = channels == 3 ? 0xFF : 0;
        for (std::size_t channel = 0; channel < channels; ++channel)
            pixel = pixel << 8 | byteAt(bytes, channel * count + place);
        picture.pixels[place] = pixel;
    }
    return picture;
}

std::optional<Picture> pictureOfPackedPixels(PieceKind const& kind, PieceBytes bytes) {
    Picture picture = emptyPicture(kind.width, kind.height);
    std::size_t const count = picture.pixels.size();
    if (bytes.size() == count * sizeof(std::uint32_t)) {
        for (std::size_t place = 0; place < count; ++place)
            picture.pixels[place] = 0xFF000000 | bigEndian32(bytes, place * sizeof(std::uint32_t));
        return picture;
    }
    // Four bytes of zeros stand before the pixels of the largest.
    if (kind.type == OSType("it32")) bytes = bytes.size() > 4 ? bytes.subspan(4) : PieceBytes();
    return pictureOfChannels(kind, unpacked(bytes, count * 3), 3);
}

std::optional<Picture> pictureOfPackedPixelsWithOpacity(PieceKind const& kind, PieceBytes bytes) {
    constexpr std::uint32_t letters = OSType("ARGB").value();
    if (bytes.size() < sizeof(letters) || bigEndian32(bytes, 0) != letters) return pictureInPNG(bytes, LargestIconSide);
    std::size_t const count = std::size_t(kind.width) * std::size_t(kind.height);
    return pictureOfChannels(kind, unpacked(bytes.subspan(sizeof(letters)), count * 4), 4);
}

// Pixels as numbers of so many bits, the first in the highest bits of a byte.
std::optional<Picture> pictureOfNumbers(PieceKind const& kind, PieceBytes bytes, unsigned bits,
                                        std::span<std::uint32_t const> colors) {
    Picture picture = emptyPicture(kind.width, kind.height);
    std::size_t const perByte = 8 / bits;
    if (bytes.size() < picture.pixels.size() / perByte) return std::nullopt;
    for (std::size_t place = 0; place < picture.pixels.size(); ++place) {
        unsigned const shift = static_cast<unsigned>(perByte - 1 - place % perByte) * bits;
        std::size_t const number = byteAt(bytes, place / perByte) >> shift & ((1U << bits) - 1);
        picture.pixels[place] = colors[number];
    }
    return picture;
}

std::optional<Picture> pictureInFile(PieceKind const& kind, PieceBytes bytes) {
    if (std::optional<Picture> picture = pictureInPNG(bytes, LargestIconSide)) return picture;
    if (std::optional<Picture> picture = pictureInJPEG2000(bytes, LargestIconSide)) return picture;
    bool const mayBePacked = kind.type == OSType("icp4") || kind.type == OSType("icp5");
    return mayBePacked ? pictureOfPackedPixels(kind, bytes) : std::nullopt;
}

std::optional<Picture> pictureOfPiece(PieceKind const& kind, PieceBytes bytes) {
    static constexpr std::array<std::uint32_t, 2> whiteAndBlack{0xFFFFFFFF, 0xFF000000};
    switch (kind.form) {
    case Form::File:
        return pictureInFile(kind, bytes);
    case Form::Packed:
        return pictureOfPackedPixels(kind, bytes);
    case Form::PackedWithOpacity:
        return pictureOfPackedPixelsWithOpacity(kind, bytes);
    case Form::EightBits:
        return pictureOfNumbers(kind, bytes, 8, iconColors8());
    case Form::FourBits:
        return pictureOfNumbers(kind, bytes, 4, iconColors4());
    case Form::OneBit:
        break;
    }
    return pictureOfNumbers(kind, bytes, 1, whiteAndBlack);
}

bool hasMaskOfItsOwn(Form form) { return form == Form::File || form == Form::PackedWithOpacity; }

// Gives the picture the opacity that the icon's masks say, and leaves it opaque where there is none.
void applyMask(Picture& picture, PieceKind const& kind, std::vector<IconPart> const& parts) {
    auto const mask = std::ranges::find(Masks, kind.width, &MaskKind::side);
    PieceBytes const levels =
        mask != Masks.end() && kind.width == kind.height ? bytesOfType(parts, mask->type) : PieceBytes();
    std::size_t const count = picture.pixels.size();
    constexpr std::uint32_t colorBits = 0x00FFFFFF;
    if (levels.size() >= count) {
        for (std::size_t place = 0; place < count; ++place)
            picture.pixels[place] = (picture.pixels[place] & colorBits) | byteAt(levels, place) << 24;
        return;
    }
    auto const oneBit = std::ranges::find_if(Kinds, [&kind](PieceKind const& other) {
        return other.form == Form::OneBit && other.width == kind.width && other.height == kind.height;
    });
    PieceBytes const bits = oneBit == Kinds.end() ? PieceBytes() : bytesOfType(parts, oneBit->type);
    if (bits.size() < count / 4) return;
    for (std::size_t place = 0; place < count; ++place) {
        bool const isSeen = (byteAt(bits, count / 8 + place / 8) >> (7 - place % 8) & 1) != 0;
        if (!isSeen) picture.pixels[place] &= colorBits;
    }
}

std::optional<Picture> maskedPicture(PieceKind const& kind, PieceBytes bytes, std::vector<IconPart> const& parts) {
    std::optional<Picture> picture = pictureOfPiece(kind, bytes);
    if (!picture) return std::nullopt;
    if (!hasMaskOfItsOwn(kind.form)) applyMask(*picture, kind, parts);
    auto const scale = static_cast<float>(kind.scale);
    picture->size = {static_cast<float>(picture->width) / scale, static_cast<float>(picture->height) / scale};
    return picture;
}

} // namespace

std::vector<Picture> picturesOfIconParts(std::vector<IconPart> const& parts) {
    struct Found {
        Picture picture;
        Form form;
    };
    std::vector<Found> found;
    for (IconPart const& part : parts) {
        auto const kind = std::ranges::find(Kinds, part.type, &PieceKind::type);
        if (kind == Kinds.end()) continue;
        std::optional<Picture> picture = maskedPicture(*kind, part.bytes, parts);
        if (!picture) continue;
        auto const known = std::ranges::find_if(found, [&picture](Found const& other) {
            return other.picture.width == picture->width && other.picture.height == picture->height &&
                   other.picture.size == picture->size;
        });
        if (known == found.end())
            found.push_back({std::move(*picture), kind->form});
        else if (kind->form < known->form)
            *known = {std::move(*picture), kind->form};
    }
    std::vector<Picture> pictures;
    for (Found& one : found)
        pictures.push_back(std::move(one.picture));
    return pictures;
}

std::vector<Picture> picturesInIconFile(std::span<std::byte const> bytes) {
    return picturesOfIconParts(readIconFamily(bytes).value_or(std::vector<IconPart>()));
}

} // namespace mac
