#include "platform/foundation/Encodings.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/NSArray.h"
#include "platform/foundation/StringBody.h"
#include "platform/foundation/TextFolding.h"
#include "platform/foundation/TextSearch.h"
#include "platform/foundation/UnitSearch.h"
#include <algorithm>
#include <functional>

namespace mac {

namespace {

using Characters = std::vector<FoldedCharacter>;

using Match = TextPlace;

enum class Direction { Forwards, Backwards };

NSRange rangeOf(std::optional<Match> const& match, std::size_t offset) {
    if (!match) return {NSNotFound, 0};
    return {static_cast<NSUInteger>(match->start + offset), static_cast<NSUInteger>(match->end - match->start)};
}

// The first position of the candidates that the test accepts, in the order of the search.
template <class Test>
std::optional<std::size_t> findPosition(std::size_t count, Direction direction, bool isAnchored, Test const& test) {
    std::size_t const tries = isAnchored ? std::min<std::size_t>(count, 1) : count;
    for (std::size_t step = 0; step < tries; ++step) {
        std::size_t const position = direction == Direction::Backwards ? count - 1 - step : step;
        if (test(position)) return position;
    }
    return std::nullopt;
}

std::optional<Match> findUnits(std::u16string_view text, std::u16string_view sought, Direction direction,
                               bool isAnchored) {
    bool const isBackwards = direction == Direction::Backwards;
    std::size_t position = std::u16string_view::npos;
    if (isAnchored && (isBackwards ? text.ends_with(sought) : text.starts_with(sought)))
        position = isBackwards ? text.size() - sought.size() : 0;
    else if (!isAnchored)
        position = isBackwards ? text.rfind(sought) : text.find(sought);
    if (position == std::u16string_view::npos) return std::nullopt;
    return Match{position, position + sought.size()};
}

// Where code units do not depend on each other and canonical equivalence is sameness: below U+0300 there are no marks.
bool isSimple(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x300; });
}

bool isASCII(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
}

std::optional<Match> findCaseInsensitiveASCII(std::u16string_view text, std::u16string_view sought, Direction direction,
                                              bool isAnchored) {
    if (sought.size() > text.size()) return std::nullopt;
    auto const isSame = [](char16_t one, char16_t other) { return lowercaseASCII(one) == lowercaseASCII(other); };
    std::optional<std::size_t> const position =
        findPosition(text.size() - sought.size() + 1, direction, isAnchored, [&](std::size_t candidate) {
            return std::ranges::equal(text.substr(candidate, sought.size()), sought, isSame);
        });
    if (!position) return std::nullopt;
    return Match{*position, *position + sought.size()};
}

// Finds folded text: a match takes whole characters of the text, with all their marks.
class FoldedSearch {
public:
    FoldedSearch(std::u16string_view text, std::u16string_view sought, TextFolding const& folding)
        : m_text(text), m_folding(folding), m_characters(foldedText(text, folding)),
          m_sought(foldedText(sought, folding)) {}

    std::optional<Match> find(Direction direction, bool isAnchored) const {
        if (m_sought.empty() || m_sought.size() > m_characters.size()) return std::nullopt;
        std::optional<Match> match;
        findPosition(m_characters.size() - m_sought.size() + 1, direction, isAnchored, [&](std::size_t position) {
            match = matchAt(position);
            return match.has_value();
        });
        if (match && isAnchored &&
            (direction == Direction::Backwards ? match->end != m_text.size() : match->start != 0))
            return std::nullopt;
        return match;
    }

    // Forwards or backwards, without overlaps.
    std::vector<Match> findAll(Direction direction) const {
        std::vector<Match> matches;
        if (m_sought.empty() || m_sought.size() > m_characters.size()) return matches;
        std::size_t const count = m_characters.size() - m_sought.size() + 1;
        bool const isBackwards = direction == Direction::Backwards;
        for (std::size_t step = 0; step < count; ++step) {
            std::optional<Match> const match = matchAt(isBackwards ? count - 1 - step : step);
            if (!match) continue;
            bool const overlaps =
                !matches.empty() && match->start < matches.back().end && match->end > matches.back().start;
            if (!overlaps) matches.push_back(*match);
        }
        return matches;
    }

private:
    std::optional<Match> matchAt(std::size_t position) const {
        auto const begin = m_characters.begin() + static_cast<std::ptrdiff_t>(position);
        auto const end = begin + static_cast<std::ptrdiff_t>(m_sought.size());
        bool const isEqual = std::equal(begin, end, m_sought.begin(), [](auto const& one, auto const& other) {
            return one.codePoint == other.codePoint;
        });
        if (!isEqual) return std::nullopt;
        Match match{begin->start, begin->end};
        for (auto character = begin; character != end; ++character)
            match = {std::min(match.start, character->start), std::max(match.end, character->end)};
        if (takesPartOf(match, begin, end)) return std::nullopt;
        return withMarks(match);
    }

    // Whether a character before or after comes from the same code units. Marks may have changed places, but none
    // leaves its run.
    bool takesPartOf(Match const& match, Characters::const_iterator begin, Characters::const_iterator end) const {
        auto const isWithin = [&](FoldedCharacter const& character) {
            return character.start < match.end && character.end > match.start;
        };
        auto const isMark = [](FoldedCharacter const& character) { return isCombining(character.codePoint); };
        for (auto before = begin; before != m_characters.begin();) {
            --before;
            if (isWithin(*before)) return true;
            if (!isMark(*before)) break;
        }
        for (auto after = end; after != m_characters.end(); ++after) {
            if (isWithin(*after)) return true;
            if (!isMark(*after)) break;
        }
        return false;
    }

    // A mark that follows makes another character of the last one, unless marks do not count.
    std::optional<Match> withMarks(Match match) const {
        bool const ignoresMarks = m_folding.isDiacriticInsensitive;
        if (!ignoresMarks && !m_folding.isCanonical) return match;
        while (match.end < m_text.size() && isCombining(codePointAt(m_text, match.end))) {
            if (!ignoresMarks) return std::nullopt;
            match.end += unitCount(codePointAt(m_text, match.end));
        }
        return match;
    }

    std::u16string_view m_text;
    TextFolding m_folding;
    Characters m_characters;
    Characters m_sought;
};

// Whether what begins one text begins or ends the other, where their code units alone can tell: at the first unit that
// differs both are ASCII, which no mark changes, or there is none and no mark follows or leads.
std::optional<bool> plainlyAnchored(std::u16string_view text, std::u16string_view sought, Direction direction) {
    if (direction == Direction::Forwards) {
        auto const [one, other] = std::ranges::mismatch(text, sought);
        if (one != text.end() && other != sought.end() && *one < 0x80 && *other < 0x80) return false;
        bool const isWhole = other == sought.end();
        if (isWhole && (one == text.end() || (*one < 0x300 && !isHighSurrogate(sought.back())))) return true;
        return std::nullopt;
    }
    if (text.back() < 0x80 && sought.back() < 0x80 && text.back() != sought.back()) return false;
    if (sought.front() < 0x300 && text.ends_with(sought)) return true;
    return std::nullopt;
}

std::optional<Match> findText(std::u16string_view text, std::u16string_view sought, NSUInteger options) {
    if (text.empty() || sought.empty()) return std::nullopt;
    Direction const direction = (options & NSBackwardsSearch) != 0 ? Direction::Backwards : Direction::Forwards;
    bool const isAnchored = (options & NSAnchoredSearch) != 0;
    TextFolding const folding = foldingOf(options);
    bool const isPlain = !folding.isCaseInsensitive && !folding.isDiacriticInsensitive && !folding.isWidthInsensitive;
    if (isPlain && (!folding.isCanonical || (isSimple(text) && isSimple(sought))))
        return findUnits(text, sought, direction, isAnchored);
    if (isPlain && isAnchored) {
        std::optional<bool> const answer = plainlyAnchored(text, sought, direction);
        if (answer == false) return std::nullopt;
        if (answer == true) return findUnits(text, sought, direction, true);
    }
    if (isASCII(text) && isASCII(sought)) return findCaseInsensitiveASCII(text, sought, direction, isAnchored);
    return FoldedSearch(text, sought, folding).find(direction, isAnchored);
}

std::vector<Match> findAllUnits(std::u16string_view text, std::u16string_view sought) {
    std::vector<Match> matches;
    UnitSearch(sought).forEachIn(text, [&](std::size_t place) { matches.push_back({place, place + sought.size()}); });
    return matches;
}

// One after the other, each in what the one before has left.
std::vector<Match> findEach(std::u16string_view text, std::u16string_view sought, NSUInteger options) {
    std::vector<Match> matches;
    Match rest{0, text.size()};
    while (std::optional<Match> const match =
               findText(text.substr(rest.start, rest.end - rest.start), sought, options)) {
        matches.push_back({rest.start + match->start, rest.start + match->end});
        bool const isBackwards = (options & NSBackwardsSearch) != 0;
        rest = isBackwards ? Match{rest.start, matches.back().start} : Match{matches.back().end, rest.end};
    }
    return matches;
}

void requireArgument(id const& argument, char const* message) {
    if (argument == nil) throw NSInvalidArgumentException(std::string(message) + " nil argument");
}

NSRange wholeRange(NSString const& string) { return {0, string.length()}; }

} // namespace

std::vector<TextPlace> placesOfText(std::u16string_view text, std::u16string_view sought, NSUInteger options) {
    if (text.empty() || sought.empty()) return {};
    if ((options & NSAnchoredSearch) != 0) return findEach(text, sought, options);
    TextFolding const folding = foldingOf(options);
    bool const isPlain = !folding.isCaseInsensitive && !folding.isDiacriticInsensitive && !folding.isWidthInsensitive;
    bool const isByUnit = isPlain && (!folding.isCanonical || (isSimple(text) && isSimple(sought)));
    bool const isBackwards = (options & NSBackwardsSearch) != 0;
    if (isByUnit && !isBackwards) return findAllUnits(text, sought);
    if (isByUnit) return findEach(text, sought, options);
    return FoldedSearch(text, sought, folding).findAll(isBackwards ? Direction::Backwards : Direction::Forwards);
}

bool NSString::hasPrefix_(NSString const& prefix) const {
    if (*this == nil) return false;
    requireArgument(prefix, "hasPrefix:");
    return findText(codeUnits(), prefix.codeUnits(), NSAnchoredSearch).has_value();
}

bool NSString::hasSuffix_(NSString const& suffix) const {
    if (*this == nil) return false;
    requireArgument(suffix, "hasSuffix:");
    return findText(codeUnits(), suffix.codeUnits(), NSAnchoredSearch | NSBackwardsSearch).has_value();
}

NSRange NSString::rangeOfString_(NSString const& other) const { return rangeOfString_options_(other, 0); }

NSRange NSString::rangeOfString_options_(NSString const& other, NSUInteger options) const {
    return rangeOfString_options_range_(other, options, wholeRange(*this));
}

NSRange NSString::rangeOfString_options_range_(NSString const& other, NSUInteger options, NSRange range) const {
    if (*this == nil) return {};
    requireArgument(other, "rangeOfString:options:range:");
    checkRange(range, codeUnits().size(), "rangeOfString:options:range:");
    return rangeOf(findText(codeUnits().substr(range.location, range.length), other.codeUnits(), options),
                   range.location);
}

NSArray NSString::componentsSeparatedByString_(NSString const& separator) const {
    if (*this == nil) return nil;
    requireArgument(separator, "componentsSeparatedByString:");
    std::u16string_view const text = codeUnits();
    std::u16string_view const sought = separator.codeUnits();
    std::vector<id> components;
    std::size_t start = 0;
    UnitSearch(sought).forEachIn(text, [&](std::size_t found) {
        components.push_back(stringWithCodeUnits(text.substr(start, found - start)));
        start = found + sought.size();
    });
    components.push_back(stringWithCodeUnits(text.substr(start)));
    return NSArray::arrayWithVector(std::move(components));
}

} // namespace mac
