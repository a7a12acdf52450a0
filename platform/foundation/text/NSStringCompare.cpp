#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/foundation/text/TextFolding.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <unicode/ucol.h>

namespace mac {

namespace {

using FoldedView = std::span<FoldedCharacter const>;

template <class T>
NSComparisonResult ordered(T first, T second) {
    if (first == second) return NSOrderedSame;
    return first < second ? NSOrderedAscending : NSOrderedDescending;
}

bool isDigit(FoldedCharacter const& character) { return isASCIIDigit(character.codePoint); }

// The digits at the front without leading zeros, which are taken off the text.
FoldedView takeNumber(FoldedView& characters) {
    auto const end = std::ranges::find_if_not(characters, isDigit);
    auto const first = std::find_if(characters.begin(), end,
                                    [](FoldedCharacter const& character) { return character.codePoint != U'0'; });
    FoldedView const number(first, end);
    characters = FoldedView(end, characters.end());
    return number;
}

NSComparisonResult compareNumbers(FoldedView first, FoldedView second) {
    if (first.size() != second.size()) return ordered(first.size(), second.size());
    for (std::size_t index = 0; index < first.size(); ++index) {
        if (first[index].codePoint != second[index].codePoint)
            return ordered(first[index].codePoint, second[index].codePoint);
    }
    return NSOrderedSame;
}

// What decides between characters: their code points, or their UTF-16 code units where the comparison is literal.
enum class OrderedBy { CodePoint, CodeUnit };

// A character beyond the basic plane begins with a surrogate, which is less than U+E000.
NSComparisonResult compareCharacters(char32_t first, char32_t second, OrderedBy order) {
    auto const leadingUnit = [](char32_t codePoint) {
        return codePoint < 0x10000 ? codePoint : 0xD7C0 + (codePoint >> 10);
    };
    if (order == OrderedBy::CodePoint || leadingUnit(first) == leadingUnit(second)) return ordered(first, second);
    return ordered(leadingUnit(first), leadingUnit(second));
}

// Runs of digits by their value where asked.
NSComparisonResult compareFolded(FoldedView first, FoldedView second, OrderedBy characters, bool isNumeric) {
    while (!first.empty() && !second.empty()) {
        if (isNumeric && isDigit(first[0]) && isDigit(second[0])) {
            FoldedView const firstNumber = takeNumber(first);
            NSComparisonResult const order = compareNumbers(firstNumber, takeNumber(second));
            if (order != NSOrderedSame) return order;
            continue;
        }
        if (first[0].codePoint != second[0].codePoint)
            return compareCharacters(first[0].codePoint, second[0].codePoint, characters);
        first = first.subspan(1);
        second = second.subspan(1);
    }
    return ordered(first.size(), second.size());
}

NSComparisonResult compareWhole(std::u16string_view first, std::u16string_view second, TextFolding const& folding,
                                bool isNumeric = false) {
    return compareFolded(foldedText(first, folding), foldedText(second, folding),
                         folding.isCanonical ? OrderedBy::CodePoint : OrderedBy::CodeUnit, isNumeric);
}

// The index at which the texts differ, or the one before where that begins a pair in one of them.
std::size_t characterStart(std::u16string_view first, std::u16string_view second, std::size_t index) {
    auto const isInPair = [&](std::u16string_view text) {
        return index > 0 && index < text.size() && isHighSurrogate(text[index - 1]) && isLowSurrogate(text[index]);
    };
    return isInPair(first) || isInPair(second) ? index - 1 : index;
}

NSComparisonResult compareLiteral(std::u16string_view first, std::u16string_view second) {
    auto const [one, other] = std::ranges::mismatch(first, second);
    if (one == first.end() || other == second.end()) return ordered(first.size(), second.size());
    return ordered(*one, *other);
}

// The first folded code point of the character at the index, or nothing for a mark, which may move before others.
std::optional<char32_t> firstFolded(std::u16string_view units, std::size_t index, TextFolding const& folding) {
    if (index == units.size()) return std::nullopt;
    char32_t const codePoint = codePointAt(units, index);
    if (codePoint < 0x80) return folding.isCaseInsensitive ? lowercaseASCII(units[index]) : codePoint;
    if (isCombining(codePoint)) return std::nullopt;
    return firstFoldedCodePoint(codePoint, folding);
}

// Most texts differ first at a letter whose own folding decides; only else are both folded whole. An ASCII character is
// the start of whatever follows it, so all before the last common one can be left out.
NSComparisonResult compareFast(std::u16string_view first, std::u16string_view second, TextFolding const& folding) {
    std::size_t const common = std::min(first.size(), second.size());
    std::size_t index = 0;
    std::size_t lastPlain = 0;
    for (; index < common; ++index) {
        char16_t const one = first[index];
        char16_t const other = second[index];
        bool const isPlain = one < 0x80 && other < 0x80;
        if (isPlain) lastPlain = index;
        if (one == other) continue;
        if (!isPlain) break;
        if (!folding.isCaseInsensitive) return ordered(one, other);
        if (lowercaseASCII(one) != lowercaseASCII(other)) return ordered(lowercaseASCII(one), lowercaseASCII(other));
    }
    if (index == first.size() && index == second.size()) return NSOrderedSame;
    index = characterStart(first, second, index);
    if (index == first.size() && second[index] < 0x80) return NSOrderedAscending;
    if (index == second.size() && first[index] < 0x80) return NSOrderedDescending;
    std::optional<char32_t> const one = firstFolded(first, index, folding);
    std::optional<char32_t> const other = firstFolded(second, index, folding);
    if (one && other && *one != *other) return ordered(*one, *other);
    return compareWhole(first.substr(lastPlain), second.substr(lastPlain), folding);
}

NSComparisonResult compareTexts(std::u16string_view first, std::u16string_view second, NSUInteger options) {
    TextFolding const folding = foldingOf(options);
    bool const isNumeric = (options & NSNumericSearch) != 0;
    bool const isUsual = folding.isCanonical && !folding.isDiacriticInsensitive && !folding.isWidthInsensitive;
    NSComparisonResult order = NSOrderedSame;
    if (folding.isLiteral() && !isNumeric)
        order = compareLiteral(first, second);
    else if (isUsual && !isNumeric)
        order = compareFast(first, second, folding);
    else
        order = compareWhole(first, second, folding, isNumeric);
    if (order == NSOrderedSame && (options & NSForcedOrderingSearch) != 0) return compareLiteral(first, second);
    return order;
}

struct CloseCollator {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};

// Made for each comparison rather than kept: the user's language may change, and one collator is for one thread.
NSComparisonResult compareByLanguage(std::u16string_view first, std::u16string_view second,
                                     UCollationStrength strength) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UCollator, CloseCollator> const collator(ucol_open(nullptr, &status));
    if (U_FAILURE(status)) return compareTexts(first, second, 0);
    ucol_setStrength(collator.get(), strength);
    ucol_setAttribute(collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    UCollationResult const result = ucol_strcoll(collator.get(), first.data(), static_cast<std::int32_t>(first.size()),
                                                 second.data(), static_cast<std::int32_t>(second.size()));
    if (result == UCOL_EQUAL) return NSOrderedSame;
    return result == UCOL_LESS ? NSOrderedAscending : NSOrderedDescending;
}

// Whether the character at the index, in code units, begins with nothing of the character before it.
bool isBoundary(std::vector<FoldedCharacter> const& characters, std::size_t index, TextFolding const& folding) {
    if (index == 0 || index == characters.size()) return true;
    bool const isApart = characters[index].start >= characters[index - 1].end;
    return isApart && (!folding.isCanonical || !isCombining(characters[index].codePoint));
}

// How many code units of the first text are equal to a beginning of the second, in whole characters of both.
std::size_t commonLength(std::u16string_view first, std::u16string_view second, TextFolding const& folding) {
    std::vector<FoldedCharacter> const one = foldedText(first, folding);
    std::vector<FoldedCharacter> const other = foldedText(second, folding);
    auto const isSame = [](FoldedCharacter const& left, FoldedCharacter const& right) {
        return left.codePoint == right.codePoint;
    };
    auto count = static_cast<std::size_t>(std::ranges::mismatch(one, other, isSame).in1 - one.begin());
    while (!isBoundary(one, count, folding) || !isBoundary(other, count, folding))
        --count;
    return count < one.size() ? one[count].start : first.size();
}

} // namespace

NSComparisonResult NSString::compare_(NSString const& other) const { return compare_options_(other, 0); }

NSComparisonResult NSString::caseInsensitiveCompare_(NSString const& other) const {
    return compare_options_(other, NSCaseInsensitiveSearch);
}

NSComparisonResult NSString::compare_options_(NSString const& other, NSUInteger options) const {
    return compare_options_range_(other, options, {0, length()});
}

NSComparisonResult NSString::compare_options_range_(NSString const& other, NSUInteger options, NSRange range) const {
    if (*this == nil) return NSOrderedSame;
    checkRange(range, codeUnits().size(), "compare:options:range:");
    return compareTexts(codeUnits().substr(range.location, range.length), other.codeUnits(), options);
}

NSComparisonResult NSString::localizedCompare_(NSString const& other) const {
    return *this == nil ? NSOrderedSame : compareByLanguage(codeUnits(), other.codeUnits(), UCOL_TERTIARY);
}

NSComparisonResult NSString::localizedCaseInsensitiveCompare_(NSString const& other) const {
    return *this == nil ? NSOrderedSame : compareByLanguage(codeUnits(), other.codeUnits(), UCOL_SECONDARY);
}

NSString NSString::commonPrefixWithString_options_(NSString const& other, NSUInteger options) const {
    if (*this == nil) return nil;
    requireArgument(other, "commonPrefixWithString:options:");
    TextFolding const folding = foldingOf(options & (NSCaseInsensitiveSearch | NSLiteralSearch));
    return stringWithCodeUnits(codeUnits().substr(0, commonLength(codeUnits(), other.codeUnits(), folding)));
}

} // namespace mac
