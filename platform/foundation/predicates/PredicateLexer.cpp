#include "platform/foundation/predicates/PredicateLexer.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <unicode/uchar.h>

namespace mac {

namespace {

constexpr auto ReservedWords = std::to_array<std::string_view>({
    "all",      "and",      "any",   "beginswith",     "between", "cast",
    "contains", "endswith", "false", "falsepredicate", "in",      "like",
    "matches",  "nil",      "no",    "none",           "not",     "null",
    "or",       "self",     "some",  "subquery",       "true",    "truepredicate",
    "yes",
});

// Reserved too, but without a meaning where a key may stand.
constexpr auto WordsOfIndexes =
    std::to_array<std::string_view>({"anykey", "caseinsensitive", "ci", "first", "last", "size"});

// Longest first; the second is the spelling that the parser knows.
constexpr std::array<std::pair<std::u16string_view, std::u16string_view>, 18> Symbols{{
    {u"==", u"=="},
    {u"!=", u"!="},
    {u"<>", u"!="},
    {u"<=", u"<="},
    {u"=<", u"<="},
    {u">=", u">="},
    {u"=>", u">="},
    {u"&&", u"&&"},
    {u"||", u"||"},
    {u"=", u"=="},
    {u"<", u"<"},
    {u">", u">"},
    {u"!", u"!"},
    {u"(", u"("},
    {u")", u")"},
    {u"{", u"{"},
    {u"}", u"}"},
    {u",", u","},
}};

// What C lets stand before a conversion letter and this language needs not.
constexpr std::u16string_view LengthModifiers = u"hlqLzjt";

bool isDigitOf(int base, char16_t unit) { return unit < 0x80 && u_digit(unit, static_cast<std::int8_t>(base)) >= 0; }

bool startsKey(char32_t point) { return point == U'_' || u_isIDStart(static_cast<UChar32>(point)) != 0; }

bool continuesKey(char32_t point) {
    auto const character = static_cast<UChar32>(point);
    return point == U'_' || (u_isIDPart(character) != 0 && u_isIDIgnorable(character) == 0);
}

std::string asciiOf(std::u16string_view text) {
    std::string ascii;
    for (char16_t const unit : text)
        ascii += static_cast<char>(unit);
    return ascii;
}

// Nil when it does not fit into 64 bits.
NSNumber integerNumber(std::string const& digits, bool isNegative, int base) {
    constexpr auto mostNegative = std::uint64_t{1} << 63U;
    char const* const end = digits.data() + digits.size();
    std::uint64_t integer = 0;
    auto const read = std::from_chars(digits.data(), end, integer, base);
    if (read.ec != std::errc() || read.ptr != end || (isNegative && integer > mostNegative)) return nil;
    if (isNegative) return NSNumber::numberWithLongLong_(static_cast<long long>(0 - integer));
    if (integer < mostNegative) return NSNumber::numberWithLongLong_(static_cast<long long>(integer));
    return NSNumber::numberWithUnsignedLongLong_(integer);
}

NSNumber realNumber(std::string const& digits, bool isNegative) {
    char const* const end = digits.data() + digits.size();
    double real = 0;
    auto const read = std::from_chars(digits.data(), end, real);
    if (read.ec != std::errc() || read.ptr != end) return nil;
    return NSNumber::numberWithDouble_(isNegative ? -real : real);
}

} // namespace

bool equalsIgnoringCase(std::u16string_view text, std::string_view lowercaseAscii) {
    return std::ranges::equal(text, lowercaseAscii, [](char16_t unit, char letter) {
        return (unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit) == static_cast<unsigned char>(letter);
    });
}

bool isReservedInPredicates(std::u16string_view word) {
    return std::ranges::any_of(ReservedWords,
                               [&](std::string_view reserved) { return equalsIgnoringCase(word, reserved); });
}

bool isWrittenWithMark(std::u16string_view word) {
    return isReservedInPredicates(word) || std::ranges::any_of(WordsOfIndexes, [&](std::string_view reserved) {
               return equalsIgnoringCase(word, reserved);
           });
}

bool isIdentifierInPredicates(std::u16string_view text) {
    for (std::size_t offset = 0; offset < text.size();) {
        char32_t const point = codePointAt(text, offset);
        if (offset == 0 ? !startsKey(point) : !continuesKey(point)) return false;
        offset += unitCount(point);
    }
    return !text.empty();
}

void PredicateLexer::fail(std::size_t position, std::string const& what) const {
    throw NSInvalidArgumentException("Unable to parse the predicate \"" +
                                     NSString::stringWithCodeUnits(m_text).UTF8String() + "\" at character " +
                                     std::to_string(position) + ": " + what);
}

char16_t PredicateLexer::unitAt(std::size_t offset) const { return offset < m_text.size() ? m_text[offset] : u'\0'; }

void PredicateLexer::skipWhiteSpace() {
    while (m_place < m_text.size() && u_isUWhiteSpace(m_text[m_place]))
        ++m_place;
}

bool PredicateLexer::startsIdentifier(std::size_t offset) const {
    return offset < m_text.size() && startsKey(codePointAt(m_text, offset));
}

// Empty when none starts here.
std::u16string PredicateLexer::identifier() {
    std::size_t const start = m_place;
    if (!startsIdentifier(m_place)) return {};
    for (char32_t point = 0; m_place < m_text.size(); m_place += unitCount(point)) {
        point = codePointAt(m_text, m_place);
        if (!continuesKey(point)) break;
    }
    return std::u16string(m_text.substr(start, m_place - start));
}

// "name", "@count", or #name where the name is a reserved word.
// Linux: #"any text" is a key that the language cannot spell otherwise, so that a predicate's format always reads back.
std::u16string PredicateLexer::keyPathComponent() {
    char16_t const mark = unitAt(m_place);
    if (mark == u'#' || mark == u'@') ++m_place;
    if (mark == u'#' && (unitAt(m_place) == u'"' || unitAt(m_place) == u'\'')) return string().text;
    std::u16string component(mark == u'@' ? 1 : 0, u'@');
    std::u16string const key = identifier();
    if (key.empty()) fail(m_place, "a key is missing");
    return component.append(key);
}

void PredicateLexer::appendComponents(std::u16string& path) {
    while (unitAt(m_place) == u'.') {
        ++m_place;
        path += u'.';
        path += keyPathComponent();
    }
}

PredicateToken PredicateLexer::name() {
    PredicateToken token{.kind = PredicateToken::Kind::Word, .position = m_place};
    if (unitAt(m_place) == u'#' || unitAt(m_place) == u'@') {
        token.kind = PredicateToken::Kind::KeyPath;
        token.text = keyPathComponent();
    } else {
        token.text = identifier();
    }
    bool const startsWithSelf = token.kind == PredicateToken::Kind::Word && equalsIgnoringCase(token.text, "self");
    if (unitAt(m_place) != u'.') return token;
    token.kind = PredicateToken::Kind::KeyPath;
    appendComponents(token.text);
    if (startsWithSelf) token.text.erase(0, std::u16string_view(u"self.").size());
    return token;
}

char16_t PredicateLexer::characterCode(int base, std::size_t most, std::size_t least) {
    unsigned code = 0;
    std::size_t count = 0;
    for (; count < most && isDigitOf(base, unitAt(m_place)); ++count, ++m_place)
        code = code * static_cast<unsigned>(base) +
               static_cast<unsigned>(u_digit(m_text[m_place], static_cast<std::int8_t>(base)));
    if (count < least) fail(m_place, "the character code needs " + std::to_string(least) + " digits");
    return static_cast<char16_t>(code);
}

// What follows a backslash.
char16_t PredicateLexer::escape() {
    char16_t const unit = unitAt(m_place);
    if (isDigitOf(8, unit)) return characterCode(8, 3, 1);
    ++m_place;
    switch (unit) {
    case u'\\':
    case u'"':
    case u'\'':
        return unit;
    case u'n':
        return u'\n';
    case u't':
        return u'\t';
    case u'r':
        return u'\r';
    case u'b':
        return u'\b';
    case u'f':
        return u'\f';
    case u'x':
        return characterCode(16, 2, 2);
    case u'u':
        return characterCode(16, 4, 4);
    default:
        fail(m_place - 2, "this escape is not known; a backslash itself is written \\\\");
    }
}

PredicateToken PredicateLexer::string() {
    PredicateToken token{.kind = PredicateToken::Kind::String, .position = m_place};
    char16_t const quote = m_text[m_place++];
    while (m_place < m_text.size()) {
        char16_t const unit = m_text[m_place++];
        if (unit == quote) return token;
        token.text += unit == u'\\' ? escape() : unit;
    }
    fail(token.position, "the string does not end");
}

int PredicateLexer::numberBase() const {
    if (unitAt(m_place) != u'0') return 10;
    switch (unitAt(m_place + 1) | 0x20) {
    case u'x':
        return 16;
    case u'o':
        return 8;
    case u'b':
        return 2;
    default:
        return 10;
    }
}

PredicateToken PredicateLexer::number() {
    PredicateToken token{.kind = PredicateToken::Kind::Number, .position = m_place};
    bool const isNegative = unitAt(m_place) == u'-';
    if (isNegative) ++m_place;
    int const base = numberBase();
    if (base != 10) m_place += 2;
    std::size_t const start = m_place;
    auto const skipDigits = [&] {
        while (isDigitOf(base, unitAt(m_place)))
            ++m_place;
    };
    skipDigits();
    std::size_t const integerEnd = m_place;
    if (base == 10 && unitAt(m_place) == u'.') {
        ++m_place;
        skipDigits();
    }
    if (base == 10 && (unitAt(m_place) | 0x20) == u'e') {
        ++m_place;
        if (unitAt(m_place) == u'-' || unitAt(m_place) == u'+') ++m_place;
        skipDigits();
    }
    if (startsIdentifier(m_place) || unitAt(m_place) == u'.') fail(token.position, "this is no number");
    std::string const digits = asciiOf(m_text.substr(start, m_place - start));
    if (m_place == integerEnd) token.number = integerNumber(digits, isNegative, base);
    if (token.number == nil && base == 10) token.number = realNumber(digits, isNegative);
    if (token.number == nil) fail(token.position, "this is no number, or one out of range");
    return token;
}

PredicateToken PredicateLexer::argument() {
    PredicateToken token{.kind = PredicateToken::Kind::Argument, .position = m_place};
    ++m_place;
    std::size_t const start = m_place;
    while (isASCIIDigit(unitAt(m_place)))
        ++m_place;
    if (m_place > start) {
        std::string const digits = asciiOf(m_text.substr(start, m_place - start));
        std::size_t index = 0;
        auto const read = std::from_chars(digits.data(), digits.data() + digits.size(), index);
        if (unitAt(m_place) != u'$' || read.ec != std::errc() || index == 0)
            fail(token.position, "an argument's number is written %1$@");
        ++m_place;
        token.index = index - 1;
    }
    while (LengthModifiers.find(unitAt(m_place)) != std::u16string_view::npos)
        ++m_place;
    token.conversion = unitAt(m_place);
    if (std::u16string_view(u"@KdDiuUxXoOfFeEgGaAcCsS").find(token.conversion) == std::u16string_view::npos ||
        token.conversion == 0)
        fail(token.position, "this argument is not known");
    ++m_place;
    if (token.conversion == u'K') appendComponents(token.text);
    return token;
}

PredicateToken PredicateLexer::options() {
    PredicateToken token{.kind = PredicateToken::Kind::Options, .position = m_place};
    ++m_place;
    while (m_place < m_text.size() && m_text[m_place] != u']')
        token.text += m_text[m_place++];
    if (m_place == m_text.size()) fail(token.position, "the bracket does not end");
    ++m_place;
    return token;
}

PredicateToken PredicateLexer::symbol() {
    std::u16string_view const rest = m_text.substr(m_place);
    auto const* const found =
        std::ranges::find_if(Symbols, [&](auto const& spelling) { return rest.starts_with(spelling.first); });
    if (found == Symbols.end()) fail(m_place, "this character has no meaning here");
    PredicateToken token{.kind = PredicateToken::Kind::Symbol, .position = m_place};
    token.text = found->second;
    m_place += found->first.size();
    return token;
}

PredicateToken PredicateLexer::next() {
    skipWhiteSpace();
    if (m_place == m_text.size()) return {.kind = PredicateToken::Kind::End, .position = m_place};
    char16_t const unit = m_text[m_place];
    if (unit == u'"' || unit == u'\'') return string();
    std::size_t const digits = unit == u'-' ? m_place + 1 : m_place;
    if (isASCIIDigit(unitAt(digits)) || (unitAt(digits) == u'.' && isASCIIDigit(unitAt(digits + 1)))) return number();
    if (unit == u'%') return argument();
    if (unit == u'[') return options();
    if (unit == u'#' || unit == u'@' || startsIdentifier(m_place)) return name();
    return symbol();
}

} // namespace mac
