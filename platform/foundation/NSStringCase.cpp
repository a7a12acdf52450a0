#include "platform/foundation/StringBody.h"
#include "platform/foundation/TextFolding.h"
#include <algorithm>
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

} // namespace

NSString NSString::lowercaseString() const {
    return *this == nil ? NSString(nil) : withCase(codeUnits(), lowercaseASCII, &u_strToLower);
}

NSString NSString::uppercaseString() const {
    return *this == nil ? NSString(nil) : withCase(codeUnits(), uppercaseASCII, &u_strToUpper);
}

} // namespace mac
