#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace mac::test {

// Icon files and resource forks, built byte by byte.

inline std::string bigEndianText(std::uint32_t value, int bytes) {
    std::string text;
    for (int index = bytes - 1; index >= 0; --index)
        text += static_cast<char>(value >> (8 * index) & 0xFF);
    return text;
}

inline std::string iconPiece(std::string_view type, std::string_view contents) {
    return std::string(type).append(bigEndianText(static_cast<std::uint32_t>(contents.size() + 8), 4)).append(contents);
}

inline std::string iconFamily(std::string_view pieces) { return iconPiece("icns", pieces); }

// `count` equal bytes, packed in runs.
inline std::string packedRun(std::size_t count, std::uint8_t value) {
    constexpr std::size_t longestRun = 130;
    constexpr std::size_t shortestRun = 3;
    std::string packed;
    while (count >= shortestRun) {
        // The rest is never too short for a run.
        std::size_t const length = count > longestRun + shortestRun ? longestRun : std::min(count, longestRun);
        packed += static_cast<char>(length + 125);
        packed += static_cast<char>(value);
        count -= length;
    }
    if (count > 0) packed += static_cast<char>(count - 1) + std::string(count, static_cast<char>(value));
    return packed;
}

// Pixels of one colour 0xRRGGBB as the pieces 'is32', 'il32' and 'ih32' hold them.
inline std::string packedPixels(int side, std::uint32_t color) {
    auto const count = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
    return packedRun(count, static_cast<std::uint8_t>(color >> 16)) +
           packedRun(count, static_cast<std::uint8_t>(color >> 8)) + packedRun(count, static_cast<std::uint8_t>(color));
}

// An icon of 32 pixels a side in one colour.
inline std::string coloredFamily(std::uint32_t color) { return iconFamily(iconPiece("il32", packedPixels(32, color))); }

// One resource of that type and number.
inline std::string resourceFork(std::string_view type, int number, std::string_view resource) {
    std::string const data = bigEndianText(static_cast<std::uint32_t>(resource.size()), 4).append(resource);
    std::string const reference = bigEndianText(static_cast<std::uint16_t>(number), 2) + "\xFF\xFF" +
                                  std::string(1, '\0') + bigEndianText(0, 3) + bigEndianText(0, 4);
    std::string const types = bigEndianText(0, 2) + std::string(type) + bigEndianText(0, 2) + bigEndianText(10, 2);
    std::string const map = std::string(24, '\0') + bigEndianText(28, 2) + bigEndianText(50, 2) + types + reference;
    constexpr std::uint32_t headerSize = 16;
    auto const dataSize = static_cast<std::uint32_t>(data.size());
    return bigEndianText(headerSize, 4) + bigEndianText(headerSize + dataSize, 4) + bigEndianText(dataSize, 4) +
           bigEndianText(static_cast<std::uint32_t>(map.size()), 4) + data + map;
}

} // namespace mac::test
