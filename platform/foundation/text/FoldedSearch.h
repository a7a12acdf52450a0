#pragma once

#include "platform/foundation/text/LinearSearch.h"
#include "platform/foundation/text/TextFolding.h"
#include "platform/foundation/text/TextSearch.h"
#include <optional>

namespace mac {

// Finds folded text in time that grows with the length of the text: a match takes whole characters of it, with all
// their marks. For implementations; the texts must outlive it.
class FoldedSearch {
public:
    FoldedSearch(std::u16string_view text, std::u16string_view sought, TextFolding const& folding);

    std::optional<TextPlace> find(SearchDirection direction);
    // At the beginning, or backwards at the end.
    std::optional<TextPlace> findAnchored(SearchDirection direction);
    // In the order of the search, without overlaps.
    std::vector<TextPlace> findAll(SearchDirection direction);

private:
    using Characters = std::vector<FoldedCharacter>;

    template <class Action>
    void forEachMatch(SearchDirection direction, Action const& action);
    std::optional<TextPlace> matchAt(std::size_t position);
    std::optional<TextPlace> withMarks(TextPlace match) const;
    void findOrigins();

    std::u16string_view m_text;
    TextFolding m_folding;
    Characters m_characters;
    Characters m_sought;
    // Where the characters come from, found out when the first of them match: for each code unit how many come from
    // before it, and for each position the code units that as many characters as are sought come from.
    std::vector<std::size_t> m_charactersBefore;
    std::vector<std::size_t> m_starts;
    std::vector<std::size_t> m_ends;
};

} // namespace mac
