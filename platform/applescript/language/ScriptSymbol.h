#pragma once

#include <cstdint>
#include <string>
#include <string_view>

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

} // namespace mac::applescript
