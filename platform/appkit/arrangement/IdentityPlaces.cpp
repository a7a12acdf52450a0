#include "platform/appkit/arrangement/IdentityPlaces.h"
#include <bit>

namespace mac {

IdentityPlaces::IdentityPlaces(bool isByValue, std::size_t count)
    : m_isByValue(isByValue), m_slots(std::bit_ceil(2 * count + 1)) {}

std::uint64_t IdentityPlaces::hashOf(id const& identity) const {
    std::uint64_t const hash = m_isByValue ? identity.hash() : reinterpret_cast<std::uintptr_t>(identity.body());
    // Spreads what differs in a few bits over all of them.
    return (hash ^ hash >> 32) * 0x9E3779B97F4A7C15U;
}

bool IdentityPlaces::areSame(id const& first, id const& second) const {
    return isSame(first, second) || (m_isByValue && first.isEqual_(second));
}

void IdentityPlaces::add(id const& identity, std::size_t place) {
    if (identity == nil) return;
    std::uint64_t const hash = hashOf(identity);
    std::size_t slot = hash >> 20 & (m_slots.size() - 1);
    while (m_slots[slot].identity != nil)
        slot = (slot + 1) & (m_slots.size() - 1);
    m_slots[slot] = {hash, place, identity};
}

std::optional<std::size_t> IdentityPlaces::take(id const& identity) {
    if (identity == nil) return std::nullopt;
    std::uint64_t const hash = hashOf(identity);
    std::size_t slot = hash >> 20 & (m_slots.size() - 1);
    for (; m_slots[slot].identity != nil; slot = (slot + 1) & (m_slots.size() - 1)) {
        Slot& found = m_slots[slot];
        if (found.isTaken || found.hash != hash || !areSame(found.identity, identity)) continue;
        found.isTaken = true;
        return found.place;
    }
    return std::nullopt;
}

} // namespace mac
