#pragma once

#include "platform/applescript/language/ScriptSymbol.h"
#include <optional>
#include <unordered_map>

namespace mac::applescript {

// The places of names in a list, so that a name is found at once however many there are. Every spelling of a name is
// the same one.
class NameIndex {
public:
    // The place of the name; nullopt if it is not there.
    std::optional<std::uint32_t> placeOf(Symbol name) const {
        auto const found = m_places.find(name->canonical);
        return found == m_places.end() ? std::nullopt : std::optional(found->second);
    }
    bool contains(Symbol name) const { return m_places.contains(name->canonical); }
    // The place of the name, which is the next free one for a new name.
    std::uint32_t add(Symbol name) {
        return m_places.emplace(name->canonical, static_cast<std::uint32_t>(m_places.size())).first->second;
    }
    std::uint32_t size() const { return static_cast<std::uint32_t>(m_places.size()); }

private:
    std::unordered_map<Symbol, std::uint32_t> m_places;
};

} // namespace mac::applescript
