#pragma once

#include "platform/foundation/objects/NSGeometry.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace mac {

// A bitmap in memory. A value; for implementations, any thread, like all functions here.
struct Picture {
    int width{0};
    int height{0};
    // Rows from the top, each pixel 0xAARRGGBB; the colours are not multiplied by the opacity.
    std::vector<std::uint32_t> pixels{};
    // In points: how large the picture is meant to be shown. Half the number of pixels for dense screens.
    NSSize size{};

    bool operator==(Picture const&) const = default;
};

using SharedPicture = std::shared_ptr<Picture const>;

// The largest side of an icon's picture, in pixels, and the most pixels that an image may have: 128 MiB of them.
inline constexpr int LargestIconSide = 1024;
inline constexpr std::size_t MostImagePixels = std::size_t{32} << 20;

// Transparent, one point a pixel. REQUIRES: the sides are positive and the pixels within MostImagePixels.
Picture emptyPicture(int width, int height);

// The pictures in the contents of an image file in any of the formats of the toolkit's readers: the pages of a TIFF
// file and the sizes of an ICO file, of other formats the first picture. Empty for what is no image, is a drawing
// (SVG), or has more pixels in all than MostImagePixels; the headers are read to find that out ahead.
std::vector<Picture> picturesInImageFile(std::span<std::byte const> bytes);
// The picture in the contents of a PNG file; nullopt for anything else, and for a side beyond the limit.
std::optional<Picture> pictureInPNG(std::span<std::byte const> bytes, int largestSide);
// The picture in a JP2 file or a bare code stream of JPEG 2000, which has one to four components of equal size; the
// fourth, or second of two, is opacity. nullopt for anything else and for a side beyond the limit.
std::optional<Picture> pictureInJPEG2000(std::span<std::byte const> bytes, int largestSide);
// A drawing (SVG) as a square picture of so many pixels a side; nullopt for data that is no drawing, and where no
// reader for it is installed. Linux: drawings that are compressed or name files are none: the toolkit opens what they
// name. While the program has no application object, drawings with text in them are none: the toolkit ends a program
// that asks for fonts then.
std::optional<Picture> pictureOfDrawing(std::span<std::byte const> bytes, int side);

std::vector<std::byte> contentsOfPNG(Picture const& picture);

// Smoothly scaled. REQUIRES: as emptyPicture.
Picture scaledPicture(Picture const& picture, int width, int height);
// Lays the picture, scaled, over what is there. The rectangle is in pixels of the lower picture, from its lower left.
void drawPicture(Picture& onto, NSRect const& place, Picture const& picture);

} // namespace mac
