#include "platform/icons/IconFamily.h"
#include "platform/system/BigEndian.h"
#include <algorithm>

namespace mac {

namespace {

constexpr OSType FamilyType{"icns"};
constexpr OSType TableOfContents{"TOC "};
// Type and length before the bytes of a family and of each piece.
constexpr std::size_t HeaderSize = 8;

void appendNumber(std::vector<std::byte>& bytes, std::size_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::byte>(value >> shift & 0xFF));
}

void appendHeader(std::vector<std::byte>& bytes, OSType type, std::size_t contents) {
    appendNumber(bytes, type.value());
    appendNumber(bytes, contents + HeaderSize);
}

} // namespace

std::optional<std::vector<IconPart>> readIconFamily(std::span<std::byte const> bytes) {
    if (bytes.size() < HeaderSize || OSType(bigEndian32(bytes, 0)) != FamilyType) return std::nullopt;
    std::size_t const length = bigEndian32(bytes, sizeof(std::uint32_t));
    if (length < HeaderSize || length > bytes.size()) return std::nullopt;
    std::span<std::byte const> rest = bytes.subspan(HeaderSize, length - HeaderSize);
    std::vector<IconPart> parts;
    while (!rest.empty()) {
        if (rest.size() < HeaderSize) return std::nullopt;
        OSType const type(bigEndian32(rest, 0));
        std::size_t const size = bigEndian32(rest, sizeof(std::uint32_t));
        if (size < HeaderSize || size > rest.size()) return std::nullopt;
        bool const isNew = std::ranges::find(parts, type, &IconPart::type) == parts.end();
        if (isNew && type != TableOfContents) {
            std::span<std::byte const> const contents = rest.subspan(HeaderSize, size - HeaderSize);
            parts.push_back({type, {contents.begin(), contents.end()}});
        }
        // Thousands of pieces are none of an icon, and each is compared with all before it.
        constexpr std::size_t mostParts = 256;
        if (parts.size() > mostParts) return std::nullopt;
        rest = rest.subspan(size);
    }
    return parts;
}

std::vector<std::byte> contentsOfIconFamily(std::span<IconPart const> parts) {
    std::vector<std::byte> pieces;
    for (IconPart const& part : parts) {
        appendHeader(pieces, part.type, part.bytes.size());
        pieces.insert(pieces.end(), part.bytes.begin(), part.bytes.end());
    }
    std::vector<std::byte> contents;
    appendHeader(contents, FamilyType, pieces.size());
    contents.insert(contents.end(), pieces.begin(), pieces.end());
    return contents;
}

} // namespace mac
