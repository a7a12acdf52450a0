#include "platform/applescript/runtime/TextElements.h"
#include "platform/applescript/language/LanguageCodes.h"
#include "platform/applescript/runtime/TextComparison.h"
#include <algorithm>
#include <memory>
#include <optional>
#include <unicode/ubrk.h>

namespace mac::applescript {

namespace {

struct CloseIterator {
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};

using BreakIterator = std::unique_ptr<UBreakIterator, CloseIterator>;

// Opening one costs more than a whole short script, so each kind is kept.
UBreakIterator* breaksOf(UBreakIteratorType type, std::u16string_view units) {
    static BreakIterator characters;
    static BreakIterator words;
    BreakIterator& iterator = type == UBRK_WORD ? words : characters;
    UErrorCode status = U_ZERO_ERROR;
    if (!iterator) iterator.reset(ubrk_open(type, "", nullptr, 0, &status));
    ubrk_setText(iterator.get(), units.data(), static_cast<std::int32_t>(units.size()), &status);
    return U_SUCCESS(status) ? iterator.get() : nullptr;
}

SourceRange rangeOf(std::size_t start, std::size_t end) {
    return {.start = static_cast<std::uint32_t>(start), .end = static_cast<std::uint32_t>(end)};
}

std::vector<SourceRange> characters(std::u16string_view units) {
    std::vector<SourceRange> ranges;
    ranges.reserve(units.size());
    if (hasOneUnitCharacters(units)) {
        for (std::size_t index = 0; index < units.size(); ++index)
            ranges.push_back(rangeOf(index, index + 1));
        return ranges;
    }
    UBreakIterator* const breaks = breaksOf(UBRK_CHARACTER, units);
    if (!breaks) return ranges;
    std::int32_t start = ubrk_first(breaks);
    for (std::int32_t end = ubrk_next(breaks); end != UBRK_DONE; start = end, end = ubrk_next(breaks))
        ranges.push_back({.start = static_cast<std::uint32_t>(start), .end = static_cast<std::uint32_t>(end)});
    return ranges;
}

// The text between words is not a word.
std::vector<SourceRange> words(std::u16string_view units) {
    std::vector<SourceRange> ranges;
    UBreakIterator* const breaks = breaksOf(UBRK_WORD, units);
    if (!breaks) return ranges;
    std::int32_t start = ubrk_first(breaks);
    for (std::int32_t end = ubrk_next(breaks); end != UBRK_DONE; start = end, end = ubrk_next(breaks))
        if (ubrk_getRuleStatus(breaks) >= UBRK_WORD_NONE_LIMIT)
            ranges.push_back({.start = static_cast<std::uint32_t>(start), .end = static_cast<std::uint32_t>(end)});
    return ranges;
}

// A trailing line end is followed by one more, empty, paragraph; empty text has none.
std::vector<SourceRange> paragraphs(std::u16string_view units) {
    std::vector<SourceRange> ranges;
    if (units.empty()) return ranges;
    std::size_t start = 0;
    for (std::size_t index = 0; index < units.size(); ++index) {
        if (units[index] != u'\n' && units[index] != u'\r' && units[index] != u'\u2029') continue;
        ranges.push_back(rangeOf(start, index));
        if (units[index] == u'\r' && index + 1 < units.size() && units[index + 1] == u'\n') ++index;
        start = index + 1;
    }
    ranges.push_back(rangeOf(start, units.size()));
    return ranges;
}

// The earliest delimiter counts, and of those at one place the longest.
std::vector<SourceRange> textItems(std::u16string_view units, TextContext const& context) {
    std::vector<SourceRange> ranges;
    bool const splits =
        std::ranges::any_of(context.delimiters, [](std::u16string const& text) { return !text.empty(); });
    if (!splits) return characters(units);
    if (units.empty()) return ranges;
    std::size_t start = 0;
    std::vector<std::optional<TextMatch>> next(context.delimiters.size(), TextMatch{});
    std::vector<bool> isKnown(context.delimiters.size(), false);
    while (true) {
        std::optional<TextMatch> best;
        for (std::size_t index = 0; index < context.delimiters.size(); ++index) {
            bool const isStale = !isKnown[index] || (next[index] && next[index]->start < start);
            if (isStale) next[index] = findText(units, context.delimiters[index], start, context.considered);
            isKnown[index] = true;
            if (!next[index]) continue;
            TextMatch const match = *next[index];
            bool const isBetter =
                !best || match.start < best->start || (match.start == best->start && match.end > best->end);
            if (isBetter) best = match;
        }
        if (!best || best->end <= best->start) break;
        ranges.push_back(rangeOf(start, best->start));
        start = best->end;
    }
    ranges.push_back(rangeOf(start, units.size()));
    return ranges;
}

} // namespace

bool hasOneUnitCharacters(std::u16string_view units) {
    bool const isPlain = std::ranges::all_of(units, [](char16_t unit) { return unit < 0x300; });
    if (!isPlain) return false;
    return units.find(u"\r\n") == std::u16string_view::npos;
}

bool isTextElementClass(Code elementClass) {
    switch (elementClass) {
    case codes::CharacterType:
    case codes::WordType:
    case codes::ParagraphType:
    case codes::TextItemType:
    case codes::TextType:
    case codes::StringType:
    case codes::UnicodeTextType:
    case codes::Item:
        return true;
    default:
        return false;
    }
}

struct FoundTextElements {
    Code elementClass{0};
    // The delimiters that text items were found by.
    std::vector<std::u16string> delimiters{};
    unsigned considered{0};
    std::vector<SourceRange> ranges{};

    bool areOf(Code wanted, TextContext const& context) const {
        if (elementClass != wanted) return false;
        return wanted != codes::TextItemType || (considered == context.considered && delimiters == context.delimiters);
    }
};

TextObject::TextObject(std::u16string text) : units(std::move(text)) {}
TextObject::~TextObject() = default;

void TextObject::append(std::u16string_view added) {
    units.append(added);
    m_elements.reset();
    m_simplicity = Simplicity::Unknown;
}

bool TextObject::isSimple() const {
    if (m_simplicity == Simplicity::Unknown)
        m_simplicity = hasOneUnitCharacters(units) ? Simplicity::Simple : Simplicity::Composed;
    return m_simplicity == Simplicity::Simple;
}

std::vector<SourceRange> const& textElements(TextObject const& text, Code elementClass, TextContext const& context) {
    std::unique_ptr<FoundTextElements>& found = text.m_elements;
    if (found && found->areOf(elementClass, context)) return found->ranges;
    auto made = std::make_unique<FoundTextElements>();
    made->elementClass = elementClass;
    made->considered = context.considered;
    if (elementClass == codes::TextItemType) made->delimiters = context.delimiters;
    made->ranges = textElements(text.units, elementClass, context);
    found = std::move(made);
    return found->ranges;
}

std::vector<SourceRange> textElements(std::u16string_view units, Code elementClass, TextContext const& context) {
    switch (elementClass) {
    case codes::WordType:
        return words(units);
    case codes::ParagraphType:
        return paragraphs(units);
    case codes::TextItemType:
        return textItems(units, context);
    default:
        return characters(units);
    }
}

} // namespace mac::applescript
