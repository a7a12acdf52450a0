#include "platform/foundation/text/CharacterSetBody.h"
#include <algorithm>
#include <functional>

namespace mac {

void CharacterMembers::add(char32_t first, char32_t end) { put(first, end, true); }

void CharacterMembers::remove(char32_t first, char32_t end) { put(first, end, false); }

void CharacterMembers::put(char32_t first, char32_t end, bool belongs) {
    end = std::min(end, End);
    while (first < end) {
        Plane& plane = m_planes[first / PlaneSize];
        char32_t const planeEnd = std::min<char32_t>(end, (first / PlaneSize + 1) * PlaneSize);
        if (plane.empty()) plane.resize(PlaneSize / WordBits);
        for (; first < planeEnd; ++first) {
            std::size_t const bit = first % PlaneSize;
            std::uint64_t const mask = std::uint64_t{1} << bit % WordBits;
            std::uint64_t& word = plane[bit / WordBits];
            word = belongs ? word | mask : word & ~mask;
        }
        dropIfEmpty(plane);
    }
}

void CharacterMembers::unite(CharacterMembers const& other) {
    for (std::size_t index = 0; index < PlaneCount; ++index) {
        Plane const& added = other.m_planes[index];
        Plane& plane = m_planes[index];
        if (plane.empty()) plane.resize(added.size());
        std::ranges::transform(plane.begin(), plane.begin() + static_cast<std::ptrdiff_t>(added.size()), added.begin(),
                               added.end(), plane.begin(), std::bit_or<>());
    }
}

void CharacterMembers::intersect(CharacterMembers const& other) {
    for (std::size_t index = 0; index < PlaneCount; ++index) {
        Plane const& kept = other.m_planes[index];
        Plane& plane = m_planes[index];
        if (kept.empty()) plane.clear();
        std::ranges::transform(plane, kept, plane.begin(), std::bit_and<>());
        dropIfEmpty(plane);
    }
}

void CharacterMembers::invert() {
    for (Plane& plane : m_planes) {
        plane.resize(PlaneSize / WordBits);
        std::ranges::transform(plane, plane.begin(), std::bit_not<>());
        dropIfEmpty(plane);
    }
}

bool CharacterMembers::holdsAllOf(CharacterMembers const& other) const {
    CharacterMembers common = *this;
    common.intersect(other);
    return common == other;
}

std::vector<std::byte> CharacterMembers::bytesOfPlane(std::size_t index) const {
    std::vector<std::byte> bytes(PlaneBytes);
    Plane const& plane = m_planes[index];
    for (std::size_t byte = 0; byte < plane.size() * sizeof(std::uint64_t); ++byte)
        bytes[byte] = static_cast<std::byte>(plane[byte / 8] >> byte % 8 * 8);
    return bytes;
}

void CharacterMembers::setBytesOfPlane(std::size_t index, std::byte const* bytes) {
    Plane& plane = m_planes[index];
    plane.assign(PlaneSize / WordBits, 0);
    for (std::size_t byte = 0; byte < PlaneBytes; ++byte)
        plane[byte / 8] |= std::to_integer<std::uint64_t>(bytes[byte]) << byte % 8 * 8;
    dropIfEmpty(plane);
}

std::uint64_t CharacterMembers::hash() const {
    std::uint64_t hash = 0;
    for (Plane const& plane : m_planes) {
        hash = hash * 31 + plane.size();
        for (std::uint64_t const word : plane) {
            hash = (hash ^ word) * 0x9E3779B97F4A7C15;
            hash ^= hash >> 32;
        }
    }
    return hash;
}

void CharacterMembers::dropIfEmpty(Plane& plane) {
    if (std::ranges::all_of(plane, [](std::uint64_t word) { return word == 0; })) plane.clear();
}

} // namespace mac
