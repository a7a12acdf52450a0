#pragma once

#include "platform/foundation/objects/Types.h"
#include "platform/foundation/text/LinearSearch.h"
#include "platform/foundation/text/TextFolding.h"
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace mac {

// A place in a text; for implementations.
struct TextPlace {
    std::size_t start;
    std::size_t end;
};

// The first place of the text sought in the order of the search, as NSStringCompareOptions ask for; what lies far
// behind it is not looked at.
std::optional<TextPlace> placeOfText(std::u16string_view text, std::u16string_view sought, NSUInteger options);

// All places of the text sought in the order of the search, as NSStringCompareOptions ask for; they do not overlap.
// An anchored search goes on where the last place ended.
std::vector<TextPlace> placesOfText(std::u16string_view text, std::u16string_view sought, NSUInteger options);

// The text with those places replaced.
std::u16string withPlacesReplaced(std::u16string_view text, std::vector<TextPlace> const& places,
                                  std::u16string_view replacement);

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
