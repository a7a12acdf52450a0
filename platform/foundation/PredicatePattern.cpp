#include "platform/foundation/PredicatePattern.h"
#include "platform/foundation/Exceptions.h"
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/uregex.h>
#include <unicode/ustring.h>

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

// Runs one of ICU's functions that fill a buffer, once more when it was too small.
template <class Function>
std::u16string filled(std::size_t expected, Function const& function) {
    std::u16string buffer(expected + 16, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t length = function(buffer.data(), static_cast<std::int32_t>(buffer.size()), &status);
    if (status == U_BUFFER_OVERFLOW_ERROR) {
        status = U_ZERO_ERROR;
        buffer.resize(static_cast<std::size_t>(length));
        length = function(buffer.data(), length, &status);
    }
    check(status, "Text cannot be folded");
    buffer.resize(static_cast<std::size_t>(length));
    return buffer;
}

std::u16string decomposed(std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    UNormalizer2 const* const normalizer = unorm2_getNFDInstance(&status);
    check(status, "Text cannot be normalised");
    return filled(text.size(), [&](char16_t* buffer, std::int32_t capacity, UErrorCode* error) {
        return unorm2_normalize(normalizer, text.data(), lengthForICU(text), buffer, capacity, error);
    });
}

std::u16string withoutMarks(std::u16string_view text) {
    std::u16string kept;
    kept.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        std::size_t const start = offset;
        UChar32 point = 0;
        U16_NEXT(text.data(), offset, text.size(), point);
        if (u_charType(point) != U_NON_SPACING_MARK) kept += text.substr(start, offset - start);
    }
    return kept;
}

std::size_t characterLength(std::u16string_view text, std::size_t offset) {
    std::size_t end = offset;
    U16_FWD_1(text.data(), end, text.size());
    return end - offset;
}

bool isAscii(std::u16string_view text) {
    for (char16_t const unit : text) {
        if (unit >= 0x80) return false;
    }
    return true;
}

} // namespace

std::u16string foldedText(std::u16string_view text, NSUInteger options) {
    if (options == 0 || (isAscii(text) && !(options & NSCaseInsensitiveSearch))) return std::u16string(text);
    if (isAscii(text)) {
        std::u16string folded(text);
        for (char16_t& unit : folded)
            unit = unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
        return folded;
    }
    std::u16string folded = decomposed(text);
    if (options & NSDiacriticInsensitiveSearch) folded = withoutMarks(folded);
    if (!(options & NSCaseInsensitiveSearch)) return folded;
    folded = filled(folded.size(), [&](char16_t* buffer, std::int32_t capacity, UErrorCode* error) {
        return u_strFoldCase(buffer, capacity, folded.data(), lengthForICU(folded), U_FOLD_CASE_DEFAULT, error);
    });
    folded = decomposed(folded);
    // Folding İ brings a mark forth.
    return options & NSDiacriticInsensitiveSearch ? withoutMarks(folded) : folded;
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
    std::u16string text = foldedText(pattern.codeUnits(), options & NSDiacriticInsensitiveSearch);
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
    std::u16string const folded = foldedText(text, m_options & NSDiacriticInsensitiveSearch);
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
