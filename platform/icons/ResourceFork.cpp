#include "platform/icons/ResourceFork.h"
#include "platform/system/BigEndian.h"

namespace mac {

namespace {

using Bytes = std::span<std::byte const>;

constexpr std::size_t ForkHeaderSize = 16;
constexpr std::size_t TypeListPlace = 24;
constexpr std::size_t TypeSize = 8;
constexpr std::size_t ReferenceSize = 12;

// nullopt if the range does not lie within the data.
std::optional<Bytes> part(Bytes bytes, std::size_t place, std::size_t size) {
    if (place > bytes.size() || size > bytes.size() - place) return std::nullopt;
    return bytes.subspan(place, size);
}

std::optional<Bytes> from(Bytes bytes, std::size_t place) {
    return place <= bytes.size() ? std::optional(bytes.subspan(place)) : std::nullopt;
}

// Counts are stored less one; 0xFFFF means 0.
std::size_t countAt(Bytes bytes, std::size_t place) {
    return static_cast<std::uint16_t>(bigEndian16(bytes, place) + 1);
}

// The references to the resources of a type.
std::optional<Bytes> referencesOf(Bytes typeList, OSType type) {
    constexpr std::size_t countSize = 2;
    if (typeList.size() < countSize) return std::nullopt;
    std::optional<Bytes> const types = part(typeList, countSize, countAt(typeList, 0) * TypeSize);
    if (!types) return std::nullopt;
    for (std::size_t place = 0; place < types->size(); place += TypeSize) {
        if (OSType(bigEndian32(*types, place)) != type) continue;
        return part(typeList, bigEndian16(*types, place + 6), countAt(*types, place + 4) * ReferenceSize);
    }
    return std::nullopt;
}

} // namespace

std::optional<Bytes> resourceInFork(Bytes fork, OSType type, std::int16_t number) {
    if (fork.size() < ForkHeaderSize) return std::nullopt;
    std::optional<Bytes> const data = part(fork, bigEndian32(fork, 0), bigEndian32(fork, 8));
    std::optional<Bytes> const map = part(fork, bigEndian32(fork, 4), bigEndian32(fork, 12));
    if (!data || !map || map->size() < TypeListPlace + sizeof(std::uint16_t)) return std::nullopt;
    std::optional<Bytes> const typeList = from(*map, bigEndian16(*map, TypeListPlace));
    std::optional<Bytes> const references = typeList ? referencesOf(*typeList, type) : std::nullopt;
    if (!references) return std::nullopt;
    for (std::size_t place = 0; place < references->size(); place += ReferenceSize) {
        if (static_cast<std::int16_t>(bigEndian16(*references, place)) != number) continue;
        // The place is kept in 24 bits, behind one byte of flags.
        constexpr std::uint32_t placeBits = 0x00FFFFFF;
        std::optional<Bytes> const resource = from(*data, bigEndian32(*references, place + 4) & placeBits);
        if (!resource || resource->size() < sizeof(std::uint32_t)) return std::nullopt;
        return part(*resource, sizeof(std::uint32_t), bigEndian32(*resource, 0));
    }
    return std::nullopt;
}

} // namespace mac
