#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mac {

// What the binary reader and writer agree on.

// Two digits of version follow; those that begin with 0 have this layout.
inline constexpr std::string_view kBinaryMagic = "bplist";
inline constexpr std::string_view kBinaryHead = "bplist00";
inline constexpr std::size_t kBinaryTrailerSize = 32;
// Fields of the trailer, from its start: sizes in bytes of an offset and of a reference, then big-endian 64-bit
// numbers.
inline constexpr std::size_t kBinaryOffsetSizeField = 6;
inline constexpr std::size_t kBinaryReferenceSizeField = 7;
inline constexpr std::size_t kBinaryCountField = 8;
inline constexpr std::size_t kBinaryTopField = 16;
inline constexpr std::size_t kBinaryTableField = 24;

// The upper half of an object's first byte; the lower half is a size.
enum class BinaryMarker : std::uint8_t {
    Single = 0x0,
    Integer = 0x1,
    Real = 0x2,
    Date = 0x3,
    Data = 0x4,
    ASCII = 0x5,
    UTF16 = 0x6,
    // A UID in a keyed archive. The lower half is the number of bytes less one.
    Identifier = 0x8,
    Array = 0xA,
    Dictionary = 0xD,
};
inline constexpr std::uint8_t kBinaryFalse = 0x08;
inline constexpr std::uint8_t kBinaryTrue = 0x09;
// The only date there is: eight bytes.
inline constexpr std::uint8_t kBinaryDate = 0x33;
// In the lower half: the size is in an integer object that follows.
inline constexpr std::uint8_t kBinaryLongSize = 0xF;

} // namespace mac
