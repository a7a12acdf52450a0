#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// The constants of the AppleDouble format, whose numbers are big-endian.
namespace mac::appledouble {

inline constexpr std::uint32_t Magic = 0x00051607;
inline constexpr std::uint32_t Version = 0x00020000;
// Mac OS X writes its name here, other programs that of the item's home file system.
inline constexpr std::string_view HomeFileSystem = "Mac OS X        ";
// Magic, version, home file system, count of parts.
inline constexpr std::size_t HeaderSize = 26;
// Kind, offset, length.
inline constexpr std::size_t PartEntrySize = 12;
inline constexpr std::uint32_t ResourceForkKind = 2;
inline constexpr std::uint32_t FinderInformationKind = 9;

// The table of attributes starts this many bytes after the start of the Finder information's entry; its offsets count
// from the start of the file.
inline constexpr std::size_t TableDistance = 34;
inline constexpr std::uint32_t TableMagic = 0x41545452; // "ATTR"
// Magic, tag, end, start of the values, length of the values, three reserved, flags, count of attributes.
inline constexpr std::size_t TableHeaderSize = 36;
// Offset, length, flags, length of the name with its NUL; the name follows.
inline constexpr std::size_t AttributeEntrySize = 11;
inline constexpr std::size_t AttributeAlignment = 4;
inline constexpr std::size_t LongestName = 254;
// More attributes than any item carries; a limit for hostile files.
inline constexpr std::size_t MostAttributes = 1024;

} // namespace mac::appledouble
