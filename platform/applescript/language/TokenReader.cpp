#include "platform/applescript/language/TokenReader.h"
#include "platform/applescript/language/ErrorNumbers.h"
#include "platform/applescript/language/ScriptToken.h"
#include "platform/applescript/language/StackRoom.h"
#include <algorithm>

namespace mac::applescript {

namespace {

constexpr std::u16string_view OtherTokens = u", etc.";

std::u16string widened(std::string_view utf8) {
    std::u16string text;
    for (char const byte : utf8)
        text += static_cast<char16_t>(static_cast<unsigned char>(byte));
    return text;
}

// Operators beyond ASCII have one spelling in tokens, in UTF-8.
std::u16string symbolText(std::string_view spelling) {
    if (spelling == "≤") return u"≤";
    if (spelling == "≥") return u"≥";
    if (spelling == "≠") return u"≠";
    return widened(spelling);
}

// `the` says nothing, except in the name of the clipboard.
void dropFillers(std::vector<Token>& tokens) {
    std::vector<Token> kept;
    kept.reserve(tokens.size());
    for (std::size_t index = 0; index < tokens.size(); ++index) {
        bool const isFiller = tokens[index].isWord("the") && !tokens[index + 1].isWord("clipboard");
        if (!isFiller) kept.push_back(std::move(tokens[index]));
    }
    tokens = std::move(kept);
}

} // namespace

TokenReader::TokenReader(std::u16string_view source) : m_tokens(tokensOf(source)), m_terms{&Terminology::base()} {
    dropFillers(m_tokens);
}

Token const& TokenReader::ahead(std::size_t count) const {
    return m_tokens[std::min(m_place + count, m_tokens.size() - 1)];
}

TermMatch TokenReader::matchTermAt(std::size_t place) const {
    std::span<Token const> const rest = std::span(m_tokens).subspan(std::min(place, m_tokens.size() - 1));
    TermMatch best;
    for (std::size_t left = m_terms.size(); left > 0; --left) {
        TermMatch const match = m_terms[left - 1]->match(rest);
        if (match.tokenCount <= best.tokenCount) continue;
        best = match;
        best.isOfApplication = left > 1;
    }
    return best;
}

bool TokenReader::isIdentifier(Token const& token) const {
    if (token.kind == TokenKind::Barred) return true;
    if (token.kind != TokenKind::Word || isReservedWord(token.word)) return false;
    if (token.word == "application" || token.word == "app") return false;
    return matchTermAt(static_cast<std::size_t>(&token - m_tokens.data())).term == nullptr;
}

bool TokenReader::takeWord(std::string_view word) {
    if (!isWord(word)) return false;
    advance();
    return true;
}

bool TokenReader::takeSymbol(std::string_view symbol) {
    if (!isSymbol(symbol)) return false;
    advance();
    return true;
}

bool TokenReader::areWords(std::initializer_list<std::string_view> words) const {
    std::size_t count = 0;
    for (std::string_view const word : words)
        if (!ahead(count++).isWord(word)) return false;
    return true;
}

bool TokenReader::takeWords(std::initializer_list<std::string_view> words) {
    if (!areWords(words)) return false;
    skip(words.size());
    return true;
}

void TokenReader::expectWord(std::string_view word) {
    if (!takeWord(word)) expected(u"“" + widened(word) + u"”");
}

void TokenReader::expectSymbol(std::string_view symbol) {
    if (!takeSymbol(symbol)) expected(u"“" + symbolText(symbol) + u"”");
}

std::u16string TokenReader::describe(std::size_t place) const {
    Token const& token = m_tokens[place];
    switch (token.kind) {
    case TokenKind::EndOfLine:
        return u"end of line";
    case TokenKind::EndOfScript:
        return u"end of script";
    case TokenKind::Integer:
    case TokenKind::Ordinal:
        return u"number";
    case TokenKind::Real:
        return u"real number";
    case TokenKind::Text:
        return u"“\"”";
    case TokenKind::Mark:
        return u"“" + symbolText(token.word) + u"”";
    case TokenKind::Barred:
        return u"identifier";
    case TokenKind::Raw:
        return u"“«”";
    case TokenKind::Unknown:
        return u"unknown token";
    case TokenKind::Unfinished:
        return widened(token.word);
    case TokenKind::Word:
        break;
    }
    if (isReservedWord(token.word)) return u"“" + token.text + u"”";
    Term const* const term = matchTermAt(place).term;
    if (!term) return u"identifier";
    if (term->command) return u"command name";
    if (term->classCode != 0) return term->isPlural ? u"plural class name" : u"class name";
    return term->propertyCode != 0 ? u"property" : u"application constant or consideration";
}

// Every complaint about a token that is not what the grammar wants.
void TokenReader::expected(std::u16string_view what) const {
    Token const& found = current();
    std::u16string message = u"Expected ";
    message += found.kind == TokenKind::Unfinished ? std::u16string_view(found.text) : what;
    throw SyntaxError{.number = errors::Expected,
                      .message = message + u" but found " + describe(m_place) + u".",
                      .range = found.range};
}

void TokenReader::expectEndOfStatement(bool mayGoOn) {
    if (current().endsStatement()) return;
    Token const& previous = m_tokens[m_place > 0 ? m_place - 1 : 0];
    bool const startsOperand = current().kind == TokenKind::Integer || current().kind == TokenKind::Real ||
                               current().kind == TokenKind::Text || current().kind == TokenKind::Barred ||
                               (current().kind == TokenKind::Word && !isReservedWord(current().word));
    bool const followsOperand = m_place > 0 && mayGoOn && endsOperand(previous);
    if (!followsOperand || !startsOperand)
        expected(std::u16string(u"end of line") + std::u16string(mayGoOn ? OtherTokens : u""));
    throw SyntaxError{.number = errors::CannotGoAfter,
                      .message = u"A " + describe(m_place) + u" can’t go after this " + describe(m_place - 1) + u".",
                      .range = current().range};
}

bool TokenReader::endsOperand(Token const& token) const {
    if (token.kind == TokenKind::Mark || token.kind == TokenKind::EndOfLine) return false;
    return token.kind != TokenKind::Word || !isReservedWord(token.word);
}

void TokenReader::requireRoom() const {
    if (!hasStackRoom())
        throw SyntaxError{.number = errors::StackOverflow,
                          .message = messageOfNumber(errors::StackOverflow),
                          .range = current().range};
}

void TokenReader::pushTerms(Terminology const* terms) {
    if (terms) m_terms.push_back(terms);
}

void TokenReader::popTerms(Terminology const* terms) {
    if (terms) m_terms.pop_back();
}

bool TokenReader::isStop() const {
    if (m_stops.empty() || current().kind != TokenKind::Word) return false;
    if (isWord("with") || isWord("without") || isWord("given")) return true;
    return std::ranges::any_of(m_stops, [&](std::u16string_view stop) { return tokensSpelling(rest(), stop) > 0; });
}

void TokenReader::skip(std::size_t count) {
    for (; count > 0; --count)
        advance();
}

void TokenReader::skipLineEnds() {
    while (current().kind == TokenKind::EndOfLine)
        advance();
}

} // namespace mac::applescript
