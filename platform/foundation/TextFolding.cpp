#include "platform/foundation/TextFolding.h"
#include "platform/foundation/Encodings.h"
#include <algorithm>
#include <array>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace mac {

namespace {

using Characters = std::vector<FoldedCharacter>;

constexpr char32_t FirstThatDecomposes = 0xC0;

// The tables of Unicode's normal forms; they live as long as the program.
struct NormalForms {
    UNormalizer2 const* canonical;
    UNormalizer2 const* compatible;

    static NormalForms const& shared() {
        static NormalForms const forms = [] {
            UErrorCode status = U_ZERO_ERROR;
            return NormalForms{unorm2_getNFDInstance(&status), unorm2_getNFKDInstance(&status)};
        }();
        return forms;
    }
};

void appendAll(Characters& characters, std::u16string_view units, FoldedCharacter const& origin) {
    for (std::size_t index = 0; index < units.size();) {
        char32_t const codePoint = codePointAt(units, index);
        characters.push_back({codePoint, origin.start, origin.end});
        index += unitCount(codePoint);
    }
}

std::uint8_t combiningClass(char32_t codePoint) {
    if (codePoint < 0x300) return 0;
    return unorm2_getCombiningClass(NormalForms::shared().canonical, static_cast<UChar32>(codePoint));
}

// Marks of different classes stand in the order of their classes, whatever order they were written in.
void putMarksInOrder(Characters& characters) {
    auto const isStarter = [](FoldedCharacter const& character) { return combiningClass(character.codePoint) == 0; };
    auto run = std::find_if_not(characters.begin(), characters.end(), isStarter);
    while (run != characters.end()) {
        auto const runEnd = std::find_if(run, characters.end(), isStarter);
        std::stable_sort(run, runEnd, [](FoldedCharacter const& first, FoldedCharacter const& second) {
            return combiningClass(first.codePoint) < combiningClass(second.codePoint);
        });
        run = std::find_if_not(runEnd, characters.end(), isStarter);
    }
}

void decompose(Characters& characters) {
    Characters decomposed;
    decomposed.reserve(characters.size());
    for (FoldedCharacter const& character : characters) {
        // The longest canonical decomposition has four code points.
        std::array<char16_t, 32> units{};
        UErrorCode status = U_ZERO_ERROR;
        std::int32_t const length =
            character.codePoint < FirstThatDecomposes
                ? -1
                : unorm2_getDecomposition(NormalForms::shared().canonical, static_cast<UChar32>(character.codePoint),
                                          units.data(), static_cast<std::int32_t>(units.size()), &status);
        if (length < 0 || U_FAILURE(status))
            decomposed.push_back(character);
        else
            appendAll(decomposed, {units.data(), static_cast<std::size_t>(length)}, character);
    }
    putMarksInOrder(decomposed);
    characters.swap(decomposed);
}

// Full-width letters and half-width katakana become the usual ones.
void foldWidth(Characters& characters) {
    for (FoldedCharacter& character : characters) {
        auto const codePoint = static_cast<UChar32>(character.codePoint);
        std::int32_t const kind = u_getIntPropertyValue(codePoint, UCHAR_DECOMPOSITION_TYPE);
        if (kind != U_DT_WIDE && kind != U_DT_NARROW) continue;
        std::array<char16_t, 4> units{};
        UErrorCode status = U_ZERO_ERROR;
        std::int32_t const length = unorm2_getRawDecomposition(NormalForms::shared().compatible, codePoint,
                                                               units.data(), units.size(), &status);
        if (length > 0 && U_SUCCESS(status)) character.codePoint = codePointAt({units.data(), units.size()}, 0);
    }
}

void foldCase(Characters& characters) {
    Characters folded;
    folded.reserve(characters.size());
    for (FoldedCharacter const& character : characters) {
        if (character.codePoint < 0x80) {
            folded.push_back(
                {lowercaseASCII(static_cast<char16_t>(character.codePoint)), character.start, character.end});
            continue;
        }
        std::array<char16_t, 2> units{};
        std::size_t count = 0;
        U16_APPEND_UNSAFE(units.data(), count, character.codePoint);
        // One code point folds to three at most.
        std::array<char16_t, 8> result{};
        UErrorCode status = U_ZERO_ERROR;
        std::int32_t const length = u_strFoldCase(result.data(), result.size(), units.data(),
                                                  static_cast<std::int32_t>(count), U_FOLD_CASE_DEFAULT, &status);
        if (U_FAILURE(status))
            folded.push_back(character);
        else
            appendAll(folded, {result.data(), static_cast<std::size_t>(length)}, character);
    }
    characters.swap(folded);
}

} // namespace

TextFolding foldingOf(std::uint32_t options) {
    return {
        .isCaseInsensitive = (options & NSCaseInsensitiveSearch) != 0,
        .isCanonical = (options & NSLiteralSearch) == 0,
        .isDiacriticInsensitive = (options & NSDiacriticInsensitiveSearch) != 0,
        .isWidthInsensitive = (options & NSWidthInsensitiveSearch) != 0,
    };
}

std::vector<FoldedCharacter> foldedText(std::u16string_view units, TextFolding const& folding) {
    Characters characters;
    characters.reserve(units.size());
    for (std::size_t index = 0; index < units.size();) {
        char32_t const codePoint = codePointAt(units, index);
        std::size_t const end = index + unitCount(codePoint);
        characters.push_back({codePoint, index, end});
        index = end;
    }
    if (folding.isWidthInsensitive) foldWidth(characters);
    bool const decomposes = folding.isCanonical || folding.isDiacriticInsensitive;
    if (decomposes) decompose(characters);
    if (folding.isCaseInsensitive) foldCase(characters);
    // What folding made may have marks again.
    if (folding.isCaseInsensitive && decomposes) decompose(characters);
    if (folding.isDiacriticInsensitive)
        std::erase_if(characters, [](FoldedCharacter const& character) { return isCombining(character.codePoint); });
    return characters;
}

char32_t codePointAt(std::u16string_view units, std::size_t index) {
    char16_t const unit = units[index];
    if (!isHighSurrogate(unit) || index + 1 == units.size() || !isLowSurrogate(units[index + 1])) return unit;
    return 0x10000 + ((unit & 0x3FFU) << 10) + (units[index + 1] & 0x3FFU);
}

bool isCombining(char32_t codePoint) {
    return codePoint >= 0x300 && (U_GET_GC_MASK(static_cast<UChar32>(codePoint)) & U_GC_M_MASK) != 0;
}

} // namespace mac
