#include "platform/foundation/predicates/PredicatePattern.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/TextFolding.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <unicode/uregex.h>

namespace mac {

namespace {

// In ICU's steps, some milliseconds each, and in bytes of its stack: far more than a pattern over a file name takes.
constexpr std::int32_t MostSteps = 200;
constexpr std::int32_t LargestStack = 8 << 20;

std::int32_t lengthForICU(std::u16string_view text) {
    if (text.size() > 0x3FFFFFFF) throw NSInvalidArgumentException("The text is too long to compare");
    return static_cast<std::int32_t>(text.size());
}

void check(UErrorCode status, char const* what) {
    if (U_FAILURE(status)) throw NSGenericException(std::string(what) + ": " + u_errorName(status));
}

std::size_t characterLength(std::u16string_view text, std::size_t offset) {
    return unitCount(codePointAt(text, offset));
}

bool isAscii(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
}

} // namespace

std::u16string comparableText(std::u16string_view text, NSUInteger options) {
    if (options == 0) return std::u16string(text);
    std::u16string folded;
    folded.reserve(text.size());
    if (isAscii(text)) {
        bool const foldsCase = (options & NSCaseInsensitiveSearch) != 0;
        for (char16_t const unit : text)
            folded += foldsCase ? lowercaseASCII(unit) : unit;
        return folded;
    }
    for (FoldedCharacter const& character : foldedText(text, foldingOf(options)))
        appendCodePoint(folded, character.codePoint);
    return folded;
}

bool containsComparable(std::u16string_view text, std::u16string_view part, NSUInteger options) {
    std::u16string const wanted = comparableText(part, options);
    if (wanted.empty()) return false;
    bool const foldsCase = (options & NSCaseInsensitiveSearch) != 0;
    // Filters ask this of thousands of texts: most are searched where they stand.
    if (!isAscii(text)) return comparableText(text, options).find(wanted) != std::u16string::npos;
    auto const isSame = [&](char16_t unit, char16_t sought) {
        return (foldsCase ? lowercaseASCII(unit) : unit) == sought;
    };
    return std::search(text.begin(), text.end(), wanted.begin(), wanted.end(), isSame) != text.end();
}

bool matchesWildcards(std::u16string_view text, std::u16string_view pattern) {
    // Where to go on after the last * when what follows it does not match: it then stands for one character more.
    std::size_t star = std::u16string_view::npos;
    std::size_t afterStar = 0;
    std::size_t place = 0;
    std::size_t step = 0;
    while (place < text.size()) {
        if (step < pattern.size() && pattern[step] == u'*') {
            star = step++;
            afterStar = place;
            continue;
        }
        if (step < pattern.size() && pattern[step] == u'?') {
            place += characterLength(text, place);
            ++step;
            continue;
        }
        bool const isEscaped = step + 1 < pattern.size() && pattern[step] == u'\\';
        if (std::size_t const literal = step + (isEscaped ? 1 : 0);
            literal < pattern.size() && pattern[literal] == text[place]) {
            ++place;
            step = literal + 1;
            continue;
        }
        if (star == std::u16string_view::npos) return false;
        afterStar += characterLength(text, afterStar);
        place = afterStar;
        step = star + 1;
    }
    return pattern.find_first_not_of(u'*', step) == std::u16string_view::npos;
}

void PredicatePattern::Close::operator()(URegularExpression* expression) const { uregex_close(expression); }

PredicatePattern::PredicatePattern(NSString const& pattern, NSUInteger options) : m_options(options) {
    // Case is the expression's own affair: folding its text would change what \S and \W mean.
    std::u16string text = comparableText(pattern.codeUnits(), options & NSDiacriticInsensitiveSearch);
    // ICU refuses to compile the empty expression.
    if (text.empty()) text = u"(?:)";
    std::uint32_t const flags = (options & NSCaseInsensitiveSearch) != 0 ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0;
    UErrorCode status = U_ZERO_ERROR;
    UParseError place{};
    m_expression.reset(uregex_open(text.data(), lengthForICU(text), flags, &place, &status));
    if (U_FAILURE(status))
        throw NSInvalidArgumentException("The regular expression \"" + pattern.UTF8String() +
                                         "\" is wrong at character " + std::to_string(place.offset) + ": " +
                                         u_errorName(status));
}

bool PredicatePattern::matches(std::u16string_view text) const {
    std::u16string const folded = comparableText(text, m_options & NSDiacriticInsensitiveSearch);
    UErrorCode status = U_ZERO_ERROR;
    // Matching changes the expression: each match has its own, which shares the compiled pattern.
    std::unique_ptr<URegularExpression, Close> const expression(uregex_clone(m_expression.get(), &status));
    uregex_setTimeLimit(expression.get(), MostSteps, &status);
    uregex_setStackLimit(expression.get(), LargestStack, &status);
    uregex_setText(expression.get(), folded.data(), lengthForICU(folded), &status);
    bool const matches = uregex_matches(expression.get(), -1, &status) != 0;
    check(status, "The regular expression cannot be applied");
    return matches;
}

} // namespace mac
