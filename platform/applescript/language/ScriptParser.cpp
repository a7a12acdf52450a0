#include "platform/applescript/language/ScriptParser.h"

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

ScriptParser::ScriptParser(std::u16string_view source, TerminologySource applications)
    : m_tokens(tokensOf(source)), m_applications(applications), m_terms{&Terminology::base()},
      m_tree(std::make_shared<SyntaxTree>()) {
    m_tree->source = source;
    dropFillers(m_tokens);
}

std::shared_ptr<SyntaxTree> ScriptParser::parse() {
    m_tree->top = &m_tree->scripts.emplace_back();
    ScriptScope& scope = m_scopes.emplace_back();
    scope.definition = m_tree->top;
    m_tree->top->body.end = static_cast<std::uint32_t>(m_tree->source.size());
    parseScriptBody(scope, true);
    if (current().kind != TokenKind::EndOfScript) expected(u"end of script");
    resolveNames(*m_tree, m_bodies);
    return m_tree;
}

Token const& ScriptParser::ahead(std::size_t count) const {
    return m_tokens[std::min(m_place + count, m_tokens.size() - 1)];
}

TermMatch ScriptParser::matchTermAt(std::size_t place) const {
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

TermMatch ScriptParser::matchTerm() const { return matchTermAt(m_place); }

bool ScriptParser::isIdentifier(Token const& token) const {
    if (token.kind == TokenKind::Barred) return true;
    if (token.kind != TokenKind::Word || isReservedWord(token.word)) return false;
    if (token.word == "application" || token.word == "app") return false;
    return matchTermAt(static_cast<std::size_t>(&token - m_tokens.data())).term == nullptr;
}

bool ScriptParser::takeWord(std::string_view word) {
    if (!isWord(word)) return false;
    advance();
    return true;
}

bool ScriptParser::takeSymbol(std::string_view symbol) {
    if (!isSymbol(symbol)) return false;
    advance();
    return true;
}

bool ScriptParser::areWords(std::initializer_list<std::string_view> words) const {
    std::size_t count = 0;
    for (std::string_view const word : words)
        if (!ahead(count++).isWord(word)) return false;
    return true;
}

bool ScriptParser::takeWords(std::initializer_list<std::string_view> words) {
    if (!areWords(words)) return false;
    for (std::size_t count = words.size(); count > 0; --count)
        advance();
    return true;
}

void ScriptParser::expectWord(std::string_view word) {
    if (!takeWord(word)) expected(u"“" + widened(word) + u"”");
}

void ScriptParser::expectSymbol(std::string_view symbol) {
    if (!takeSymbol(symbol)) expected(u"“" + symbolText(symbol) + u"”");
}

std::u16string ScriptParser::describe(std::size_t place) const {
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
void ScriptParser::expected(std::u16string_view what) const {
    Token const& found = current();
    std::u16string message = u"Expected ";
    message += found.kind == TokenKind::Unfinished ? std::u16string_view(found.text) : what;
    throw syntaxError(errors::Expected, message + u" but found " + describe(m_place) + u".", found.range);
}

void ScriptParser::expectEndOfStatement(bool mayGoOn) {
    if (current().endsStatement()) return;
    bool const followsExpression = m_place > 0 && mayGoOn;
    Token const& previous = m_tokens[m_place > 0 ? m_place - 1 : 0];
    bool const endsOperand = previous.kind != TokenKind::Mark && previous.kind != TokenKind::EndOfLine &&
                             (previous.kind != TokenKind::Word || !isReservedWord(previous.word));
    bool const startsOperand = current().kind == TokenKind::Integer || current().kind == TokenKind::Real ||
                               current().kind == TokenKind::Text || current().kind == TokenKind::Barred ||
                               (current().kind == TokenKind::Word && !isReservedWord(current().word));
    if (followsExpression && endsOperand && startsOperand) {
        std::u16string const message =
            u"A " + describe(m_place) + u" can’t go after this " + describe(m_place - 1) + u".";
        throw syntaxError(errors::CannotGoAfter, message, current().range);
    }
    expected(std::u16string(u"end of line") + std::u16string(mayGoOn ? OtherTokens : u""));
}

void ScriptParser::skipLineEnds() {
    while (current().kind == TokenKind::EndOfLine)
        advance();
}

Node& ScriptParser::make(NodeKind kind, std::size_t firstToken) {
    Node& node = m_tree->nodes.emplace_back();
    node.kind = kind;
    node.range.start = m_tokens[firstToken].range.start;
    return close(node);
}

// The node reaches up to the last token taken.
Node& ScriptParser::close(Node& node) const {
    if (m_place > 0) node.range.end = std::max(node.range.start, m_tokens[m_place - 1].range.end);
    return node;
}

// The spelling seen first is shown everywhere in the script.
Symbol ScriptParser::symbolOfToken(Token const& token) {
    Symbol const symbol = identifierSymbol(token.text);
    return m_spellings.emplace(symbol->canonical, symbol).first->second;
}

Symbol ScriptParser::takeIdentifier(std::u16string_view expectation) {
    if (!isIdentifier(current())) expected(expectation);
    Symbol const symbol = symbolOfToken(current());
    advance();
    return symbol;
}

Node& ScriptParser::makeVariable(Symbol name, std::size_t firstToken) {
    Node& node = make(NodeKind::Variable, firstToken);
    node.name = name;
    m_body->names.push_back(&node);
    return node;
}

} // namespace mac::applescript
