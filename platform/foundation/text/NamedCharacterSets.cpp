#include "platform/foundation/text/CharacterSetBody.h"
#include <memory>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>

namespace mac {

namespace {

// The framework's own lists, whatever the locale: they have the zero-width space and no U+180E.
constexpr bool isWhitespace(char16_t unit) {
    return unit == 0x09 || unit == 0x20 || unit == 0xA0 || unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200B) ||
           unit == 0x202F || unit == 0x205F || unit == 0x3000;
}

constexpr bool isNewline(char16_t unit) {
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

// Sets are never destroyed: objects may ask for them until the program's last instruction.
NSCharacterSet const* neverDestroyed(CharacterMembers members) {
    return std::make_unique<NSCharacterSet>(adopt<NSCharacterSet>(std::move(members))).release();
}

struct Selection {
    CharacterMembers members;
    std::uint32_t categories;
};

UBool addRange(void const* context, UChar32 start, UChar32 limit, UCharCategory category) {
    auto& selection = *static_cast<Selection*>(const_cast<void*>(context));
    if ((selection.categories & U_MASK(category)) != 0)
        selection.members.add(static_cast<char32_t>(start), static_cast<char32_t>(limit));
    return true;
}

// The characters of Unicode's categories, of which the mask has a bit each.
NSCharacterSet const* ofCategories(std::uint32_t categories) {
    Selection selection{{}, categories};
    u_enumCharTypes(addRange, &selection);
    return neverDestroyed(std::move(selection.members));
}

template <class Test>
NSCharacterSet const* ofUnits(Test const& isMember) {
    CharacterMembers members;
    for (char32_t unit = 0; unit < CharacterMembers::PlaneSize; ++unit) {
        if (isMember(static_cast<char16_t>(unit))) members.add(unit, unit + 1);
    }
    return neverDestroyed(std::move(members));
}

NSCharacterSet const* ofDecomposable() {
    UErrorCode status = U_ZERO_ERROR;
    UNormalizer2 const* const canonical = unorm2_getNFDInstance(&status);
    CharacterMembers members;
    for (char32_t character = 0; U_SUCCESS(status) && character < CharacterMembers::End; ++character) {
        char16_t units[8];
        UErrorCode characterStatus = U_ZERO_ERROR;
        std::int32_t const length = unorm2_getDecomposition(canonical, static_cast<UChar32>(character), units,
                                                            std::size(units), &characterStatus);
        if (length >= 0) members.add(character, character + 1);
    }
    return neverDestroyed(std::move(members));
}

} // namespace

NSCharacterSet NSCharacterSet::alphanumericCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::capitalizedLetterCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_LT_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::controlCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_CC_MASK | U_GC_CF_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::decimalDigitCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_ND_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::decomposableCharacterSet() {
    static NSCharacterSet const& set = *ofDecomposable();
    return set;
}

NSCharacterSet NSCharacterSet::illegalCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_CN_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::letterCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_L_MASK | U_GC_M_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::lowercaseLetterCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_LL_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::newlineCharacterSet() {
    static NSCharacterSet const& set = *ofUnits(isNewline);
    return set;
}

NSCharacterSet NSCharacterSet::nonBaseCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_M_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::punctuationCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_P_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::symbolCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_S_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::uppercaseLetterCharacterSet() {
    static NSCharacterSet const& set = *ofCategories(U_GC_LU_MASK | U_GC_LT_MASK);
    return set;
}

NSCharacterSet NSCharacterSet::whitespaceCharacterSet() {
    static NSCharacterSet const& set = *ofUnits(isWhitespace);
    return set;
}

NSCharacterSet NSCharacterSet::whitespaceAndNewlineCharacterSet() {
    static NSCharacterSet const& set = *ofUnits([](char16_t unit) { return isWhitespace(unit) || isNewline(unit); });
    return set;
}

} // namespace mac
