#include "platform/applescript/language/Operation.h"
#include "platform/applescript/language/ScriptToken.h"
#include "platform/system/ASCII.h"
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace mac::applescript {

namespace {

struct SymbolSpelling {
    std::u16string_view units;
    std::string_view spelling;
};

// Longest first.
constexpr auto Symbols = std::to_array<SymbolSpelling>({
    {u"<=", "≤"}, {u">=", "≥"}, {u"/=", "≠"}, {u"≤", "≤"}, {u"≥", "≥"}, {u"≠", "≠"}, {u"÷", "/"}, {u"&", "&"},
    {u"*", "*"},  {u"+", "+"},  {u"-", "-"},  {u"/", "/"}, {u"^", "^"}, {u"=", "="}, {u"<", "<"}, {u">", ">"},
    {u"{", "{"},  {u"}", "}"},  {u"(", "("},  {u")", ")"}, {u",", ","}, {u":", ":"},
});

bool isNameLetter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || unit == u'_';
}
bool isScriptBlank(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\u00A0' || unit == u'\f' || unit == u'\v';
}
bool isScriptLineEnd(char16_t unit) { return unit == u'\n' || unit == u'\r' || unit == u'\u2028' || unit == u'\u2029'; }

class Lexer {
public:
    explicit Lexer(std::u16string_view source) : m_source(source) {}

    std::vector<Token> run() {
        while (true) {
            skipBlanks();
            m_start = m_place;
            if (m_place >= m_source.size()) break;
            readToken();
        }
        m_start = m_place = m_source.size();
        add(TokenKind::EndOfScript);
        return std::move(m_tokens);
    }

private:
    char16_t unitAt(std::size_t place) const { return place < m_source.size() ? m_source[place] : u'\0'; }
    char16_t here() const { return unitAt(m_place); }

    Token& add(TokenKind kind) {
        m_tokens.emplace_back();
        Token& token = m_tokens.back();
        token.kind = kind;
        token.range = {static_cast<std::uint32_t>(m_start), static_cast<std::uint32_t>(m_place)};
        return token;
    }

    void addUnfinished(std::u16string_view expected) {
        m_place = m_source.size();
        Token& token = add(TokenKind::Unfinished);
        token.text = expected;
        token.word = "end of script";
    }

    // Blanks, comments, and line ends that a ¬ continues.
    void skipBlanks() {
        while (m_place < m_source.size()) {
            if (isScriptBlank(here())) {
                ++m_place;
            } else if (here() == u'#' || (here() == u'-' && unitAt(m_place + 1) == u'-')) {
                skipLine();
            } else if (here() == u'(' && unitAt(m_place + 1) == u'*') {
                if (!skipComment()) return;
            } else if (here() != u'¬' || !skipContinuation()) {
                return;
            }
        }
    }

    void skipLine() {
        while (m_place < m_source.size() && !isScriptLineEnd(here()))
            ++m_place;
    }

    // Comments nest.
    bool skipComment() {
        m_start = m_place;
        std::size_t depth = 0;
        while (m_place < m_source.size()) {
            if (here() == u'(' && unitAt(m_place + 1) == u'*') {
                ++depth;
                m_place += 2;
            } else if (here() == u'*' && unitAt(m_place + 1) == u')') {
                m_place += 2;
                if (--depth == 0) return true;
            } else {
                ++m_place;
            }
        }
        addUnfinished(u"“*)”");
        return false;
    }

    bool skipContinuation() {
        std::size_t place = m_place + 1;
        while (isScriptBlank(unitAt(place)))
            ++place;
        if (unitAt(place) == u'-' && unitAt(place + 1) == u'-')
            while (place < m_source.size() && !isScriptLineEnd(m_source[place]))
                ++place;
        if (place < m_source.size() && !isScriptLineEnd(m_source[place])) return false;
        m_place = place;
        skipLineEnd();
        return true;
    }

    void skipLineEnd() {
        if (m_place >= m_source.size()) return;
        bool const isPair = here() == u'\r' && unitAt(m_place + 1) == u'\n';
        m_place += isPair ? 2 : 1;
    }

    void readToken() {
        char16_t const unit = here();
        if (isScriptLineEnd(unit)) {
            skipLineEnd();
            add(TokenKind::EndOfLine);
        } else if (isNameLetter(unit)) {
            readWord();
        } else if (isASCIIDigit(unit) || (unit == u'.' && isASCIIDigit(unitAt(m_place + 1)))) {
            readNumber();
        } else if (unit == u'"') {
            readText();
        } else if (unit == u'|') {
            readBarred();
        } else if (unit == u'«' || unit == u'《') {
            readRaw();
        } else if (unit == u'\'' && (unitAt(m_place + 1) | 0x20) == u's' && !isNameLetter(unitAt(m_place + 2)) &&
                   !isASCIIDigit(unitAt(m_place + 2))) {
            m_place += 2;
            add(TokenKind::Mark).word = "'s";
        } else {
            readSymbol();
        }
    }

    void readWord() {
        while (isNameLetter(here()) || isASCIIDigit(here()))
            ++m_place;
        // isn't, doesn't
        bool const isNegated = here() == u'\'' && (unitAt(m_place + 1) | 0x20) == u't' &&
                               (m_source[m_place - 1] | 0x20) == u'n' && !isNameLetter(unitAt(m_place + 2));
        if (isNegated) m_place += 2;
        Token& token = add(TokenKind::Word);
        token.text = m_source.substr(m_start, m_place - m_start);
        for (char16_t const unit : token.text)
            token.word += static_cast<char>(unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit);
    }

    void skipDigits() {
        while (isASCIIDigit(here()))
            ++m_place;
    }

    bool skipExponent() {
        if ((here() | 0x20) != u'e') return false;
        std::size_t digits = m_place + 1;
        if (unitAt(digits) == u'+' || unitAt(digits) == u'-') ++digits;
        if (!isASCIIDigit(unitAt(digits))) return false;
        m_place = digits;
        skipDigits();
        return true;
    }

    void readNumber() {
        skipDigits();
        bool isReal = false;
        if (here() == u'.') {
            isReal = true;
            ++m_place;
            skipDigits();
        }
        if (skipExponent()) isReal = true;
        std::string ascii;
        for (char16_t const unit : m_source.substr(m_start, m_place - m_start))
            ascii += static_cast<char>(unit);
        double number = 0;
        auto const read = std::from_chars(ascii.data(), ascii.data() + ascii.size(), number);
        // Too large becomes infinite and is refused by the parser; too small is 0.
        if (read.ec == std::errc::result_out_of_range)
            number = isTiny(ascii) ? 0 : std::numeric_limits<double>::infinity();
        bool const isOrdinal = !isReal && skipOrdinalSuffix();
        bool const isInteger = !isReal && number <= MostInteger;
        add(isOrdinal ? TokenKind::Ordinal : isInteger ? TokenKind::Integer : TokenKind::Real).number = number;
    }

    static bool isTiny(std::string_view digits) {
        return digits.find("e-") != digits.npos || digits.find("E-") != digits.npos;
    }

    bool skipOrdinalSuffix() {
        std::array<char16_t, 2> const suffix{static_cast<char16_t>(here() | 0x20),
                                             static_cast<char16_t>(unitAt(m_place + 1) | 0x20)};
        std::u16string_view const letters(suffix.data(), suffix.size());
        bool const isSuffix = letters == u"st" || letters == u"nd" || letters == u"rd" || letters == u"th";
        if (!isSuffix || isNameLetter(unitAt(m_place + 2)) || isASCIIDigit(unitAt(m_place + 2))) return false;
        m_place += 2;
        return true;
    }

    void readText() {
        std::u16string text;
        ++m_place;
        while (m_place < m_source.size()) {
            char16_t const unit = m_source[m_place++];
            if (unit == u'"') {
                add(TokenKind::Text).text = std::move(text);
                return;
            }
            if (unit != u'\\') {
                text += unit;
                continue;
            }
            char16_t const escaped = here();
            std::size_t const known = std::u16string_view(u"\"\\nrt").find(escaped);
            if (known == std::u16string_view::npos || m_place >= m_source.size()) {
                m_start = m_place - 1;
                Token& token = add(TokenKind::Unfinished);
                token.text = u"“\"”";
                token.word = "unknown token";
                m_place = m_source.size();
                return;
            }
            text += std::u16string_view(u"\"\\\n\r\t")[known];
            ++m_place;
        }
        addUnfinished(u"“\"”");
    }

    void readBarred() {
        std::u16string name;
        ++m_place;
        while (m_place < m_source.size() && !isScriptLineEnd(here())) {
            char16_t const unit = m_source[m_place++];
            bool const isEscape = (unit == u'\\' || unit == u'|') && here() == u'|';
            if (isEscape) {
                name += u'|';
                ++m_place;
            } else if (unit == u'|') {
                add(TokenKind::Barred).text = std::move(name);
                return;
            } else {
                name += unit;
            }
        }
        addUnfinished(u"“|”");
    }

    void readRaw() {
        std::size_t const end = m_source.find_first_of(u"»》\r\n", m_place);
        if (end == std::u16string_view::npos || isScriptLineEnd(m_source[end])) {
            addUnfinished(u"“»”");
            return;
        }
        std::u16string const content(m_source.substr(m_place + 1, end - m_place - 1));
        m_place = end + 1;
        add(TokenKind::Raw).text = content;
    }

    void readSymbol() {
        std::u16string_view const rest = m_source.substr(m_place);
        for (SymbolSpelling const& symbol : Symbols) {
            if (!rest.starts_with(symbol.units)) continue;
            m_place += symbol.units.size();
            add(TokenKind::Mark).word = symbol.spelling;
            return;
        }
        ++m_place;
        add(TokenKind::Unknown);
    }

    std::u16string_view m_source;
    std::size_t m_place{0};
    std::size_t m_start{0};
    std::vector<Token> m_tokens;
};

} // namespace

std::vector<Token> tokensOf(std::u16string_view source) { return Lexer(source).run(); }

} // namespace mac::applescript
