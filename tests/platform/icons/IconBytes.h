#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace mac::test {

// Files of icons and resource forks, made by hand.

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
