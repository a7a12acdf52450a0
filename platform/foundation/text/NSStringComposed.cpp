#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/StringBody.h"
#include <algorithm>
#include <memory>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>

namespace mac {

namespace {

struct CloseBreaks {
    void operator()(UBreakIterator* breaks) const { ubrk_close(breaks); }
};

struct Span {
    std::size_t start;
    std::size_t end;
};

int breakKindOf(char32_t codePoint) {
    return u_getIntPropertyValue(static_cast<UChar32>(codePoint), UCHAR_GRAPHEME_CLUSTER_BREAK);
}

// Whether the code unit at the index surely joins with nothing before it; most that do not are told by their kind and
// that of the one before. Below U+0300 nothing joins.
bool beginsAnew(std::u16string_view text, std::size_t index) {
    if (index == 0 || text[index] < 0x300) return true;
    bool const isAfterPair = index > 1 && isLowSurrogate(text[index - 1]) && isHighSurrogate(text[index - 2]);
    if (isLowSurrogate(text[index]) && isHighSurrogate(text[index - 1])) return false;
    int const before = breakKindOf(codePointAt(text, index - (isAfterPair ? 2 : 1)));
    if (before == U_GCB_PREPEND || before == U_GCB_ZWJ || before == U_GCB_EXTEND || before == U_GCB_L) return false;
    int const kind = breakKindOf(codePointAt(text, index));
    return kind == U_GCB_OTHER || kind == U_GCB_L || kind == U_GCB_LV || kind == U_GCB_LVT;
}

// What the character boundaries around the index depend on: from one code unit that joins with nothing before it to the
// next.
Span surroundings(std::u16string_view text, std::size_t index) {
    Span span{index, index + 1};
    while (!beginsAnew(text, span.start))
        --span.start;
    while (span.end < text.size() && !beginsAnew(text, span.end))
        ++span.end;
    return span;
}

// Made once a thread, since making one costs more than most texts need.
UBreakIterator* sharedBreaks() {
    thread_local std::unique_ptr<UBreakIterator, CloseBreaks> const breaks = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::unique_ptr<UBreakIterator, CloseBreaks>(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
    }();
    return breaks.get();
}

Span composedAt(std::u16string_view text, std::size_t index) {
    Span const around = surroundings(text, index);
    std::size_t const length = around.end - around.start;
    if (length == unitCount(codePointAt(text, around.start))) return around;
    UBreakIterator* const breaks = sharedBreaks();
    UErrorCode status = U_ZERO_ERROR;
    if (breaks) ubrk_setText(breaks, text.data() + around.start, static_cast<std::int32_t>(length), &status);
    if (!breaks || U_FAILURE(status)) return {index, index + 1};
    std::int32_t const end = ubrk_following(breaks, static_cast<std::int32_t>(index - around.start));
    std::int32_t const start = ubrk_previous(breaks);
    return {around.start + static_cast<std::size_t>(start), around.start + static_cast<std::size_t>(end)};
}

NSRange rangeOfSpan(Span span) {
    return {static_cast<NSUInteger>(span.start), static_cast<NSUInteger>(span.end - span.start)};
}

bool isLineEnd(char16_t unit) {
    return unit == u'\n' || unit == u'\r' || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

// Behind the line end at the index: CR LF is one.
std::size_t behindLineEnd(std::u16string_view text, std::size_t index) {
    bool const isPair = text[index] == u'\r' && index + 1 < text.size() && text[index + 1] == u'\n';
    return index + (isPair ? 2 : 1);
}

std::size_t lineStart(std::u16string_view text, std::size_t index) {
    // Between CR and LF the line goes on.
    if (index > 0 && index < text.size() && text[index - 1] == u'\r' && text[index] == u'\n') --index;
    while (index > 0 && !isLineEnd(text[index - 1]))
        --index;
    return index;
}

// Where the line that holds the last character of the range ends.
std::size_t contentsEndOf(std::u16string_view text, NSRange range) {
    std::size_t index = std::size_t{range.location} + range.length;
    if (range.length > 0) --index;
    // The line feed of a pair belongs to the carriage return.
    if (index > 0 && index < text.size() && text[index] == u'\n' && text[index - 1] == u'\r') --index;
    while (index < text.size() && !isLineEnd(text[index]))
        ++index;
    return index;
}

using NormalForm = UNormalizer2 const* (*)(UErrorCode*);

NSString normalized(NSString const& string, NormalForm form) {
    if (string == nil) return nil;
    std::u16string_view const text = string.codeUnits();
    if (std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; }))
        return uncheckedCast<NSString>(string.copy());
    UErrorCode status = U_ZERO_ERROR;
    UNormalizer2 const* const normalizer = form(&status);
    auto const length = static_cast<std::int32_t>(text.size());
    std::int32_t const needed = unorm2_normalize(normalizer, text.data(), length, nullptr, 0, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR) return uncheckedCast<NSString>(string.copy());
    status = U_ZERO_ERROR;
    std::u16string result(static_cast<std::size_t>(needed), u'\0');
    unorm2_normalize(normalizer, text.data(), length, result.data(), needed, &status);
    return makeString(std::move(result));
}

} // namespace

NSRange NSString::rangeOfComposedCharacterSequenceAtIndex_(NSUInteger index) const {
    if (*this == nil) return {};
    checkRange({index, 1}, codeUnits().size(), "rangeOfComposedCharacterSequenceAtIndex:");
    return rangeOfSpan(composedAt(codeUnits(), index));
}

NSRange NSString::rangeOfComposedCharacterSequencesForRange_(NSRange range) const {
    if (*this == nil) return {};
    std::u16string_view const text = codeUnits();
    checkRange(range, text.size(), "rangeOfComposedCharacterSequencesForRange:");
    if (range.location == text.size()) return range;
    Span const first = composedAt(text, range.location);
    if (range.length == 0) return rangeOfSpan(first);
    return rangeOfSpan({first.start, composedAt(text, range.location + range.length - 1).end});
}

NSRange NSString::lineRangeForRange_(NSRange range) const {
    NSUInteger start = 0;
    NSUInteger end = 0;
    getLineStart_end_contentsEnd_forRange_(&start, &end, nullptr, range);
    return {start, end - start};
}

void NSString::getLineStart_end_contentsEnd_forRange_(NSUInteger* start, NSUInteger* end, NSUInteger* contentsEnd,
                                                      NSRange range) const {
    std::u16string_view const text = codeUnits();
    if (*this != nil) checkRange(range, text.size(), "getLineStart:end:contentsEnd:forRange:");
    std::size_t const lastEnd = *this == nil ? 0 : contentsEndOf(text, range);
    if (start) *start = *this == nil ? 0 : static_cast<NSUInteger>(lineStart(text, range.location));
    if (contentsEnd) *contentsEnd = static_cast<NSUInteger>(lastEnd);
    if (end) *end = static_cast<NSUInteger>(lastEnd < text.size() ? behindLineEnd(text, lastEnd) : lastEnd);
}

NSString NSString::decomposedStringWithCanonicalMapping() const { return normalized(*this, unorm2_getNFDInstance); }

NSString NSString::precomposedStringWithCanonicalMapping() const { return normalized(*this, unorm2_getNFCInstance); }

NSString NSString::decomposedStringWithCompatibilityMapping() const {
    return normalized(*this, unorm2_getNFKDInstance);
}

NSString NSString::precomposedStringWithCompatibilityMapping() const {
    return normalized(*this, unorm2_getNFKCInstance);
}

} // namespace mac
