#include "platform/applescript/runtime/TextComparison.h"
#include "platform/applescript/language/SyntaxTree.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/unorm2.h>
#include <vector>

namespace mac::applescript {

namespace {

// Text as it is compared: code points without what is ignored, each with the place of the text it comes from.
struct FoldedText {
    std::vector<char32_t> points;
    std::vector<std::size_t> starts;
    // The last is the text's length.
    std::vector<std::size_t> ends;
};

struct Expansion {
    char32_t letter;
    std::u32string_view letters;
};
constexpr auto Expansions = std::to_array<Expansion>({
    {U'ß', U"ss"},
    {U'ẞ', U"ss"},
    {U'æ', U"ae"},
    {U'Æ', U"AE"},
    {U'œ', U"oe"},
    {U'Œ', U"OE"},
    {U'ﬁ', U"fi"},
    {U'ﬂ', U"fl"},
    {U'ﬀ', U"ff"},
    {U'ĳ', U"ij"},
    {U'Ĳ', U"IJ"},
});

bool isIgnored(char32_t point, unsigned considered) {
    auto const character = static_cast<UChar32>(point);
    auto const mask = U_GET_GC_MASK(character);
    if ((considered & Considerations::WhiteSpace) == 0 &&
        ((mask & U_GC_Z_MASK) != 0 || point == U'\t' || point == U'\n' || point == U'\r'))
        return true;
    bool const isHyphen = (mask & U_GC_PD_MASK) != 0;
    if (isHyphen) return (considered & Considerations::Hyphens) == 0;
    return (mask & U_GC_P_MASK) != 0 && (considered & Considerations::Punctuation) == 0;
}

class Folding {
public:
    Folding(std::u16string_view text, unsigned considered) : m_considered(considered) {
        m_folded.points.reserve(text.size());
        for (std::size_t index = 0; index < text.size();) {
            char32_t const point = codePointAt(text, index);
            m_start = index;
            index += unitCount(point);
            m_end = index;
            if (!isIgnored(point, considered)) expand(point);
        }
    }

    FoldedText take() { return std::move(m_folded); }

private:
    void expand(char32_t point) {
        if ((m_considered & Considerations::Expansion) == 0) {
            auto const* const found = std::ranges::find(Expansions, point, &Expansion::letter);
            if (found != Expansions.end()) {
                for (char32_t const letter : found->letters)
                    decompose(letter);
                return;
            }
        }
        decompose(point);
    }

    void decompose(char32_t point) {
        if (point < 0x80) {
            add(point);
            return;
        }
        UErrorCode status = U_ZERO_ERROR;
        UNormalizer2 const* const normalizer = unorm2_getNFDInstance(&status);
        std::array<char16_t, 32> parts{};
        std::int32_t const count = unorm2_getDecomposition(normalizer, static_cast<UChar32>(point), parts.data(),
                                                           static_cast<std::int32_t>(parts.size()), &status);
        if (U_FAILURE(status) || count < 0) {
            add(point);
            return;
        }
        std::u16string_view const decomposed(parts.data(), static_cast<std::size_t>(count));
        for (std::size_t index = 0; index < decomposed.size();) {
            char32_t const part = codePointAt(decomposed, index);
            add(part);
            index += unitCount(part);
        }
    }

    void add(char32_t point) {
        auto const character = static_cast<UChar32>(point);
        bool const isMark = point >= 0x80 && u_charType(character) == U_NON_SPACING_MARK;
        if (isMark && (m_considered & Considerations::Diacriticals) == 0) return;
        bool const ignoresCase = (m_considered & Considerations::Case) == 0;
        m_folded.points.push_back(ignoresCase ? static_cast<char32_t>(u_foldCase(character, U_FOLD_CASE_DEFAULT))
                                              : point);
        m_folded.starts.push_back(m_start);
        m_folded.ends.push_back(m_end);
    }

    unsigned m_considered;
    std::size_t m_start{0};
    std::size_t m_end{0};
    FoldedText m_folded;
};

FoldedText folded(std::u16string_view text, unsigned considered) { return Folding(text, considered).take(); }

struct CloseCollator {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};

// One for each way of comparing.
UCollator* collatorFor(unsigned considered) {
    static std::map<unsigned, std::unique_ptr<UCollator, CloseCollator>> collators;
    constexpr unsigned relevant = Considerations::Case | Considerations::Diacriticals | Considerations::NumericStrings;
    unsigned const key = considered & relevant;
    auto& entry = collators[key];
    if (entry) return entry.get();
    UErrorCode status = U_ZERO_ERROR;
    entry.reset(ucol_open("", &status));
    if (U_FAILURE(status)) return nullptr;
    bool const hasCase = (key & Considerations::Case) != 0;
    bool const hasMarks = (key & Considerations::Diacriticals) != 0;
    ucol_setAttribute(entry.get(), UCOL_STRENGTH, hasMarks ? (hasCase ? UCOL_TERTIARY : UCOL_SECONDARY) : UCOL_PRIMARY,
                      &status);
    ucol_setAttribute(entry.get(), UCOL_CASE_LEVEL, hasCase && !hasMarks ? UCOL_ON : UCOL_OFF, &status);
    ucol_setAttribute(entry.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    if ((key & Considerations::NumericStrings) != 0)
        ucol_setAttribute(entry.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    return entry.get();
}

std::u16string withoutIgnored(std::u16string_view text, unsigned considered) {
    std::u16string kept;
    for (std::size_t index = 0; index < text.size();) {
        char32_t const point = codePointAt(text, index);
        index += unitCount(point);
        if (!isIgnored(point, considered)) appendCodePoint(kept, point);
    }
    return kept;
}

// Plain text compared plainly needs no folding: most of what scripts compare.
bool comparesByUnits(std::u16string_view text, unsigned considered) {
    if ((considered & Considerations::Standard) != Considerations::Standard) return false;
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
}

bool isSameUnit(char16_t one, char16_t other, unsigned considered) {
    return one == other || ((considered & Considerations::Case) == 0 && lowercaseASCII(one) == lowercaseASCII(other));
}

bool isMark(char32_t point) { return point >= 0x300 && u_charType(static_cast<UChar32>(point)) == U_NON_SPACING_MARK; }

bool matchesAt(FoldedText const& text, FoldedText const& sought, std::size_t place) {
    if (text.points.size() - place < sought.points.size()) return false;
    if (!std::equal(sought.points.begin(), sought.points.end(),
                    text.points.begin() + static_cast<std::ptrdiff_t>(place)))
        return false;
    // A letter is not found without its marks.
    std::size_t const end = place + sought.points.size();
    return end == text.points.size() || !isMark(text.points[end]);
}

} // namespace

bool isEqualText(std::u16string_view one, std::u16string_view other, unsigned considered) {
    if (one == other) return true;
    if ((considered & Considerations::NumericStrings) != 0) return compareText(one, other, considered) == 0;
    if (comparesByUnits(one, considered) && comparesByUnits(other, considered))
        return std::ranges::equal(one, other,
                                  [&](char16_t left, char16_t right) { return isSameUnit(left, right, considered); });
    return folded(one, considered).points == folded(other, considered).points;
}

int compareText(std::u16string_view one, std::u16string_view other, unsigned considered) {
    bool const isNumeric = (considered & Considerations::NumericStrings) != 0;
    std::vector<char32_t> const left = folded(one, considered).points;
    std::vector<char32_t> const right = folded(other, considered).points;
    if (left == right) return 0;
    std::u16string const first = withoutIgnored(one, considered);
    std::u16string const second = withoutIgnored(other, considered);
    UCollationResult order = UCOL_EQUAL;
    if (UCollator* const collator = collatorFor(considered))
        order = ucol_strcoll(collator, first.data(), static_cast<std::int32_t>(first.size()), second.data(),
                             static_cast<std::int32_t>(second.size()));
    if (order != UCOL_EQUAL) return order == UCOL_LESS ? -1 : 1;
    if (isNumeric) return 0;
    return left < right ? -1 : 1;
}

std::optional<TextMatch> findText(std::u16string_view text, std::u16string_view sought, std::size_t from,
                                  unsigned considered) {
    if (from > text.size() || sought.empty()) return {};
    if (comparesByUnits(sought, considered)) {
        auto const same = [&](char16_t one, char16_t other) { return isSameUnit(one, other, considered); };
        std::size_t place = from;
        while (true) {
            auto const* const found = std::search(text.begin() + place, text.end(), sought.begin(), sought.end(), same);
            if (found == text.end()) return {};
            place = static_cast<std::size_t>(found - text.begin());
            std::size_t const end = place + sought.size();
            if (end == text.size() || !isMark(text[end])) return TextMatch{.start = place, .end = end};
            ++place;
        }
    }
    FoldedText const haystack = folded(text.substr(from), considered);
    FoldedText const needle = folded(sought, considered);
    if (needle.points.empty()) return {};
    for (std::size_t place = 0; place + needle.points.size() <= haystack.points.size(); ++place) {
        if (!matchesAt(haystack, needle, place)) continue;
        std::size_t const last = place + needle.points.size() - 1;
        return TextMatch{.start = from + haystack.starts[place], .end = from + haystack.ends[last]};
    }
    return {};
}

bool containsText(std::u16string_view text, std::u16string_view sought, unsigned considered) {
    return folded(sought, considered).points.empty() || findText(text, sought, 0, considered).has_value();
}

bool beginsWithText(std::u16string_view text, std::u16string_view sought, unsigned considered) {
    FoldedText const needle = folded(sought, considered);
    return needle.points.empty() || matchesAt(folded(text, considered), needle, 0);
}

bool endsWithText(std::u16string_view text, std::u16string_view sought, unsigned considered) {
    FoldedText const needle = folded(sought, considered);
    FoldedText const whole = folded(text, considered);
    if (needle.points.size() > whole.points.size()) return false;
    return std::equal(needle.points.rbegin(), needle.points.rend(), whole.points.rbegin());
}

} // namespace mac::applescript
