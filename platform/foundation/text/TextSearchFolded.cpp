#include "platform/foundation/text/TextSearch.h"
#include <algorithm>

namespace mac {

namespace {

bool haveSameCodePoint(FoldedCharacter const& one, FoldedCharacter const& other) {
    return one.codePoint == other.codePoint;
}

// The best of each so many values that follow each other. Every such run is the end of one block of that length and
// the beginning of the next, so that two passes over the blocks are enough.
template <class Best>
std::vector<std::size_t> bestOfRuns(std::vector<std::size_t> const& values, std::size_t length, Best const& best) {
    std::vector<std::size_t> fromStart = values;
    std::vector<std::size_t> toEnd = values;
    for (std::size_t index = 1; index < values.size(); ++index) {
        if (index % length != 0) fromStart[index] = best(fromStart[index - 1], values[index]);
    }
    for (std::size_t index = values.size() - 1; index > 0; --index) {
        if (index % length != 0) toEnd[index - 1] = best(values[index - 1], toEnd[index]);
    }
    std::vector<std::size_t> result(values.size() - length + 1);
    for (std::size_t start = 0; start < result.size(); ++start)
        result[start] = best(toEnd[start], fromStart[start + length - 1]);
    return result;
}

} // namespace

FoldedSearch::FoldedSearch(std::u16string_view text, std::u16string_view sought, TextFolding const& folding)
    : m_text(text), m_folding(folding), m_characters(foldedText(text, folding)), m_sought(foldedText(sought, folding)) {
}

template <class Action>
void FoldedSearch::forEachMatch(SearchDirection direction, Action const& action) {
    if (m_sought.empty() || m_sought.size() > m_characters.size()) return;
    LinearSearch<FoldedCharacter, bool (*)(FoldedCharacter const&, FoldedCharacter const&)> const search(
        m_sought, direction, haveSameCodePoint);
    search.forEachIn(m_characters, [&](std::size_t position) {
        std::optional<TextPlace> const match = matchAt(position);
        return !match || action(*match);
    });
}

std::optional<TextPlace> FoldedSearch::find(SearchDirection direction) {
    std::optional<TextPlace> found;
    forEachMatch(direction, [&](TextPlace match) {
        found = match;
        return false;
    });
    return found;
}

std::optional<TextPlace> FoldedSearch::findAnchored(SearchDirection direction) {
    if (m_sought.empty() || m_sought.size() > m_characters.size()) return std::nullopt;
    bool const isBackwards = direction == SearchDirection::Backwards;
    std::size_t const position = isBackwards ? m_characters.size() - m_sought.size() : 0;
    auto const begin = m_characters.begin() + static_cast<std::ptrdiff_t>(position);
    if (!std::equal(m_sought.begin(), m_sought.end(), begin, haveSameCodePoint)) return std::nullopt;
    std::optional<TextPlace> const match = matchAt(position);
    bool const isAtEdge = match && (isBackwards ? match->end == m_text.size() : match->start == 0);
    return isAtEdge ? match : std::nullopt;
}

std::vector<TextPlace> FoldedSearch::findAll(SearchDirection direction) {
    std::vector<TextPlace> matches;
    forEachMatch(direction, [&](TextPlace match) {
        bool const overlaps = !matches.empty() && match.start < matches.back().end && match.end > matches.back().start;
        if (!overlaps) matches.push_back(match);
        return true;
    });
    return matches;
}

// The code points at the position are those sought. A character of the text is taken whole or not at all: none but
// these may come from the same code units.
std::optional<TextPlace> FoldedSearch::matchAt(std::size_t position) {
    if (m_charactersBefore.empty()) findOrigins();
    TextPlace const match{m_starts[position], m_ends[position]};
    bool const isWhole = m_charactersBefore[match.end] - m_charactersBefore[match.start] == m_sought.size();
    return isWhole ? withMarks(match) : std::nullopt;
}

// A mark that follows makes another character of the last one, unless marks do not count.
std::optional<TextPlace> FoldedSearch::withMarks(TextPlace match) const {
    bool const ignoresMarks = m_folding.isDiacriticInsensitive;
    if (!ignoresMarks && !m_folding.isCanonical) return match;
    while (match.end < m_text.size() && isCombining(codePointAt(m_text, match.end))) {
        if (!ignoresMarks) return std::nullopt;
        match.end += unitCount(codePointAt(m_text, match.end));
    }
    return match;
}

void FoldedSearch::findOrigins() {
    m_charactersBefore.assign(m_text.size() + 1, 0);
    std::vector<std::size_t> starts;
    std::vector<std::size_t> ends;
    for (FoldedCharacter const& character : m_characters) {
        ++m_charactersBefore[character.start + 1];
        starts.push_back(character.start);
        ends.push_back(character.end);
    }
    for (std::size_t index = 0; index < m_text.size(); ++index)
        m_charactersBefore[index + 1] += m_charactersBefore[index];
    m_starts =
        bestOfRuns(starts, m_sought.size(), [](std::size_t one, std::size_t other) { return std::min(one, other); });
    m_ends = bestOfRuns(ends, m_sought.size(), [](std::size_t one, std::size_t other) { return std::max(one, other); });
}

} // namespace mac
