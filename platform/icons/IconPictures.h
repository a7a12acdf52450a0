#pragma once

#include "platform/icons/IconFamily.h"
#include "platform/icons/Picture.h"
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace mac {

// The pictures in the pieces of an icon, in the order in which their sizes first come: one for each number of pixels
// and points. Of a size the best is taken: with 32 bits a pixel before 8, 4 and 1. Opacity comes from the 8-bit mask of
// the size, else from the mask behind the 1-bit picture. Pieces hold PNG or JPEG 2000 pictures, or pixels, packed or
// not; those that are cut, or larger than LargestIconSide, are passed over. For implementations; any thread.
std::vector<Picture> picturesOfIconParts(std::vector<IconPart> const& parts);

// The contents of a file of type 'icns': its pictures; empty for what contradicts itself.
std::vector<Picture> picturesInIconFile(std::span<std::byte const> bytes);

// The colours 0xFFRRGGBB that numbers of 8 and of 4 bits stand for in icons, the system's own.
std::array<std::uint32_t, 256> const& iconColors8();
std::array<std::uint32_t, 16> const& iconColors4();

// Whether a drawing (SVG) is plain text that names nothing outside of itself: no files, entities, defaults of
// attributes or style sheets, and of embedded images only those in PNG and JPEG. The toolkit's reader opens what a
// drawing names, and holds the caller where that is a pipe. Any thread.
bool isSelfContainedDrawing(std::string_view drawing);

} // namespace mac
