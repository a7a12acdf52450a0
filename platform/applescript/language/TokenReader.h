#pragma once

#include "platform/applescript/language/Terminology.h"
#include <initializer_list>

namespace mac::applescript {

// The tokens of one source from first to last, with the terms that are known at each place, and the complaints about a
// token that is not what the grammar wants. A mistake is thrown as a SyntaxError.
class TokenReader {
protected:
    explicit TokenReader(std::u16string_view source);

    Token const& current() const { return m_tokens[m_place]; }
    Token const& ahead(std::size_t count) const;
    Token const& tokenAt(std::size_t place) const { return m_tokens[place]; }
    std::size_t place() const { return m_place; }
    // From the current one to the last.
    std::span<Token const> rest() const { return std::span(m_tokens).subspan(m_place); }
    void advance() { m_place += m_place + 1 < m_tokens.size() ? 1 : 0; }
    void skip(std::size_t count);
    void goBackTo(std::size_t place) { m_place = place; }
    void skipLineEnds();

    bool isWord(std::string_view word) const { return current().isWord(word); }
    bool isSymbol(std::string_view symbol) const { return current().isSymbol(symbol); }
    bool areWords(std::initializer_list<std::string_view> words) const;
    // A name that is no reserved word and no term.
    bool isIdentifier(Token const& token) const;
    // Advance where the token is that word or symbol, and answer whether it was.
    bool takeWord(std::string_view word);
    bool takeSymbol(std::string_view symbol);
    bool takeWords(std::initializer_list<std::string_view> words);
    void expectWord(std::string_view word);
    void expectSymbol(std::string_view symbol);
    [[noreturn]] void expected(std::u16string_view what) const;
    void expectEndOfStatement(bool mayGoOn);
    // Throws -2706 when the parser has recursed too deep.
    void requireRoom() const;

    // The longest term here.
    TermMatch matchTerm() const { return matchTermAt(m_place); }
    // Terms of an application that is told something; null: none.
    void pushTerms(Terminology const* terms);
    void popTerms(Terminology const* terms);

    // Whether a label ends the expression: it is one of the commands that the expression is a parameter of.
    bool isStop() const;
    std::vector<std::u16string_view>& stops() { return m_stops; }

private:
    TermMatch matchTermAt(std::size_t place) const;
    std::u16string describe(std::size_t place) const;
    bool endsOperand(Token const& token) const;

    std::vector<Token> m_tokens;
    std::size_t m_place{0};
    std::vector<Terminology const*> m_terms;
    std::vector<std::u16string_view> m_stops;
};

} // namespace mac::applescript
