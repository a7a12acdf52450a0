#pragma once

#include "platform/foundation/text/NSCharacterSet.h"
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace mac {

// Which of all characters (0 to 0x10FFFF, the halves of pairs among them) belong to a set, as a map of bits for each
// plane that has any. For implementations.
class CharacterMembers {
public:
    static constexpr std::size_t PlaneCount = 17;
    static constexpr std::size_t PlaneSize = 0x10000;
    static constexpr std::size_t PlaneBytes = PlaneSize / 8;
    static constexpr char32_t End = PlaneCount * PlaneSize;

    bool contains(char32_t character) const {
        Plane const& plane = m_planes[character / PlaneSize];
        std::size_t const bit = character % PlaneSize;
        return !plane.empty() && (plane[bit / WordBits] >> bit % WordBits & 1) != 0;
    }
    bool hasPlane(std::size_t index) const { return !m_planes[index].empty(); }
    // From the first to before the end.
    void add(char32_t first, char32_t end);
    void remove(char32_t first, char32_t end);
    void unite(CharacterMembers const& other);
    void intersect(CharacterMembers const& other);
    void invert();
    bool holdsAllOf(CharacterMembers const& other) const;

    // A bit for each character of the plane, the lowest of the first byte first.
    std::vector<std::byte> bytesOfPlane(std::size_t index) const;
    void setBytesOfPlane(std::size_t index, std::byte const* bytes);

    std::uint64_t hash() const;
    bool operator==(CharacterMembers const&) const = default;

private:
    static constexpr std::size_t WordBits = 64;
    // Empty where no character of the plane belongs.
    using Plane = std::vector<std::uint64_t>;

    void put(char32_t first, char32_t end, bool belongs);
    static void dropIfEmpty(Plane& plane);

    std::array<Plane, PlaneCount> m_planes;
};

// The members of an immutable or mutable set, for implementations: which of the two it is, its class says.
class NSCharacterSet::Body : public ObjectBody {
public:
    Body() = default;
    explicit Body(CharacterMembers members) : m_members(std::move(members)) {}

    CharacterMembers& members() { return m_members; }

    bool isEqual(id const& other) const override;
    std::uint64_t hash() const override { return m_members.hash(); }
    id copy() const override;
    id mutableCopy() const override;

private:
    CharacterMembers m_members;
};

} // namespace mac
