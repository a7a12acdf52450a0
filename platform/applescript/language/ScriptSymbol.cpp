#include "platform/applescript/language/ScriptSymbol.h"
#include <algorithm>
#include <deque>
#include <memory>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unordered_map>

namespace mac::applescript {

namespace {

using SymbolTable = std::unordered_map<std::u16string, std::unique_ptr<ScriptSymbol>>;

SymbolTable& identifiers() {
    static SymbolTable table;
    return table;
}

Symbol interned(std::u16string_view spelling) {
    std::unique_ptr<ScriptSymbol>& entry = identifiers()[std::u16string(spelling)];
    if (entry) return entry.get();
    entry = std::make_unique<ScriptSymbol>();
    ScriptSymbol* const made = entry.get();
    made->spelling = spelling;
    std::u16string const folded = foldedName(spelling);
    made->canonical = folded == spelling ? made : interned(folded);
    return made;
}

bool isAscii(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
}

} // namespace

std::u16string foldedName(std::u16string_view name) {
    std::u16string folded(name);
    if (isAscii(name)) {
        for (char16_t& unit : folded)
            if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + (u'a' - u'A'));
        return folded;
    }
    // Folding at most triples the length.
    std::u16string target(name.size() * 3, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t const length = u_strFoldCase(target.data(), static_cast<std::int32_t>(target.size()), name.data(),
                                              static_cast<std::int32_t>(name.size()), U_FOLD_CASE_DEFAULT, &status);
    if (U_FAILURE(status)) return folded;
    target.resize(static_cast<std::size_t>(length));
    return target;
}

Symbol identifierSymbol(std::u16string_view spelling) { return interned(spelling); }

Symbol termSymbol(Code code, std::u16string_view spelling) {
    // By their spellings: one application calls "home" what another calls "home directory".
    static std::unordered_map<Code, std::deque<ScriptSymbol>> terms;
    std::deque<ScriptSymbol>& known = terms[code];
    auto const found = std::ranges::find(known, spelling, &ScriptSymbol::spelling);
    if (found != known.end()) return &*found;
    ScriptSymbol& made = known.emplace_back();
    made.spelling = spelling;
    made.canonical = &known.front();
    made.code = code;
    return &made;
}

} // namespace mac::applescript
