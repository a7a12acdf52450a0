#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <memory>
#include <unicode/ucasemap.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

namespace mac {

namespace {

using CaseMapping = std::int32_t (*)(UChar*, std::int32_t, UChar const*, std::int32_t, char const*, UErrorCode*);

// The root locale: the rules of the Turkish i and of Lithuanian dots are not asked for.
constexpr char RootLocale[] = "";
// No code unit becomes more than three.
constexpr std::size_t LongestMapping = 3;

std::u16string mapped(std::u16string_view text, CaseMapping mapping) {
    std::u16string result(text.size() * LongestMapping, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t const length = mapping(result.data(), static_cast<std::int32_t>(result.size()), text.data(),
                                        static_cast<std::int32_t>(text.size()), RootLocale, &status);
    result.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return result;
}

constexpr char16_t uppercaseASCII(char16_t unit) {
    return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
}

template <class UnitMapping>
NSString withCase(std::u16string_view text, UnitMapping const& ofASCII, CaseMapping mapping) {
    if (std::ranges::any_of(text, [](char16_t unit) { return unit >= 0x80; })) return makeString(mapped(text, mapping));
    std::u16string result(text);
    std::ranges::transform(result, result.begin(), ofASCII);
    return makeString(std::move(result));
}

// What stands inside of a word without being a letter: apostrophes and marks.
bool goesOnWithWord(char32_t character) {
    if (character == U'.' || character == U':') return false;
    return u_hasBinaryProperty(static_cast<UChar32>(character), UCHAR_CASE_IGNORABLE) != 0;
}

bool isLetter(char32_t character) {
    auto const point = static_cast<UChar32>(character);
    return u_isalpha(point) != 0 || (U_GET_GC_MASK(point) & U_GC_M_MASK) != 0;
}

// Unicode's full title case of single characters: one may become several.
class TitleCase {
public:
    // The whole text is one word and all of it is looked at, so that no breaks between words are asked for.
    TitleCase() {
        UErrorCode status = U_ZERO_ERROR;
        m_mapping.reset(ucasemap_open(RootLocale, U_TITLECASE_WHOLE_STRING | U_TITLECASE_NO_BREAK_ADJUSTMENT, &status));
    }

    // Unchanged if the tables are missing.
    std::u16string of(std::u16string_view character) const {
        if (character.front() < 0x80) return {uppercaseASCII(character.front())};
        std::u16string title(character.size() * LongestMapping, u'\0');
        UErrorCode status = U_ZERO_ERROR;
        std::int32_t const length =
            m_mapping ? ucasemap_toTitle(m_mapping.get(), title.data(), static_cast<std::int32_t>(title.size()),
                                         character.data(), static_cast<std::int32_t>(character.size()), &status)
                      : 0;
        if (length == 0 || U_FAILURE(status)) return std::u16string(character);
        title.resize(static_cast<std::size_t>(length));
        return title;
    }

private:
    struct Close {
        void operator()(UCaseMap* mapping) const { ucasemap_close(mapping); }
    };
    std::unique_ptr<UCaseMap, Close> m_mapping;
};

std::u16string withCapitals(std::u16string_view text) {
    TitleCase const titleCase;
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t index = 0; index < text.size();) {
        std::size_t const first = unitCount(codePointAt(text, index));
        if (!isLetter(codePointAt(text, index))) {
            result.append(text.substr(index, first));
            index += first;
            continue;
        }
        std::size_t end = index + first;
        while (end < text.size() && (isLetter(codePointAt(text, end)) || goesOnWithWord(codePointAt(text, end))))
            end += unitCount(codePointAt(text, end));
        result.append(titleCase.of(text.substr(index, first)));
        // The whole word, since the last sigma of one is another.
        std::u16string const small = mapped(text.substr(index, end - index), &u_strToLower);
        result.append(small.substr(mapped(text.substr(index, first), &u_strToLower).size()));
        index = end;
    }
    return result;
}

} // namespace

NSString NSString::capitalizedString() const {
    return *this == nil ? NSString(nil) : makeString(withCapitals(codeUnits()));
}

NSString NSString::lowercaseString() const {
    return *this == nil ? NSString(nil) : withCase(codeUnits(), lowercaseASCII, &u_strToLower);
}

NSString NSString::uppercaseString() const {
    return *this == nil ? NSString(nil) : withCase(codeUnits(), uppercaseASCII, &u_strToUpper);
}

} // namespace mac
