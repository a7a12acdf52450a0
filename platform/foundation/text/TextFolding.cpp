#include "platform/foundation/text/TextFolding.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <array>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

namespace mac {

namespace {

using FoldedText = std::vector<FoldedCharacter>;

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

void appendAll(FoldedText& characters, std::u16string_view units, FoldedCharacter const& origin) {
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
void putMarksInOrder(FoldedText& characters) {
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

// What one code point becomes; none becomes more than four code points, so that nothing is allocated.
std::u16string decomposed(char32_t codePoint) {
    std::array<char16_t, 16> units{};
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t length = -1;
    if (codePoint >= FirstThatDecomposes)
        length = unorm2_getDecomposition(NormalForms::shared().canonical, static_cast<UChar32>(codePoint), units.data(),
                                         static_cast<std::int32_t>(units.size()), &status);
    std::u16string result;
    if (length < 0 || U_FAILURE(status))
        appendCodePoint(result, codePoint);
    else
        result.assign(units.data(), static_cast<std::size_t>(length));
    return result;
}

std::u16string caseFolded(char32_t codePoint) {
    std::u16string text;
    appendCodePoint(text, codePoint);
    if (codePoint < 0x80) return {lowercaseASCII(text[0])};
    std::array<char16_t, 16> units{};
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t const length = u_strFoldCase(units.data(), static_cast<std::int32_t>(units.size()), text.data(),
                                              static_cast<std::int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &status);
    if (U_SUCCESS(status)) text.assign(units.data(), static_cast<std::size_t>(length));
    return text;
}

// Most characters do, and these two questions are quick.
bool becomesItself(char32_t codePoint) {
    auto const point = static_cast<UChar32>(codePoint);
    return unorm2_isInert(NormalForms::shared().canonical, point) && !u_hasBinaryProperty(point, UCHAR_CASE_SENSITIVE);
}

template <class Mapping>
void mapEach(FoldedText& characters, Mapping const& mapping) {
    FoldedText mapped;
    mapped.reserve(characters.size());
    for (FoldedCharacter const& character : characters)
        appendAll(mapped, mapping(character.codePoint), character);
    characters.swap(mapped);
}

void decompose(FoldedText& characters) {
    mapEach(characters, decomposed);
    putMarksInOrder(characters);
}

// Full-width letters and half-width katakana become the usual ones.
void foldWidth(FoldedText& characters) {
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
    FoldedText characters;
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
    if (folding.isCaseInsensitive) mapEach(characters, caseFolded);
    // What folding made may have marks again.
    if (folding.isCaseInsensitive && decomposes) decompose(characters);
    if (folding.isDiacriticInsensitive)
        std::erase_if(characters, [](FoldedCharacter const& character) { return isCombining(character.codePoint); });
    return characters;
}

char32_t firstFoldedCodePoint(char32_t codePoint, TextFolding const& folding) {
    if (becomesItself(codePoint)) return codePoint;
    char32_t const first = folding.isCanonical ? codePointAt(decomposed(codePoint), 0) : codePoint;
    if (!folding.isCaseInsensitive) return first;
    char32_t const folded = codePointAt(caseFolded(first), 0);
    return folding.isCanonical ? codePointAt(decomposed(folded), 0) : folded;
}

bool isCombining(char32_t codePoint) {
    return codePoint >= 0x300 && (U_GET_GC_MASK(static_cast<UChar32>(codePoint)) & U_GC_M_MASK) != 0;
}

} // namespace mac
