#include "platform/applescript/language/ScriptParser.h"
#include <algorithm>

namespace mac::applescript {

namespace {

// Once nothing in the tree changes its kind any more.
void numberLiterals(SyntaxTree& tree) {
    for (Expression& expression : tree.expressions) {
        Literal* const literal = expression.as<Literal>();
        if (!literal) continue;
        literal->index = static_cast<std::uint32_t>(tree.literals.size());
        tree.literals.push_back(literal);
    }
}

} // namespace

ScriptParser::ScriptParser(std::u16string_view source, TerminologySource applications)
    : TokenReader(source), m_applications(applications), m_tree(std::make_shared<SyntaxTree>()) {
    m_tree->source = source;
}

std::shared_ptr<SyntaxTree> ScriptParser::parse() {
    m_tree->top = &m_tree->scripts.emplace_back();
    ScriptScope& scope = m_scopes.emplace_back();
    scope.definition = m_tree->top;
    m_tree->top->body.end = static_cast<std::uint32_t>(m_tree->source.size());
    parseScriptBody(scope, true);
    if (current().kind != TokenKind::EndOfScript) expected(u"end of script");
    resolveNames(*m_tree, m_bodies);
    numberLiterals(*m_tree);
    return m_tree;
}

SourceRange ScriptParser::rangeFrom(std::size_t firstToken) const {
    std::uint32_t const start = tokenAt(firstToken).range.start;
    std::uint32_t const end = place() > 0 ? tokenAt(place() - 1).range.end : 0;
    return {.start = start, .end = std::max(start, end)};
}

Expression& ScriptParser::close(Expression& expression) const {
    if (place() > 0) expression.range.end = std::max(expression.range.start, tokenAt(place() - 1).range.end);
    return expression;
}

Expression& ScriptParser::makeLiteral(std::size_t firstToken, LiteralContent content) {
    return make(firstToken, Literal{.content = std::move(content)});
}

Expression& ScriptParser::makeVariable(Symbol name, std::size_t firstToken) {
    Expression& variable = make(firstToken, VariableReference{.name = name});
    m_body->names.push_back(&variable);
    return variable;
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

} // namespace mac::applescript
