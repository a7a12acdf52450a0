#pragma once

#include "platform/foundation/text/Encodings.h"
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

// Text as comparisons and searches see it, for implementations. Unicode's own rules; no locale plays a part. Any
// thread.

namespace mac {

struct TextFolding {
    bool isCaseInsensitive{false};
    // Canonically equivalent text becomes the same.
    bool isCanonical{true};
    bool isDiacriticInsensitive{false};
    bool isWidthInsensitive{false};

    // Whether only identical code points match.
    bool isLiteral() const {
        return !isCaseInsensitive && !isCanonical && !isDiacriticInsensitive && !isWidthInsensitive;
    }
};

// The folding that the NSStringCompareOptions ask for.
TextFolding foldingOf(std::uint32_t options);

// A code point of folded text, and the code units that it came from. Several may come from one character.
struct FoldedCharacter {
    char32_t codePoint;
    std::size_t start;
    std::size_t end;
};

std::vector<FoldedCharacter> foldedText(std::u16string_view units, TextFolding const& folding);

// The first folded code point of a character that is not a mark, with width and marks significant.
char32_t firstFoldedCodePoint(char32_t codePoint, TextFolding const& folding);
// Marks, which belong to the character before them.
bool isCombining(char32_t codePoint);

} // namespace mac
