#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/TextFolding.h"
#include <algorithm>
#include <array>
#include <unicode/unorm2.h>

namespace mac {

namespace {

struct LookAlike {
    char32_t character;
    std::u16string_view text;
};

// What has no decomposition and still a plain form that everybody reads as the same.
constexpr std::array LookAlikes{
    LookAlike{0x00AB, u"<<"}, LookAlike{0x00AD, u"-"},  LookAlike{0x00BB, u">>"}, LookAlike{0x00C6, u"AE"},
    LookAlike{0x00D7, u"x"},  LookAlike{0x00D8, u"O"},  LookAlike{0x00DF, u"ss"}, LookAlike{0x00E6, u"ae"},
    LookAlike{0x00F8, u"o"},  LookAlike{0x0131, u"i"},  LookAlike{0x0141, u"L"},  LookAlike{0x0142, u"l"},
    LookAlike{0x0152, u"OE"}, LookAlike{0x0153, u"oe"}, LookAlike{0x2010, u"-"},  LookAlike{0x2012, u"-"},
    LookAlike{0x2013, u"-"},  LookAlike{0x2014, u"-"},  LookAlike{0x2018, u"'"},  LookAlike{0x2019, u"'"},
    LookAlike{0x201A, u","},  LookAlike{0x201C, u"\""}, LookAlike{0x201D, u"\""}, LookAlike{0x2022, u"*"},
    LookAlike{0x2039, u"<"},  LookAlike{0x203A, u">"},  LookAlike{0x2044, u"/"},
};

// The compatible decomposition, without marks.
std::u16string withoutMarks(std::u16string_view character) {
    UErrorCode status = U_ZERO_ERROR;
    UNormalizer2 const* const normalizer = unorm2_getNFKDInstance(&status);
    // No character has a longer one.
    std::array<char16_t, 32> units{};
    std::int32_t const length =
        unorm2_normalize(normalizer, character.data(), static_cast<std::int32_t>(character.size()), units.data(),
                         static_cast<std::int32_t>(units.size()), &status);
    std::u16string plain;
    if (U_FAILURE(status)) return plain;
    std::u16string_view const decomposed(units.data(), static_cast<std::size_t>(length));
    for (std::size_t index = 0; index < decomposed.size();) {
        char32_t const part = codePointAt(decomposed, index);
        if (!isCombining(part)) appendCodePoint(plain, part);
        index += unitCount(part);
    }
    return plain;
}

std::u16string_view lookAlikeOf(char32_t character) {
    auto const* const found = std::ranges::find(LookAlikes, character, &LookAlike::character);
    return found == LookAlikes.end() ? std::u16string_view() : found->text;
}

bool isHeld(std::u16string_view text, NSStringEncoding encoding) { return bytesFromUnits(text, encoding).has_value(); }

std::u16string withLookAlikes(std::u16string_view text, NSStringEncoding encoding) {
    std::u16string result;
    for (std::size_t index = 0; index < text.size();) {
        char32_t const codePoint = codePointAt(text, index);
        std::u16string_view const character = text.substr(index, unitCount(codePoint));
        result.append(isHeld(character, encoding) ? character : lookAlikeOf(codePoint));
        index += character.size();
    }
    return result;
}

// What stands for the character in the encoding.
std::u16string heldForm(std::u16string_view character, NSStringEncoding encoding) {
    if (isHeld(character, encoding)) return std::u16string(character);
    char32_t const codePoint = codePointAt(character, 0);
    if (std::u16string_view const alike = lookAlikeOf(codePoint); !alike.empty() && isHeld(alike, encoding))
        return std::u16string(alike);
    // A mark goes without leaving anything.
    if (isCombining(codePoint)) return {};
    std::u16string const plain = withLookAlikes(withoutMarks(character), encoding);
    return plain.empty() ? u"?" : plain;
}

} // namespace

std::optional<std::string> bytesFromUnitsWithLoss(std::u16string_view units, NSStringEncoding encoding) {
    std::u16string held;
    for (std::size_t index = 0; index < units.size();) {
        std::size_t const count = unitCount(codePointAt(units, index));
        std::u16string_view const character = units.substr(index, count);
        // ASCII is in every encoding.
        held.append(units[index] < 0x80 ? std::u16string(character) : heldForm(character, encoding));
        index += count;
    }
    return bytesFromUnits(held, encoding);
}

} // namespace mac
