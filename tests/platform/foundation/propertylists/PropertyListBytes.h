#pragma once

#include <cstdint>
#include <string>

namespace mac::test {

// Text that may hold NUL.
inline std::string operator""_bytes(char const* text, std::size_t size) { return {text, size}; }

// The number in width bytes, the highest byte first.
inline std::string bigEndian(std::uint64_t value, std::size_t width) {
    std::string bytes;
    for (std::size_t shift = width * 8; shift > 0; shift -= 8)
        bytes += shift > 64 ? '\0' : static_cast<char>(value >> (shift - 8));
    return bytes;
}

} // namespace mac::test
