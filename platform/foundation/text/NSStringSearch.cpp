#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/foundation/text/TextSearch.h"
#include "platform/foundation/text/UnitSearch.h"
#include "platform/system/ASCII.h"
#include <algorithm>

namespace mac {

namespace {

using Match = TextPlace;

NSRange rangeOf(std::optional<Match> const& match, std::size_t offset) {
    if (!match) return {NSNotFound, 0};
    return {static_cast<NSUInteger>(match->start + offset), static_cast<NSUInteger>(match->end - match->start)};
}

SearchDirection directionOf(NSUInteger options) {
    return (options & NSBackwardsSearch) != 0 ? SearchDirection::Backwards : SearchDirection::Forwards;
}

std::optional<Match> findAnchoredUnits(std::u16string_view text, std::u16string_view sought,
                                       SearchDirection direction) {
    bool const isBackwards = direction == SearchDirection::Backwards;
    if (isBackwards ? !text.ends_with(sought) : !text.starts_with(sought)) return std::nullopt;
    std::size_t const start = isBackwards ? text.size() - sought.size() : 0;
    return Match{start, start + sought.size()};
}

std::optional<Match> findUnits(std::u16string_view text, std::u16string_view sought, SearchDirection direction) {
    std::size_t const place = UnitSearch(sought, direction).findIn(text);
    if (place == std::u16string_view::npos) return std::nullopt;
    return Match{place, place + sought.size()};
}

// Where code units do not depend on each other and canonical equivalence is sameness: below U+0300 there are no marks.
bool isSimple(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x300; });
}

bool isASCII(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
}

bool haveSameLowercase(char16_t one, char16_t other) { return lowercaseASCII(one) == lowercaseASCII(other); }

std::optional<Match> findCaseInsensitiveASCII(std::u16string_view text, std::u16string_view sought,
                                              SearchDirection direction, bool isAnchored) {
    if (sought.size() > text.size()) return std::nullopt;
    if (isAnchored) {
        std::size_t const start = direction == SearchDirection::Backwards ? text.size() - sought.size() : 0;
        if (!std::ranges::equal(text.substr(start, sought.size()), sought, haveSameLowercase)) return std::nullopt;
        return Match{start, start + sought.size()};
    }
    LinearSearch<char16_t, bool (*)(char16_t, char16_t)> const search({sought.data(), sought.size()}, direction,
                                                                      haveSameLowercase);
    std::optional<Match> match;
    search.forEachIn({text.data(), text.size()}, [&](std::size_t place) {
        match = Match{place, place + sought.size()};
        return false;
    });
    return match;
}

// Whether no mark and no half of a pair is at the index, so that what is before it is whole.
bool beginsCharacter(std::u16string_view text, std::size_t index) {
    if (index == 0 || text[index] < 0x300) return true;
    bool const isInPair = isLowSurrogate(text[index]) && isHighSurrogate(text[index - 1]);
    return !isInPair && !isCombining(codePointAt(text, index));
}

// The beginning of the text with at least so many characters and all their marks.
std::u16string_view frontOf(std::u16string_view text, std::size_t characters) {
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        if (beginsCharacter(text, end) && characters-- == 0) break;
    }
    return text.substr(0, end);
}

std::u16string_view backOf(std::u16string_view text, std::size_t characters) {
    std::size_t start = text.size();
    while (start > 0 && characters > 0)
        characters -= beginsCharacter(text, --start) ? 1 : 0;
    return text.substr(start);
}

// Whether what begins one text begins or ends the other, where their code units alone can tell: at the first unit that
// differs both are ASCII, which no mark changes, or there is none and no mark follows or leads.
std::optional<bool> plainlyAnchored(std::u16string_view text, std::u16string_view sought, SearchDirection direction) {
    if (direction == SearchDirection::Forwards) {
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

// How the options would have text compared.
struct Matching {
    explicit Matching(NSUInteger options)
        : direction(directionOf(options)), folding(foldingOf(options)),
          isPlain(!folding.isCaseInsensitive && !folding.isDiacriticInsensitive && !folding.isWidthInsensitive) {}

    bool isByUnit(std::u16string_view text, std::u16string_view sought) const {
        return isPlain && (!folding.isCanonical || (isSimple(sought) && isSimple(text)));
    }

    SearchDirection direction;
    TextFolding folding;
    bool isPlain;
};

// Only the characters at the edge are looked at: no code unit becomes more than eight.
std::optional<Match> findAnchored(std::u16string_view text, std::u16string_view sought, Matching const& matching) {
    bool const isBackwards = matching.direction == SearchDirection::Backwards;
    std::size_t const characters = sought.size() * 8 + 1;
    std::u16string_view const edge = isBackwards ? backOf(text, characters) : frontOf(text, characters);
    std::optional<bool> const answer = matching.isPlain && matching.folding.isCanonical
                                           ? plainlyAnchored(edge, sought, matching.direction)
                                           : std::nullopt;
    if (answer == false) return std::nullopt;
    std::optional<Match> match;
    if (answer == true || matching.isByUnit(edge, sought))
        match = findAnchoredUnits(edge, sought, matching.direction);
    else if (isASCII(edge) && isASCII(sought))
        match = findCaseInsensitiveASCII(edge, sought, matching.direction, true);
    else
        match = FoldedSearch(edge, sought, matching.folding).findAnchored(matching.direction);
    std::size_t const offset = isBackwards ? text.size() - edge.size() : 0;
    if (match) match = Match{match->start + offset, match->end + offset};
    return match;
}

std::optional<Match> findAnywhere(std::u16string_view text, std::u16string_view sought, Matching const& matching) {
    if (matching.isByUnit(text, sought)) return findUnits(text, sought, matching.direction);
    if (isASCII(text) && isASCII(sought)) return findCaseInsensitiveASCII(text, sought, matching.direction, false);
    return FoldedSearch(text, sought, matching.folding).find(matching.direction);
}

std::vector<Match> findAllUnits(std::u16string_view text, std::u16string_view sought, SearchDirection direction) {
    std::vector<Match> matches;
    UnitSearch(sought, direction).forEachIn(text, [&](std::size_t place) {
        matches.push_back({place, place + sought.size()});
    });
    return matches;
}

// Anchored places follow each other, each at the edge of the rest that the previous one left.
std::vector<Match> findEachAnchored(std::u16string_view text, std::u16string_view sought, Matching const& matching) {
    std::vector<Match> matches;
    Match rest{0, text.size()};
    while (rest.start < rest.end) {
        std::optional<Match> const match =
            findAnchored(text.substr(rest.start, rest.end - rest.start), sought, matching);
        if (!match) break;
        matches.push_back({rest.start + match->start, rest.start + match->end});
        bool const isBackwards = matching.direction == SearchDirection::Backwards;
        rest = isBackwards ? Match{rest.start, matches.back().start} : Match{matches.back().end, rest.end};
    }
    return matches;
}

NSRange wholeRange(NSString const& string) { return {0, string.length()}; }

} // namespace

std::optional<TextPlace> placeOfText(std::u16string_view text, std::u16string_view sought, NSUInteger options) {
    if (text.empty() || sought.empty()) return std::nullopt;
    Matching const matching(options);
    if ((options & NSAnchoredSearch) != 0) return findAnchored(text, sought, matching);
    // A text that is found early is not looked at to its end.
    constexpr std::size_t firstPart = 64;
    constexpr std::size_t growth = 4;
    bool const isForwards = matching.direction == SearchDirection::Forwards;
    for (std::size_t size = firstPart + sought.size() * 2; isForwards && size < text.size(); size *= growth) {
        std::size_t end = size;
        while (end < text.size() && !beginsCharacter(text, end))
            ++end;
        std::optional<Match> const match = findAnywhere(text.substr(0, end), sought, matching);
        if (match) return match;
    }
    return findAnywhere(text, sought, matching);
}

std::vector<TextPlace> placesOfText(std::u16string_view text, std::u16string_view sought, NSUInteger options) {
    if (text.empty() || sought.empty()) return {};
    Matching const matching(options);
    if ((options & NSAnchoredSearch) != 0) return findEachAnchored(text, sought, matching);
    if (matching.isByUnit(text, sought)) return findAllUnits(text, sought, matching.direction);
    return FoldedSearch(text, sought, matching.folding).findAll(matching.direction);
}

bool NSString::hasPrefix_(NSString const& prefix) const {
    if (*this == nil) return false;
    requireArgument(prefix, "hasPrefix:");
    return placeOfText(codeUnits(), prefix.codeUnits(), NSAnchoredSearch).has_value();
}

bool NSString::hasSuffix_(NSString const& suffix) const {
    if (*this == nil) return false;
    requireArgument(suffix, "hasSuffix:");
    return placeOfText(codeUnits(), suffix.codeUnits(), NSAnchoredSearch | NSBackwardsSearch).has_value();
}

NSRange NSString::rangeOfString_(NSString const& other) const { return rangeOfString_options_(other, 0); }

NSRange NSString::rangeOfString_options_(NSString const& other, NSUInteger options) const {
    return rangeOfString_options_range_(other, options, wholeRange(*this));
}

NSRange NSString::rangeOfString_options_range_(NSString const& other, NSUInteger options, NSRange range) const {
    if (*this == nil) return {};
    requireArgument(other, "rangeOfString:options:range:");
    checkRange(range, codeUnits().size(), "rangeOfString:options:range:");
    return rangeOf(placeOfText(codeUnits().substr(range.location, range.length), other.codeUnits(), options),
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
