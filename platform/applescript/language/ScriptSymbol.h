#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace mac::applescript {

// A four-character code of a term, most significant character first.
using Code = std::uint32_t;

consteval Code codeOf(char const (&text)[5]) {
    Code code = 0;
    for (std::size_t index = 0; index < 4; ++index)
        code = code << 8U | static_cast<unsigned char>(text[index]);
    return code;
}

// A name: a term with its code, or an identifier of the script's author with code 0. Names are interned and live as
// long as the process; every spelling of one name has the same `canonical`. Main thread.
struct ScriptSymbol {
    std::u16string spelling;
    ScriptSymbol const* canonical{nullptr};
    Code code{0};
};

using Symbol = ScriptSymbol const*;

// Letters of any case are the same name; the answer keeps the spelling.
Symbol identifierSymbol(std::u16string_view spelling);
// The term of the code, shown in that spelling; every spelling of it is the same name.
Symbol termSymbol(Code code, std::u16string_view spelling);

inline bool isSameName(Symbol one, Symbol other) { return one->canonical == other->canonical; }

// The lower case that names are compared in.
std::u16string foldedName(std::u16string_view name);

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
