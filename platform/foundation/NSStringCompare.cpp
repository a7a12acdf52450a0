#include "platform/foundation/Encodings.h"
#include "platform/foundation/TextFolding.h"
#include <algorithm>
#include <optional>
#include <span>

namespace mac {

namespace {

using Characters = std::span<FoldedCharacter const>;

template <class T>
NSComparisonResult ordered(T first, T second) {
    if (first == second) return NSOrderedSame;
    return first < second ? NSOrderedAscending : NSOrderedDescending;
}

bool isDigit(FoldedCharacter const& character) { return character.codePoint >= U'0' && character.codePoint <= U'9'; }

// The digits at the front without leading zeros, which are taken off the text.
Characters takeNumber(Characters& characters) {
    auto const end = std::ranges::find_if_not(characters, isDigit);
    auto const first = std::find_if(characters.begin(), end,
                                    [](FoldedCharacter const& character) { return character.codePoint != U'0'; });
    Characters const number(first, end);
    characters = Characters(end, characters.end());
    return number;
}

NSComparisonResult compareNumbers(Characters first, Characters second) {
    if (first.size() != second.size()) return ordered(first.size(), second.size());
    for (std::size_t index = 0; index < first.size(); ++index) {
        if (first[index].codePoint != second[index].codePoint)
            return ordered(first[index].codePoint, second[index].codePoint);
    }
    return NSOrderedSame;
}

// By code point; runs of digits by their value where asked.
NSComparisonResult compareFolded(Characters first, Characters second, bool isNumeric) {
    while (!first.empty() && !second.empty()) {
        if (isNumeric && isDigit(first[0]) && isDigit(second[0])) {
            Characters const firstNumber = takeNumber(first);
            NSComparisonResult const order = compareNumbers(firstNumber, takeNumber(second));
            if (order != NSOrderedSame) return order;
            continue;
        }
        if (first[0].codePoint != second[0].codePoint) return ordered(first[0].codePoint, second[0].codePoint);
        first = first.subspan(1);
        second = second.subspan(1);
    }
    return ordered(first.size(), second.size());
}

NSComparisonResult compareWhole(std::u16string_view first, std::u16string_view second, TextFolding const& folding,
                                bool isNumeric = false) {
    return compareFolded(foldedText(first, folding), foldedText(second, folding), isNumeric);
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
    std::size_t const index = characterStart(first, second, static_cast<std::size_t>(one - first.begin()));
    return ordered(codePointAt(first, index), codePointAt(second, index));
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

} // namespace

NSComparisonResult NSString::compare_(NSString const& other) const { return compare_options_(other, 0); }

NSComparisonResult NSString::caseInsensitiveCompare_(NSString const& other) const {
    return compare_options_(other, NSCaseInsensitiveSearch);
}

NSComparisonResult NSString::compare_options_(NSString const& other, NSUInteger options) const {
    if (*this == nil) return NSOrderedSame;
    std::u16string_view const first = codeUnits();
    std::u16string_view const second = other.codeUnits();
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

} // namespace mac
