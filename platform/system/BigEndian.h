#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace mac {

// Big-endian numbers in a file. REQUIRES: the number at `place`, an offset in bytes, lies within the bytes. For
// implementations.

template <class Number>
Number bigEndian(std::span<std::byte const> bytes, std::size_t place) {
    std::uint64_t value = 0;
    for (std::byte const byte : bytes.subspan(place, sizeof(Number)))
        value = value << 8 | std::to_integer<std::uint64_t>(byte);
    return static_cast<Number>(value);
}

inline std::uint16_t bigEndian16(std::span<std::byte const> bytes, std::size_t place) {
    return bigEndian<std::uint16_t>(bytes, place);
}

inline std::uint32_t bigEndian32(std::span<std::byte const> bytes, std::size_t place) {
    return bigEndian<std::uint32_t>(bytes, place);
}

} // namespace mac
