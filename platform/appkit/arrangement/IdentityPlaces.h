#pragma once

#include "platform/foundation/objects/Object.h"
#include <optional>
#include <vector>

namespace mac {

// Finds the place at which an object of some identity stood: equal values, or the very same object. Nil has no
// identity.
class IdentityPlaces {
public:
    IdentityPlaces(bool isByValue, std::size_t count);

    // The places of equal ones are given away in the order of adding.
    void add(id const& identity, std::size_t place);
    // Takes a free place and answers it; nullopt if none is left.
    std::optional<std::size_t> take(id const& identity);

private:
    // A table with open addressing, at most half full.
    struct Slot {
        std::uint64_t hash{0};
        std::size_t place{0};
        id identity{};
        bool isTaken{false};
    };

    std::uint64_t hashOf(id const& identity) const;
    bool areSame(id const& first, id const& second) const;

    bool m_isByValue;
    std::vector<Slot> m_slots;
};

} // namespace mac
